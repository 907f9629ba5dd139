#include "programs/directories.h"

#include "text/fatal.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace tervoxal {

namespace {

bool isCommand(const std::filesystem::path& file) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

} // namespace

TemporaryDirectory::TemporaryDirectory(const std::filesystem::path& parent,
                                       const std::string& name) {
    std::error_code ignored;
    std::string pattern = std::filesystem::absolute(parent, ignored) / (name + "-XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr) {
        error("cannot make a directory in " + parent.string() + ": " + std::strerror(errno));
    }
    path = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::filesystem::path temporaryPlace() {
    const char* const place = std::getenv("TMPDIR");
    return place == nullptr || *place == '\0' ? "/tmp" : place;
}

std::string writeFile(const std::filesystem::path& file, const std::string& text) {
    errno = 0;
    std::ofstream out(file, std::ios::binary);
    out << text;
    out.close();
    if (out) return "";
    return "cannot write in " + file.parent_path().string() + ": " + std::strerror(errno);
}

std::string unwritable(const std::filesystem::path& directory) {
    const std::filesystem::path probe = directory / "probe";
    std::string problem = writeFile(probe, std::string(4096, '\n'));
    std::error_code ignored;
    std::filesystem::remove(probe, ignored);
    return problem;
}

std::string onPath(const std::string& command) {
    const char* const path = std::getenv("PATH");
    std::istringstream directories(path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path);
    for (std::string directory; std::getline(directories, directory, ':');) {
        std::error_code ignored;
        const auto file =
            std::filesystem::absolute(directory.empty() ? "." : directory, ignored) / command;
        if (isCommand(file)) return file;
    }
    return "";
}

std::string companion(const std::string& command) {
    std::error_code ignored;
    const auto own = std::filesystem::read_symlink("/proc/self/exe", ignored);
    if (const auto file = own.parent_path() / command; !own.empty() && isCommand(file)) return file;
    std::string found = onPath(command);
    if (found.empty()) error(command + " is neither beside this command nor on the path");
    return found;
}

} // namespace tervoxal
