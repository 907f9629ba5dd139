// A state of a network as a value, without bits and without formulas.
//
// A state is the location of each automaton. Automata are numbered from 1, and index 0 is a
// placeholder. An automaton of one location is in location 0. The others may be in a location that
// is not declared: it has no transition and carries nothing.

#pragma once

#include "model/ntamodel.h"

#include <vector>

namespace tervoxal {

using State = std::vector<uint>;

/// One automaton goes from one location to another one.
struct Change {
    uint automaton;
    uint source;
    uint target;
};

/// Every automaton is in location 0.
[[nodiscard]] inline State initialState(const NetTimedModel& model) {
    return State(static_cast<std::size_t>(model.nrOfAutomata) + 1);
}

} // namespace tervoxal
