// What is asked of one state of a network: atoms and Boolean operators in postfix notation, each
// operator after its operands. All who ask about states ask in this form, whether the question
// came as a formula file or as an expression.
//
//     falsity, truth              the constants
//     prop p                      some automaton is in a location that carries proposition p
//     at a l                      automaton a is in location l
//     enabled x                   some step takes action x
//     deadlock                    no step is possible
//     after x                     the step that led to the state took action x
//     initial                     no step has been taken yet
//     sum                         the weights of those of some atoms that hold add up to a bound
//     negation                    of one operand
//     conjunction, disjunction    of two operands
//
// The numbers are those of the network; nothing here knows whether it has them. After and initial
// are for temporal formulas (temporalformula.h): what is asked of a state alone has neither. A sum
// is made by sumOf (sum.h), and is an atom to all who look at a condition from outside.
//
// Invariant: the tokens leave exactly one value.

#pragma once

#include "temporal/ectlform.h"

#include <cassert>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tervoxal {

struct Condition {
    enum class Term {
        falsity,
        truth,
        prop,
        at,
        enabled,
        deadlock,
        after,
        initial,
        sum,
        negation,
        conjunction,
        disjunction
    };
    struct Part;
    struct Token {
        Term term;
        unsigned int number = 0;   // of the proposition, the automaton or the action
        unsigned int location = 0; // of the automaton
        /// Of a sum: its parts, which sums of other bounds may share, and what they add up to at
        /// least.
        std::shared_ptr<const std::vector<Part>> parts{};
        std::int64_t least = 0;
    };
    /// What an atom weighs where it holds; where it does not, it weighs nothing.
    struct Part {
        Token atom; // prop, at or enabled
        std::int64_t weight;
    };

    std::vector<Token> tokens;
};

/// What a token of a formula adds to a condition. Precondition, asserted: it is no temporal
/// operator.
[[nodiscard]] std::vector<Condition::Token> tokensOf(const OnpNode& token);

/// What a formula asks of a state. One with a temporal operator is false, and keeps what stands
/// before the first. Ends the process like refuseWithoutValue.
[[nodiscard]] Condition conditionOf(const EctlForm& form);

/// What holds exactly where the condition does not, with negations at atoms. Linear.
/// Precondition: the condition negates atoms only.
[[nodiscard]] Condition negated(const Condition& condition);

/// The same question as a formula in postfix notation, with the constants folded away: a formula
/// negates propositions only and has no false, so that is p0p-0&. Linear in the condition.
/// Precondition, asserted: the condition is about propositions alone, and negates nothing else.
[[nodiscard]] std::string postfixOf(const Condition& condition);

/// Calls use with each atom that the token names: the token itself, or those of a sum.
template <class Use>
void forEachAtom(const Condition::Token& token, Use&& use) {
    if (token.term != Condition::Term::sum) return use(token);
    for (const Condition::Part& part : *token.parts) use(part.atom);
}

/// The value of a condition, in one pass. The algebra has constant(bool), atom(token) for the
/// propositions and what else is no operator, negation(value), conjunction(value, value) and
/// disjunction(value, value), which are called from left to right.
template <class Algebra>
[[nodiscard]] auto valueOf(const Condition& condition, Algebra&& algebra) {
    using Term = Condition::Term;
    using Value = decltype(algebra.constant(true));
    std::vector<Value> values;
    const auto pop = [&] {
        Value value = std::move(values.back());
        values.pop_back();
        return value;
    };
    for (const Condition::Token& token : condition.tokens) {
        switch (token.term) {
        case Term::falsity:
        case Term::truth: values.push_back(algebra.constant(token.term == Term::truth)); break;
        case Term::prop:
        case Term::at:
        case Term::enabled:
        case Term::deadlock:
        case Term::after:
        case Term::initial:
        case Term::sum: values.push_back(algebra.atom(token)); break;
        case Term::negation: values.push_back(algebra.negation(pop())); break;
        case Term::conjunction:
        case Term::disjunction: {
            const Value right = pop();
            const Value left = pop();
            values.push_back(token.term == Term::conjunction ? algebra.conjunction(left, right)
                                                             : algebra.disjunction(left, right));
        }
        }
    }
    assert(values.size() == 1);
    return pop();
}

} // namespace tervoxal
