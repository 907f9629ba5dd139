// The version of all commands. CMake reads it here.

#pragma once

#include <string_view>

namespace tervoxal {

constexpr std::string_view version = "1.0";

} // namespace tervoxal
