// A file of results that is either whole or not there.
//
// A reader may come at any moment, and a run may fail or be killed at any moment. So the file of an
// earlier run goes before the new one is begun, the new one is written under a temporary name
// (.tervoxal-PID-N) in the same directory, every write and the close are checked, and only then
// does it get its name. If anything fails, the temporary file is removed and nothing is left.
//
//  - A file that cannot be opened for writing stays as it is, and nothing is written.
//  - The new file has the owner, the group and the mode of the old one, as far as the system lets
//    it have them.
//  - A symbolic link stays a link: the file that it leads to is replaced, or created.
//  - A FIFO or a device is written as it is, for whoever reads at the other end.
//  - Where the directory of a file cannot be changed, the file is emptied and written in place. If
//    that fails, it is left empty.
//
// From the first write until the file is finished, the signals that ask a process to end are held
// back, and looked for at each write: the file is removed before the process ends. Only SIGKILL
// leaves the temporary file, or in place a cut one.

#pragma once

#include <csignal>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace tervoxal {

class OutputFile {
public:
    /// Removes the file of that name. The first write begins the new one. A failure shows in close.
    explicit OutputFile(const std::string& name);
    /// Removes the file unless close has finished it.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Whether the file can be written as things stand, for who would rather know it before a long
    /// work. What it takes is a look at the file, or at its directory where it is not there.
    [[nodiscard]] bool writable() const;
    /// Appends text: to the system at once, so in blocks if there is much of it. Once a write has
    /// failed, nothing is written any more.
    void write(std::string_view text);
    /// Finishes the file and says whether it is there as a whole. Nothing may be written after it.
    bool close();

private:
    /// What has become of the old file: it is not there, it is empty, it cannot be written, it is
    /// no regular file.
    enum class Old { gone, emptied, locked, special };

    void removeOld(const std::string& name);
    [[nodiscard]] bool regular() const { return old == Old::gone || old == Old::emptied; }
    void begin();
    void createTemporary();
    bool finish(bool whole);

    int file = -1; // -1 before the first write, and once it is finished or has failed
    bool begun = false;
    std::string target;    // what the name leads to
    std::string temporary; // empty if the target is written directly
    Old old = Old::gone;
    struct stat like {}; // what the old file was, all 0 if there was none
    sigset_t held{};     // the signals held back
    sigset_t before{};   // the mask to go back to
};

} // namespace tervoxal
