// A network in an incremental solver, unrolled position by position: each model of the clauses
// tells a run from its first position to its last. Only what is new at a position is given to the
// solver, and questions about it are asked under assumptions.
//
// A step holds no action, one (interleaving), any of which no two share an automaton that moves
// (independent, or A-steps), or any in a fixed order, in which an automaton may move more than once
// (relaxed, or E-steps; Rintanen, Heljanko and Niemela, Planning as Satisfiability: Parallel Plans
// and Algorithms for Plan Search, 2006). In each case they can be taken one after the other, so a
// model of n steps is a path, of any length. And a path of up to n steps is a model of n steps:
// with one action in a step at most, and idle steps. So what is refuted at a depth is refuted for
// all paths of up to that many steps.

#pragma once

#include "model/flatnetwork.h"
#include "search/firing.h"
#include "search/solver.h"
#include "search/stepclauses.h"

#include <cstdint>
#include <vector>

namespace tervoxal {

class Unrolling {
public:
    /// At position 0. The network and the solver must outlive it.
    Unrolling(const FlatNetwork& network, Solver& solver, const Scope& scope);
    /// With the clauses of the network's steps.
    Unrolling(const FlatNetwork& network, Solver& solver, StepClauses made);

    /// One more position.
    void step();
    /// At each position, also of those to come, some automaton is in one of these locations, as far
    /// as they can matter there. Precondition: so it is in each state that runs come to.
    void always(const std::vector<uint>& locations);
    /// The last position.
    [[nodiscard]] int depth() const { return static_cast<int>(states.size()) - 1; }

    /// A literal that is true.
    [[nodiscard]] int truth() const { return verity; }
    /// The automaton of the location is in it, at a position from 0 to depth(). Precondition,
    /// asserted: it can matter at the last position.
    [[nodiscard]] int location(int position, uint l) const;
    /// The actions up to a position in the model, in an order in which they can be taken.
    [[nodiscard]] Run run(int position) const;

    /// The variables and the literals of the clauses that the solver has been given, and the
    /// literals of one step.
    [[nodiscard]] std::int64_t size() const { return given; }
    [[nodiscard]] std::int64_t stepLiterals() const {
        return static_cast<std::int64_t>(clauses.clauses.size());
    }

    const FlatNetwork& network;

private:
    /// Of a state or of a step, the first variable of each distance. Variables are allotted when
    /// the last position is so far away that the cone holds them.
    using Blocks = std::vector<int>;
    void allot(Blocks& blocks, const std::vector<uint>& sizes, std::size_t distance);
    void start();
    [[nodiscard]] int number(int var, int step) const;
    void give(int step, std::span<const int> literals);

    /// Locations of which some automaton is always in one, and how far from the last position all
    /// of them matter.
    struct Fact {
        std::vector<uint> locations;
        uint distance;
    };
    void hold(const Fact& fact, int position);

    Solver& solver;
    const StepClauses clauses;
    int verity;
    std::vector<Blocks> states; // by position
    std::vector<Blocks> steps;  // by the position that they come to
    std::vector<Fact> facts;
    std::vector<uint> starting; // locations by their distance
    std::size_t started = 0;    // how many of them have their initial value by now
    std::vector<int> shifted;   // the clauses at hand
    std::int64_t given = 0;
};

} // namespace tervoxal
