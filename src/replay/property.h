// Whether the formula of a model holds in a state, as the tables of the network tell it. A
// proposition holds if some automaton is in a location that carries it. A temporal operator makes
// the formula false as a whole.
//
// The state changes step by step. What a change costs depends on the propositions of the two
// locations, and the formula is evaluated again only where the value of a proposition changed.

#pragma once

#include "state.h"

#include <map>
#include <utility>
#include <vector>

/// The formula of a model in a state that changes.
class Property {
public:
    /// The formula in the initial state. The model's formula must have been read; one that is not
    /// one formula ends the process with status 1 and one line on standard error.
    explicit Property(const NetTimedModel& model);

    void change(const Change& change);
    /// Whether the formula holds in the state that it has come to.
    [[nodiscard]] bool holds();

private:
    /// A token of the postfix program.
    struct Token {
        EctlOper op;
        uint prop; // an index
    };

    [[nodiscard]] bool evaluated() const;

    std::vector<Token> program; // empty if there is a temporal operator
    /// The propositions of each location that the formula names, as indices, sorted.
    std::vector<std::pair<NetTimedModel::Location, uint>> carried;
    std::vector<uint> carriers; // of each proposition: the automata that are where it is carried
    bool value = false;
    bool stale = true;
};

/// Whether the model's formula holds in the state. Ends the process like Property.
[[nodiscard]] bool holds(const NetTimedModel& model, const State& state);
