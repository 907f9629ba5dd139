// A run of a network as the search finds it: actions one after the other, with the moves of their
// participants.

#pragma once

#include "model/flatnetwork.h"
#include "query/condition.h"
#include "replay/path.h"

#include <cstddef>
#include <vector>

namespace tervoxal {

/// An action that is taken, and the move of each of its participants, as indices of the network.
struct Firing {
    uint action;
    std::vector<uint> moves;
};

using Run = std::vector<Firing>;

/// The run as states at positions.
[[nodiscard]] Path pathOf(const FlatNetwork& network, const Run& run);

/// A path whose steps are actions, as a run of the first action that makes each. Steps that change
/// nothing are left out. Precondition, asserted: it is a run of the network.
[[nodiscard]] Run runOf(const FlatNetwork& network, const Path& path);

/// What is left of a run that meets the condition somewhere: it still does. It ends where the
/// condition holds first; then, walking back from the end, an action stays only if it moves an
/// automaton that the condition or a later action looks at. Linear in the run, and in the network.
[[nodiscard]] Run shortened(const FlatNetwork& network, Run run, const Condition& condition);

} // namespace tervoxal
