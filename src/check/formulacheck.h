// Looks for mistakes in a formula file, as networkcheck.h does in a network file.

#pragma once

#include "ectlform.h"
#include "findings.h"
#include "networkcheck.h"
#include "uint.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

/// Checks a formula file, named with its suffix, for a network, and gives the formula where a run
/// takes the file. Linear. Ends the process like checkNetwork.
std::optional<EctlForm> checkFormula(const std::string& file, const CheckedNetwork& network,
                                     Findings& findings);

/// A warning for each proposition that is asked for and that no location carries.
[[nodiscard]] std::vector<std::string> uncarried(const std::set<uint>& asked,
                                                 const std::set<uint>& carried);
