// What a network consists of, for people and programs that meet it for the first time.

#pragma once

#include "model/names.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace tervoxal {

/// The reachable states of a network, as far as they have been counted.
struct StateCount {
    bool complete; // else there are more states, and the rest says nothing
    std::size_t states;
    std::uint64_t steps; // between them
    std::size_t deadlocks;
    int depth; // the greatest distance from the initial state, in steps
};

/// What is shown of a network.
struct Overview {
    const NetTimedModel& model; // read and laid out
    const Names& names;
    std::string network; // what the command was called with
    std::optional<StateCount> states{};
    bool all = false; // in the text, show all of long lists
};

/// A line of totals, then the automata, the actions with the automata that take them together, and
/// the propositions with the places that carry them, by ascending number. Of a longer list the text
/// shows the twenty that are largest, unless all are asked for. Both take time for what the network
/// declares, and a logarithm for what is sorted.
void showOverview(std::ostream& out, const Overview& overview);
/// The same as a JSON object (RFC 8259) that has everything.
void showJsonOverview(std::ostream& out, const Overview& overview);

} // namespace tervoxal
