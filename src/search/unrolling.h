// A network in an incremental solver, unrolled position by position: each model of the clauses is a
// path.
#pragma once

#include "run.h"
#include "solver.h"
#include "tables.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

/// What may be in one step.
enum class Steps { serial, parallel, ordered };

/// The clauses of an unrolling by what they say.
enum class Says {
    start,     // every automaton is in location 0 at position 0; without it, in any
    somewhere, // an automaton is in one of its locations
    once,      // and in no other
    source,    // a move leaves its source
    target,    // and comes to its target
    taken,     // a move is one of its action
    choice,    // an action has a move of each participant
    frame,     // what no move changes stays
    exclusion, // of what would be in each other's way only one is in a step
    busy,      // a step has an action where it has to
    nothing
};

class Unrolling {
public:
    /// At position 0, in the initial state. The tables and the solver must outlive it. One kind of
    /// clauses may be left out, so that tests can see what it is for.
    Unrolling(const Tables& tables, Solver& solver, Steps steps, Says without = Says::nothing);

    /// One more position.
    void step();
    /// The last position.
    [[nodiscard]] int depth() const { return static_cast<int>(stateAt.size()) - 1; }

    /// A literal that is true.
    [[nodiscard]] int truth() const { return verity; }
    /// The automaton of the location is in it, at a position from 0 to depth().
    [[nodiscard]] int location(int position, uint l) const;
    /// All steps up to a position have an action.
    [[nodiscard]] int busy(int position) const { return busyAt[static_cast<std::size_t>(position)]; }

    /// The actions up to a position in the model, in an order in which they can be taken.
    [[nodiscard]] Run run(int position) const;

    const Tables& tables;

private:
    struct Template;

    Solver& solver;
    Steps steps;
    Says without;
    int verity;
    // The clauses of a step, closed by zeros. Their variables: those of the state that it leaves
    // from 1 on, those of the state that it comes to, those of the step.
    std::vector<int> clauses;
    std::vector<uint> late; // of each variable: it is false in that many of the first steps
    uint lastLate = 0;
    int stateSize = 0;
    int stepSize = 0;
    std::vector<int> locationVars; // of each location in a state, negative where its bit is 0
    std::vector<int> actionVars;
    std::vector<int> moveVars; // that of the action where the participant has no choice
    std::vector<uint> order;   // of the actions
    int busyVar = 0;
    std::vector<int> stateAt; // of each position, the first variable
    std::vector<int> busyAt;
    std::vector<int> given;   // the clauses of the step at hand
};
