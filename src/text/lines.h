// Text files as all readers take them: a line ends at a newline character and at nothing else, and
// a line is significant if it is neither empty nor begins with '#'. Lines are numbered from 1, the
// skipped ones included.

#pragma once

#include <fstream>
#include <string>
#include <utility>

namespace tervoxal {

/// Opens a file for reading. One that cannot be opened, or is a directory, ends the process with
/// status 1 and one line on standard error.
[[nodiscard]] std::ifstream openInput(const std::string& name);
/// The same with the line of a run.
[[nodiscard]] std::ifstream openRunInput(const std::string& name);

/// Ends the process with status 1 and one line on standard error if reading has failed, which is
/// not the end of the stream.
void refuseUnread(const std::istream& in, const std::string& name);

/// The significant lines of a stream, which must outlive this.
class Lines {
public:
    /// The line that is read next has the number 1. The name of the stream is for messages.
    explicit Lines(std::istream& in, std::string name = "input") : in(&in), name(std::move(name)) {}

    /// Goes to the next significant line, false at the end of the stream. text then is what the
    /// last line of the stream holds, and number is that line's. Ends the process like
    /// refuseUnread.
    bool next();

    std::string text;
    /// 0 before the first line.
    long number = 0;

private:
    std::istream* in;
    std::string name;
};

} // namespace tervoxal
