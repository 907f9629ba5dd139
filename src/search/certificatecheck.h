// Whether a certificate proves what it is said to prove: its weights by arithmetic, its sets asked
// of the solver and the steps of the search, or its automata searched in the network's own tables,
// and nothing of what has made the certificate.

#pragma once

#include "certificate/certificate.h"
#include "model/flatnetwork.h"
#include "query/condition.h"

#include <string>
#include <vector>

namespace tervoxal {

/// Checks the four claims of a certificate: the first by plain arithmetic, the others by a solver
/// call each, the third one for each of the conditions; or searches the automata that it names once
/// more. Gives what fails, or an empty text.
[[nodiscard]] std::string certificateFault(const FlatNetwork& network,
                                           const Certificate& certificate,
                                           const std::vector<const Condition*>& conditions);

/// The same, and leaves out the sets that weights exclude but no claim needs, and of the others
/// those that larger ones cover, together with those that weights exclude.
[[nodiscard]] std::string trim(const FlatNetwork& network, Certificate& certificate,
                               const std::vector<const Condition*>& conditions);

} // namespace tervoxal
