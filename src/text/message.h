// Messages about input files, one line each: "FILE: line N: what is wrong".

#pragma once

#include <string>
#include <string_view>

namespace tervoxal {

/// Lines are counted from 1.
[[nodiscard]] std::string message(const std::string& file, unsigned long line,
                                  const std::string& text);

/// Each run of white space as one blank, none at the ends.
[[nodiscard]] std::string normalised(std::string_view text);

/// The text in double quotes, normalised and, where it is long, cut.
[[nodiscard]] std::string shown(std::string_view text);

} // namespace tervoxal
