// The next state of a network as a function of a state and of bits that choose a step: what model
// checkers are made for, where a run has the step as a relation of two states.
//
// With B bits of a state, the variables 1 to B hold the state and those from B + 1 upward the bits
// of choices.h. A choice may be anything: where it chooses nothing, the next state is the same one.
// The state has to be one of the locations that an automaton may come to (tables.h); what needs
// others is left out. In nets with many such locations that took a model checker from over a minute
// to 0.02 s.
//
// The gates, each of which is in the store once:
//
//  - A number on bits is one conjunction, of the numbers on the lower and on the upper half of
//    them: a tree of decoders, which for n numbers has n conjunctions and about 2 sqrt(n) below.
//  - An action is taken if it is chosen and each of its automata is in the source of a move that is
//    chosen there.
//  - A bit of the next state is set by the moves that set it, or else it is what it was unless a
//    move clears it. A move has no part in the bits that it leaves alone, and moves that set and
//    clear the same bits are one. So a chain of locations costs little more than a gate for each.

#pragma once

#include "model/choices.h"
#include "model/flatnetwork.h"
#include "query/condition.h"

#include <compare>
#include <map>
#include <vector>

namespace tervoxal {

class TransitionFunction {
public:
    /// Of a network that is read and laid out, which must outlive this. Precondition, asserted:
    /// the variables are variables of the store.
    explicit TransitionFunction(const NetTimedModel& model);

    [[nodiscard]] static int variableOfState(std::size_t bit);
    [[nodiscard]] int variableOfChoice(std::size_t bit) const;

    /// The bits of the next state. Linear in the transitions, with the bits of a location as a
    /// factor.
    [[nodiscard]] std::vector<BoolForm> next() const;
    /// The condition in the state. Linear in its tokens and the tables of the network.
    [[nodiscard]] BoolForm holds(const Condition& condition) const;

    const NetTimedModel& model;
    const Choices choices;

private:
    /// What a move does to the bits of its automaton's location.
    struct Effect {
        uint sets;
        uint clears;

        auto operator<=>(const Effect&) const = default; // NOLINT(modernize-use-nullptr)
    };
    struct Atoms;

    const FlatNetwork tables;

    [[nodiscard]] BoolForm at(uint automaton, uint location) const;
    [[nodiscard]] BoolForm enabled(uint action) const;
    /// A move of that effect is chosen and at its source.
    [[nodiscard]] std::map<Effect, BoolForm> chosenMoves(uint automaton, uint action) const;
    /// Appends an automaton's bits of the next state, from the moves that are taken.
    void append(std::vector<BoolForm>& bits, uint automaton,
                std::map<Effect, std::vector<BoolForm>>& taken) const;
};

} // namespace tervoxal
