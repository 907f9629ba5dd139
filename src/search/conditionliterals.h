// Conditions at the positions of an unrolling, as literals. Each is defined when it is first asked
// for, in both directions, and an atom that several conditions share is defined once.

#pragma once

#include "query/condition.h"
#include "search/solver.h"
#include "search/unrolling.h"

#include <map>
#include <tuple>
#include <utility>
#include <vector>

namespace tervoxal {

class ConditionLiterals {
public:
    /// The unrolling and its solver must outlive it.
    ConditionLiterals(const Unrolling& unrolling, Solver& solver);

    /// A literal that is true exactly where the condition holds at the position, from 0 to the
    /// depth of the unrolling.
    [[nodiscard]] int literal(const Condition& condition, int position);

    /// Locations, at most one of each automaton, such that the condition holds in all states in
    /// them, among these that of the model at position 0. Asks the solver again. Precondition: the
    /// last question was satisfiable under the literal of the condition there.
    [[nodiscard]] std::vector<uint> cube(const Condition& condition);

    /// Literals are an algebra for conditions.
    [[nodiscard]] int constant(bool value) const;
    [[nodiscard]] int atom(const Condition::Token& token);
    [[nodiscard]] static int negation(int a) { return -a; }
    [[nodiscard]] int conjunction(int a, int b) { return -disjunction(-a, -b); }
    [[nodiscard]] int disjunction(int a, int b);

    /// Some of the literals is true.
    [[nodiscard]] int some(std::vector<int> literals);

private:
    [[nodiscard]] int prop(uint number);
    [[nodiscard]] int at(uint automaton, uint location) const;
    [[nodiscard]] int enabled(uint action);
    [[nodiscard]] int deadlock();

    const Unrolling& unrolling;
    Solver& solver;
    int position = 0;                                            // of the condition at hand
    std::map<std::tuple<int, Condition::Term, uint>, int> atoms; // by position
};

} // namespace tervoxal
