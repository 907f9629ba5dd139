// Whether weights exclude the sets that they are said to exclude: plain arithmetic over the moves
// of a network, and nothing of what has made the weights.

#pragma once

#include "certificate/certificate.h"
#include "model/flatnetwork.h"

#include <string>

namespace tervoxal {

/// Gives what fails, or an empty text. Linear in the network and in the sets.
[[nodiscard]] std::string weightsFault(const FlatNetwork& network,
                                       const Certificate::Weighed& weighed);

} // namespace tervoxal
