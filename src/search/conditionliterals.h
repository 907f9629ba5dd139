// Conditions at the positions of an unrolling, as literals. Each is defined when it is first asked
// for, in both directions, and an atom that several conditions share is defined once.
//
// A sum becomes a totalizer (Bailleux and Boufkhad, Efficient CNF Encoding of Boolean Cardinality
// Constraints, 2003; with weights Joshi, Martins and Manquinho, Generalized Totalizer Encoding for
// Pseudo-Boolean Constraints, 2015): the amounts of two halves give those of both, and amounts from
// the bound on are one. Of n literals with the bound b that is n * b * log(n) clauses at most;
// where fewer have to be false than true, those are counted.

#pragma once

#include "query/condition.h"
#include "query/sum.h"
#include "search/solver.h"
#include "search/unrolling.h"

#include <cstddef>
#include <cstdint>
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

    /// Literals are an algebra for conditions and their atoms.
    [[nodiscard]] int constant(bool value) const;
    [[nodiscard]] int atom(const Condition::Token& token);
    [[nodiscard]] static int negation(int a) { return -a; }
    [[nodiscard]] int conjunction(int a, int b) { return -disjunction(-a, -b); }
    [[nodiscard]] int disjunction(int a, int b);

    /// Some of the literals is true.
    [[nodiscard]] int some(std::vector<int> literals);
    template <class Value>
    [[nodiscard]] int some(std::size_t count, Value&& value);
    [[nodiscard]] int located(uint location) const;
    [[nodiscard]] int possible(uint action);
    [[nodiscard]] int deadlock();
    [[nodiscard]] int sum(const Condition::Token& token);

private:
    /// The literal of an atom at the position at hand, made if it is not known.
    template <class Make>
    [[nodiscard]] int shared(Condition::Term term, uint number, Make&& make);

    /// What literals of positive weights add up to, as far as it matters (totalizer): an amount,
    /// and a literal that is true exactly where it is reached, for each amount that can be, from
    /// the least one on. Nothing at 0, which is always reached.
    using Totals = std::vector<std::pair<std::int64_t, int>>;
    [[nodiscard]] Totals totals(const Totals& left, const Totals& right, std::int64_t most);
    /// The literals of a sum reach its bound.
    [[nodiscard]] int reached(const PositiveSum<int>& sum);

    const Unrolling& unrolling;
    Solver& solver;
    int position = 0;                                            // of the condition at hand
    std::map<std::tuple<int, Condition::Term, uint>, int> atoms; // by position
    /// By position, parts and bound. The parts are kept, so that no others come to their address.
    std::map<std::tuple<int, std::shared_ptr<const std::vector<Condition::Part>>, std::int64_t>,
             int>
        sums;
};

template <class Value>
int ConditionLiterals::some(std::size_t count, Value&& value) {
    std::vector<int> literals;
    for (std::size_t i = 0; i < count; ++i) literals.push_back(value(i));
    return some(std::move(literals));
}

} // namespace tervoxal
