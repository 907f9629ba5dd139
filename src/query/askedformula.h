// The formula file of a command that answers what the formula asks. Such a command does not take in
// silence what hardly anybody means.

#pragma once

#include "model/ntamodel.h"
#include "query/question.h"
#include "temporal/ectlform.h"

#include <string>

namespace tervoxal {

/// What the formula of name + ".in" asks about the network, which is read. The warnings of
/// checkFormula go to standard error, each in its line. A file that a run refuses ends the process
/// with status 1 and one more line there, and so do those that temporalTokens refuses.
[[nodiscard]] Question readAskedFormula(const NetTimedModel& model, const std::string& name);

/// The formula of a file, given with its text, that a run takes. One that a run refuses ends the
/// process with status 1 and what is found in it on standard error.
[[nodiscard]] EctlForm runFormula(const std::string& file, std::string text);

} // namespace tervoxal
