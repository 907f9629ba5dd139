// The names of files: those that a command is called with, and those of a run.
//
// A run on the network NET with the path length K, as typed, reads NET.in and writes NETkK.cnf and
// NETkK.lck.

#pragma once

#include <string>

namespace tervoxal {

inline constexpr const char* inputSuffix = ".in";
inline constexpr const char* clauseSuffix = ".cnf";
inline constexpr const char* sideSuffix = ".lck";
/// A run adds its seconds to this file of the working directory.
inline constexpr const char* timeFileName = "tervoxaltime.out";

/// The name of a run's files, without their suffixes.
[[nodiscard]] std::string runName(const std::string& network, const std::string& pathLen);

/// The name of an input without its ".in", which may be typed along: "light.in" is "light" where
/// there is no file light.in.in.
[[nodiscard]] std::string inputName(const std::string& typed);

/// What stands after the last slash of an input's name; "network" where that is nothing.
[[nodiscard]] std::string lastPart(const std::string& name);

} // namespace tervoxal
