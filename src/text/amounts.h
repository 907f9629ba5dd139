// Amounts, as lines for people tell them.

#pragma once

#include <chrono>
#include <string>

namespace tervoxal {

/// A time: "0.01 s".
[[nodiscard]] std::string shown(std::chrono::duration<double> time);
/// A path's length: "1 step", "4 steps".
[[nodiscard]] std::string steps(long n);

} // namespace tervoxal
