// A file of results that is either whole or not there.
//
// A reader may come at any moment, and a run may fail or be killed at any moment. So the file of an
// earlier run goes before the new one is begun, the new one is written under a temporary name
// (.tervoxal-PID-N) in the same directory, every write and the close are checked, and only then
// does it get its name. If anything fails, the temporary file is removed and nothing is left.
//
//  - A symbolic link stays a link: the file that it leads to is replaced, or created.
//  - A FIFO or a device is written as it is, for whoever reads at the other end.
//  - A file that its directory does not give up is written in place, and emptied if that fails.
//
// While a file is unfinished, the signals that ask a process to end are held back, and looked for
// at each write: the file is removed before the process ends. Only SIGKILL leaves the temporary
// file, or in place a cut one.

#pragma once

#include <csignal>
#include <string>
#include <string_view>

class OutputFile {
public:
    /// Removes the file of that name and begins a new one. A failure shows in close.
    explicit OutputFile(const std::string& name);
    /// Removes the file unless close has finished it.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Appends text: to the system at once, so in blocks if there is much of it. Once a write has
    /// failed, nothing is written any more.
    void write(std::string_view text);
    /// Finishes the file and says whether it is there as a whole. Nothing may be written after it.
    bool close();

private:
    void createTemporary();
    bool finish(bool whole);

    int file = -1;         // -1 once it is finished or has failed
    std::string target;    // what the name leads to
    std::string temporary; // empty if the target is written directly
    bool regular = false;
    sigset_t held{};   // the signals held back
    sigset_t before{}; // the mask to go back to
};

/// Removes the file as the constructor of OutputFile does, with nothing in its place; where its
/// directory does not give it up, it is emptied. Not for FIFOs and devices, which stay.
void removeOutput(const std::string& name);
