// The states of a whole network as a graph, for questions about its paths.
//
// A node is a state together with what can be asked of the step that led to it: by which of some
// actions, by another one, or by none. So a state is several nodes where such things are asked, and
// one else. Nodes are numbered from 0, the initial state before any step, by ascending distance
// from it. The edges of a node are the steps from its state, each with its action.

#pragma once

#include "query/condition.h"
#include "statespace/statespace.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tervoxal {

class StateGraph {
public:
    using Node = std::uint32_t;
    using Set = std::vector<bool>; // of nodes

    /// Precondition, asserted: the state space has all automata and is complete; it must outlive
    /// the graph. The conditions are those that will be asked. Linear in steps times the actions
    /// that the conditions name under after.
    StateGraph(const StateSpace& space, const std::vector<const Condition*>& conditions);

    [[nodiscard]] std::size_t size() const { return states.empty() ? space.size() : states.size(); }
    [[nodiscard]] StateSpace::State state(Node node) const {
        return states.empty() ? node : states[node];
    }
    /// Where the edges of a node lead, and their actions, by index of the network, in the same
    /// order.
    [[nodiscard]] std::span<const Node> successors(Node node) const {
        return std::span(targets).subspan(begins[node], begins[node + 1] - begins[node]);
    }
    [[nodiscard]] std::span<const uint> actions(Node node) const {
        return std::span(labels).subspan(begins[node], begins[node + 1] - begins[node]);
    }
    [[nodiscard]] std::span<const Node> predecessors(Node node) const {
        return std::span(sources).subspan(sourceBegins[node],
                                          sourceBegins[node + 1] - sourceBegins[node]);
    }
    /// The nodes where a condition holds. Precondition: it names no action under after but those
    /// of the conditions above.
    [[nodiscard]] Set where(const Condition& condition) const;

    const StateSpace& space;
    const FlatNetwork& network;

private:
    friend struct WhereAlgebra;
    // What led to a node: no step, or an action that is not asked for, or one that is, from 2 on.
    using Mark = std::uint32_t;
    [[nodiscard]] Mark markOf(uint action) const;

    void takeSteps();
    void takeMarkedSteps();
    void reverse();

    std::vector<uint> asked; // actions under after, by index of the network, ascending
    std::vector<StateSpace::State> states; // of each node; empty where a node is a state
    std::vector<Mark> marks;
    std::vector<std::size_t> begins;
    std::vector<Node> targets;
    std::vector<uint> labels;
    std::vector<std::size_t> sourceBegins;
    std::vector<Node> sources;
};

} // namespace tervoxal
