// Whether a condition holds in a state, as the tables of the network tell it.
//
// The state changes step by step. An atom counts the automata that are where it needs them: one
// that carries the proposition, all that have the action where they can take it. What a change
// costs depends on the atoms of the two locations, and the condition is evaluated again only where
// the value of an atom changed.

#pragma once

#include "query/condition.h"
#include "replay/state.h"

#include <cstddef>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tervoxal {

/// A condition in a state that changes.
class Property {
public:
    /// The question in the initial state of a network that is read and laid out.
    Property(const NetTimedModel& model, Condition question);

    void change(const Change& change);
    /// Whether the condition holds in the state that it has come to.
    [[nodiscard]] bool holds();
    /// The automata that the condition speaks of: those that carry its propositions, that it places
    /// and that have its actions. A deadlock speaks of none.
    [[nodiscard]] std::set<uint> automata() const;

private:
    struct Atom {
        uint count = 0; // of the automata that are where they are needed
        uint need = 1;
        bool action = false;

        [[nodiscard]] bool holds() const { return count >= need; }
    };

    void changeCount(uint atom, bool up);

    Condition condition; // the number of an atom is an index of atoms
    std::vector<Atom> atoms;
    std::size_t asked = 0; // of the atoms those that the condition names; after them other actions
    /// The atom that counts the actions that are possible, where the condition names deadlocks.
    std::optional<uint> possible;
    /// The atoms that count each location, sorted.
    std::vector<std::pair<NetTimedModel::Location, uint>> counted;
    bool value = false;
    bool stale = true;
};

} // namespace tervoxal
