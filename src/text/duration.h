// Times, as lines of progress show them.

#pragma once

#include <chrono>
#include <string>

/// A time in seconds with two decimals.
[[nodiscard]] std::string shown(std::chrono::duration<double> time);
