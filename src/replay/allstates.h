// All states of a network and where formulas about paths hold, in plain code: from the tables of
// the network alone, by going over all states until nothing changes. It knows nothing of the
// search, so that a verdict about all paths can be checked by it.
//
// A node is a state together with what formula and fairness ask of the step that led to it. With
// fairness, EG f is the greatest set of nodes with f such that from each, within the set, a step is
// possible, a node of each condition is reached, and for each action, if weak, a node where it is
// not possible or a step that takes it (Emerson and Lei, Efficient Model Checking in Fragments of
// the Propositional Mu-Calculus, 1986); or else a path with f to a node without a step.

#pragma once

#include "query/temporalformula.h"
#include "replay/state.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tervoxal {

/// Whether a condition holds in a state that the action has led to, none for the initial state, as
/// the tables tell it.
[[nodiscard]] bool holdsIn(const NetTimedModel& model, const Condition& condition,
                           const State& state, std::optional<uint> action);

/// Whether all automata of the action can take it.
[[nodiscard]] bool canTake(const NetTimedModel& model, const State& state, uint action);

class AllStates {
public:
    using Set = std::vector<bool>; // of nodes

    /// The network must be read and laid out, and outlive it.
    AllStates(const NetTimedModel& model, const TemporalFormula& formula, const Fairness& fairness);

    /// Where the formula's node holds, by its index.
    [[nodiscard]] const Set& where(std::size_t formulaNode) const { return sets[formulaNode]; }
    /// The number of states.
    [[nodiscard]] std::size_t states() const;
    /// The node of a state that the action has led to, none for the initial state before any step.
    /// Precondition: a run comes to it so.
    [[nodiscard]] std::size_t node(const State& state, std::optional<uint> action) const;

private:
    struct Step {
        uint action;
        std::size_t target;
    };
    /// A state and the mark of what led to it.
    using Key = std::pair<State, uint>;

    [[nodiscard]] uint mark(std::optional<uint> action) const;
    void find();
    [[nodiscard]] Set where(const Condition& condition) const;
    [[nodiscard]] Set before(const Set& set) const;
    [[nodiscard]] Set until(const Set& left, Set right) const;
    [[nodiscard]] Set always(const Set& set) const;
    [[nodiscard]] Set temporal(const TemporalFormula::Node& node) const;

    const NetTimedModel& model;
    const Fairness& fairness;
    bool marked = false;  // whether something is asked of steps
    std::set<uint> asked; // the actions under after
    std::map<Key, std::size_t> numbers;
    std::vector<const Key*> nodes;
    std::vector<std::optional<uint>> latest; // by node, an action of its mark
    std::vector<std::vector<Step>> steps;
    std::vector<Set> fairSets;
    Set fair;
    std::vector<Set> sets;
};

} // namespace tervoxal
