// Whether a condition holds in a state, as the tables of the network tell it.
//
// The state changes step by step. What a change costs depends on the propositions of the two
// locations, and the condition is evaluated again only where the value of an atom changed.

#pragma once

#include "condition.h"
#include "state.h"

#include <utility>
#include <vector>

/// A condition in a state that changes.
class Property {
public:
    /// The condition in the initial state of a network that is read and laid out.
    Property(const NetTimedModel& model, Condition condition);

    void change(const Change& change);
    /// Whether the condition holds in the state that it has come to.
    [[nodiscard]] bool holds();

private:
    Condition condition; // the number of an atom is an index of carriers
    /// The atoms that hold in each location, sorted.
    std::vector<std::pair<NetTimedModel::Location, uint>> carried;
    std::vector<uint> carriers; // of each atom: the automata that are where it holds
    bool value = false;
    bool stale = true;
};

/// Whether the condition holds in the state.
[[nodiscard]] bool holds(const NetTimedModel& model, const Condition& condition,
                         const State& state);
