// A file as one text, for those who look at more than its significant lines.

#pragma once

#include <string>

/// The whole file. One that cannot be opened ends the process like openInput.
[[nodiscard]] std::string fileText(const std::string& name);
