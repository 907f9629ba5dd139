// Looks for mistakes in a formula file, as networkcheck.h does in a network file.

#pragma once

#include "temporal/ectlform.h"
#include "text/diagnostics.h"
#include "text/uint.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tervoxal {

/// What becomes of temporal operators: a run takes a formula that has one for false.
enum class TemporalOperators { falsify, answered };

/// Checks a formula file, named with its suffix, and gives the formula where a run takes the file.
/// `carried` are the propositions that some location of the network carries, or null where they are
/// not known. Linear. A file that cannot be opened ends the process with status 1 and one line on
/// standard error.
std::optional<EctlForm> checkFormula(const std::string& file, const std::set<uint>* carried,
                                     TemporalOperators operators, Diagnostics& findings);
/// The same of the text of such a file.
std::optional<EctlForm> checkFormulaText(std::string text, const std::set<uint>* carried,
                                         TemporalOperators operators, Diagnostics& findings);

/// A warning for each proposition that is asked for and that no location carries.
[[nodiscard]] std::vector<std::string> uncarried(const std::set<uint>& asked,
                                                 const std::set<uint>& carried);

} // namespace tervoxal
