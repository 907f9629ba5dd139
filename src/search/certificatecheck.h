// Whether a certificate proves what it is said to prove, asked of the solver and the steps of the
// search, or of the network's own tables, and of nothing that has made the certificate.

#pragma once

#include "certificate/certificate.h"
#include "model/flatnetwork.h"
#include "query/condition.h"

#include <string>
#include <vector>

namespace tervoxal {

/// Checks the three claims of a certificate by a solver call each, the second one for each of the
/// conditions; or searches the automata that it names once more. Gives what fails, or an empty
/// text.
[[nodiscard]] std::string certificateFault(const FlatNetwork& network,
                                           const Certificate& certificate,
                                           const std::vector<const Condition*>& conditions);

} // namespace tervoxal
