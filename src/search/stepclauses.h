// The clauses of one step of a network, made once: an unrolling gives them to its solver for each
// step, with the variables shifted.
//
// Their variables are numbered from 1: first those of the state that the step leaves, then those of
// the state that it comes to, in the same order, then those of the step. A state has a variable for
// each location, but one for both locations of an automaton of two, which is true in the second. A
// step has one for each action, one for each move of a participant with a choice, and some that
// count to one. With all actions independent in a step, the clauses of examples/two are,
// by the locations 0 to 4 and the actions 0 to 3 of its network (l' is after the step):
//
//     source, target   action 0: 3 and 4'    action 1: 0 and 1', 2 and 3'
//                      action 2: 1 and 0'    action 3: 4 and 2'
//     frame            1' and not 1: 1       not 1' and 1: 2
//                      2' and not 2: 3       not 2' and 2: 1
//                      3' and not 3: 1       not 3' and 3: 0
//                      4' and not 4: 0       not 4' and 4: 3
//     somewhere, once  exactly one of 2', 3', 4'
//
// The field calls the frame conditions explanatory frame axioms: what changes has an action that
// changes it. So a step is linear in the transitions. Steps of many actions are those of Petri nets
// and of planning.

#pragma once

#include "model/flatnetwork.h"

#include <cstddef>
#include <initializer_list>
#include <span>
#include <vector>

namespace tervoxal {

/// What may be in one step.
enum class StepKind { interleaving, independent, relaxed };

/// The clauses by what they say.
enum class Says : unsigned char {
    somewhere, // an automaton is in one of its locations
    once,      // and in no other
    source,    // a move leaves its source
    target,    // and comes to its target
    taken,     // a move is one of its action
    choice,    // an action has a move of each participant
    frame,     // what no move changes stays
    exclusion  // of what would be in each other's way only one is in a step
};

/// What is unrolled.
struct Scope {
    StepKind kind;
    /// From the initial state, or else from any.
    bool initial = true;
    /// By automaton, the roots of the cone of influence: only what their locations at the last
    /// position can depend on is unrolled, so a run lacks the actions that make no difference to
    /// them. Empty: everything is unrolled.
    std::vector<bool> cone{};
};

struct StepClauses {
    /// Linear in the network, but for sorting.
    StepClauses(const FlatNetwork& network, Scope scope);

    struct Variable {
        uint level;    // it is false in the first `level` steps
        uint distance; // the cone holds it from that many steps before the last position backward
        uint offset;   // its index among those of a state, or of a step, of the same distance
    };
    const Scope scope;
    std::vector<Variable> variables; // from 1 on
    /// The number of variables of a state, and of a step, at each distance.
    std::vector<uint> stateBlocks;
    std::vector<uint> stepBlocks;
    int stateSize = 0;
    std::vector<int> locations; // in the state that is left, negative where the bit is 0
    std::vector<int> actions;
    std::vector<int> moves;  // the action where the participant has no choice
    std::vector<uint> order; // of the actions in a step

    /// Each closed by a 0, by ascending distance: that of a clause is the greatest one of its
    /// variables.
    std::vector<int> clauses;
    /// The end of those of distance 1, of distance 2, ...
    std::vector<std::size_t> clausesEnd;
    std::vector<int> stateClauses; // of a state alone, which no run has to come to
    std::vector<Says> said;        // of each of the clauses, what it says
    std::vector<Says> saidOfStates;
    uint lastLevel = 0;

    [[nodiscard]] const Variable& variable(int literal) const {
        return variables[static_cast<std::size_t>(literal < 0 ? -literal : literal) - 1];
    }
};

} // namespace tervoxal
