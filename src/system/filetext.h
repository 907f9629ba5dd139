// A file as one text, for those who look at more than its significant lines.

#pragma once

#include <istream>
#include <string>

namespace tervoxal {

/// The whole file. One that cannot be opened or read ends the process with status 1 and one line on
/// standard error.
[[nodiscard]] std::string fileText(const std::string& name);
/// The rest of a stream.
[[nodiscard]] std::string wholeText(std::istream& in);
/// The last line of a file that is not empty, among its last 4 KiB; empty where there is none.
[[nodiscard]] std::string lastLine(const std::string& name);

} // namespace tervoxal
