// The atoms of a condition in the flat network of which it is asked.

#pragma once

#include "model/flatnetwork.h"
#include "query/condition.h"

#include <vector>

namespace tervoxal {

/// By automaton of the flat network: those of which the truth of a condition depends, all of them
/// where it names a deadlock. Linear in what the atoms name.
[[nodiscard]] std::vector<bool> lookedAt(const FlatNetwork& network, const Condition& condition);

} // namespace tervoxal
