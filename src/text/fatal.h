// The one place that ends the process on bad input.

#pragma once

#include <string>

/// Writes the message to standard error and ends the process with status 1.
[[noreturn]] void error(const std::string& message);
