// Where commands and temporary files are.

#pragma once

#include <filesystem>
#include <string>

namespace tervoxal {

/// A new directory that nobody else may read, removed at the end with all that is in it.
class TemporaryDirectory {
public:
    /// Makes it in `parent`, under the name and some letters more. Ends the process with status 1
    /// and one line on standard error where that is not possible.
    TemporaryDirectory(const std::filesystem::path& parent, const std::string& name);
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::filesystem::path path; // absolute
};

/// Where temporary files go: TMPDIR, or /tmp.
[[nodiscard]] std::filesystem::path temporaryPlace();
/// Writes a file in place of what is there. Gives what went wrong, or an empty text.
[[nodiscard]] std::string writeFile(const std::filesystem::path& file, const std::string& text);
/// Tries to write a file of 4 KiB in the directory. Gives what went wrong, or an empty text.
[[nodiscard]] std::string unwritable(const std::filesystem::path& directory);

/// The absolute file of a command, as a shell would find it on PATH; empty if it is not there.
[[nodiscard]] std::string onPath(const std::string& command);
/// The absolute file of a command that is installed together with this one: the one beside this
/// process's own binary, or else the one on PATH. Ends the process with status 1 and one line on
/// standard error if it is in neither place.
[[nodiscard]] std::string companion(const std::string& command);

} // namespace tervoxal
