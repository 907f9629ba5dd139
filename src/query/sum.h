// Sums of atoms: how much those weigh that hold (linear pseudo-Boolean constraints). Counting is
// the sum where each weighs 1.

#pragma once

#include "query/condition.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tervoxal {

/// The token that says that the parts which hold add up to `least` or more. Parts of the same atom
/// are one, by ascending atom, and none weighs 0; a constant where the bound alone decides.
/// Precondition: the atoms are prop, at or enabled, and what the weights add up to is an int64.
[[nodiscard]] Condition::Token sumOf(std::vector<Condition::Part> parts, std::int64_t least);

/// A sum over values of an algebra, with weights above 0.
template <class Value>
struct PositiveSum {
    std::vector<std::pair<std::int64_t, Value>> parts;
    std::int64_t least; // above 0
    std::int64_t total; // of the weights; not below the bound
};

/// The same sum with the negations of what weighs less than 0: it weighs as much if it does not
/// hold, and the bound rises by that. The algebra is one for conditions.
template <class Algebra>
[[nodiscard]] auto positiveSum(const Condition::Token& sum, Algebra& algebra) {
    PositiveSum<decltype(algebra.constant(true))> positive{{}, sum.least, 0};
    for (const auto& [atom, weight] : *sum.parts) {
        const auto value = algebra.atom(atom);
        if (weight > 0) {
            positive.parts.emplace_back(weight, value);
        } else {
            positive.parts.emplace_back(-weight, algebra.negation(value));
            positive.least -= weight;
        }
        positive.total += positive.parts.back().first;
    }
    return positive;
}

/// The condition without sums, which become conjunctions and disjunctions of their atoms, or
/// nothing if that takes more than `most` tokens in their place.
[[nodiscard]] std::optional<Condition> writtenOut(const Condition& condition, std::size_t most);

} // namespace tervoxal
