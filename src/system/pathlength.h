// The length of a path as the command line of a run tells it, which is looser than a number of the
// options: text after the digits is ignored, and of large numbers the low 32 bits are taken.

#pragma once

#include <string>

namespace tervoxal {

inline constexpr int greatestPathLength = 2147483647;

/// The steps; 0 or less where the text tells none.
[[nodiscard]] int pathLength(const std::string& text);

} // namespace tervoxal
