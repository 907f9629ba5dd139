// The version of all commands. CMake reads it here.

#pragma once

#include <string_view>

constexpr std::string_view version = "1.0";
