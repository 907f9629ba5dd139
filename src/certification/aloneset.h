// The states that some automata come to alone, whatever the others do, as a decision diagram
// (multiple-valued; Srinivasan, Kam, Malik and Brayton, Algorithms for Discrete Function
// Manipulation, 1990): a node for the location of one automaton has an edge for each location, and
// no two nodes are alike. What the diagram needs in formulas is linear in its edges.
//
// Nodes are numbered from 0, each after those that its edges lead to. Node 0 is the end: all
// automata from there on may be anywhere.

#pragma once

#include "model/flatnetwork.h"
#include "model/symstate.h"
#include "replay/state.h"

#include <compare>
#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace tervoxal {

class AloneSet {
public:
    /// Of the automata with these numbers of the network, ascending. Those that are always in one
    /// location make no difference. Nothing if there are more than so many states. Time and memory
    /// grow with the states and their automata.
    [[nodiscard]] static std::optional<AloneSet>
    of(const FlatNetwork& network, const std::vector<uint>& automata, std::size_t most);

    /// The automata are in one of these states, provided each is where the network has it.
    [[nodiscard]] BoolForm holds(const SymState& state) const;
    [[nodiscard]] bool contains(const State& state) const;

    std::vector<uint> automata; // numbers, of which the states are
    std::size_t states = 0;

private:
    struct Edge {
        std::size_t target;
        uint location; // number

        auto operator<=>(const Edge&) const = default; // NOLINT(modernize-use-nullptr)
    };
    struct Node {
        std::size_t slot; // of automata
        std::vector<Edge> edges;

        auto operator<=>(const Node&) const = default; // NOLINT(modernize-use-nullptr)
    };

    explicit AloneSet(const NetTimedModel& model) : model(&model) {}

    [[nodiscard]] std::size_t numberOf(Node node);

    const NetTimedModel* model;
    std::vector<Node> nodes = {{0, {}}};
    std::map<Node, std::size_t> known;
};

} // namespace tervoxal
