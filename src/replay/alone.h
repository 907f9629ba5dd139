// Some automata of a network alone, state by state, in plain code: the others take part in
// anything, and whether a condition holds may depend on where they are.
//
// What a run does to these automata is done here as well. So what is met in no state here is met by
// no run.

#pragma once

#include "model/flatnetwork.h"
#include "query/condition.h"
#include "replay/state.h"

#include <span>
#include <vector>

namespace tervoxal {

/// Whether one of the conditions may be met in a state of the automata with these indices of the
/// network, each of them once. Time and memory grow with the states, their number times the actions
/// that the automata take part in.
[[nodiscard]] bool metAlone(const FlatNetwork& network, std::span<const uint> automata,
                            std::span<const Condition* const> conditions);

} // namespace tervoxal
