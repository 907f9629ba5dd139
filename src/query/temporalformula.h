// What is asked about the paths of a network: a formula of computation tree logic (CTL; Clarke,
// Emerson and Sistla, Automatic Verification of Finite-State Concurrent Systems Using Temporal
// Logic Specifications, 1986), in negation normal form.
//
//     condition                   holds in the state, of which the step that led to it is a part
//     conjunction, disjunction    of two formulas
//     next f         EX f         after the next step
//     until f g      E[f U g]     g holds at last, and f at each position before that
//     release f g    E[f R g]     g holds for ever, or up to a position where f holds as well
//
// Each of the last three says that of some path from here (E) or of all (A). EF g is E[true U g],
// EG g is E[false R g]. Paths are maximal: they are infinite, or end where no action is possible.
// There EX f is false and AX f is true, and EG g is met by a path that keeps g up to such an end.
//
// A formula is a tree, and its nodes stand in a row, each after its operands, the root last. No
// operation recurses.

#pragma once

#include "query/condition.h"

#include <cstddef>
#include <vector>

namespace tervoxal {

/// Which infinite paths count; those that end do always.
struct Fairness {
    std::vector<Condition> conditions{}; // that hold again and again
    /// No action is possible from some position on for ever and never taken after it (weak
    /// fairness; Lamport, The Temporal Logic of Actions, 1994).
    bool weak = false;
};

struct TemporalFormula {
    enum class Term { condition, conjunction, disjunction, next, until, release };
    struct Node {
        Term term;
        bool universal = false; // of a temporal operator: on all paths
        std::size_t left = 0;   // the operands, by index; next has the right one only
        std::size_t right = 0;
        Condition condition{};  // of a condition
        std::size_t column = 0; // of the operator in the text, in bytes from 1; 0 if it is in none
    };

    std::vector<Node> nodes;
};

[[nodiscard]] inline bool isTemporal(TemporalFormula::Term term) {
    return term >= TemporalFormula::Term::next;
}

/// A formula as its text tells it, in postfix notation: operators after their operands, negations
/// at atoms only.
struct TemporalToken {
    enum class Kind { condition, next, finally, globally, until, release };

    Kind kind = Kind::condition;
    Condition::Token condition{Condition::Term::truth};
    bool universal = false;
    std::size_t column = 0;
};

/// What a formula asks, with columns in its text. One with the operator EK, which has no meaning
/// for the paths of a network, and one that leaves no formula or several end the process with
/// status 1 and one line on standard error.
[[nodiscard]] std::vector<TemporalToken> temporalTokens(const EctlForm& form);

/// The formula with as few nodes as there can be: what has no temporal operator in it is one
/// condition. Linear. Precondition: the tokens leave exactly one value.
[[nodiscard]] TemporalFormula temporalFormula(const std::vector<TemporalToken>& tokens);

/// What holds exactly where the formula does not. Linear.
[[nodiscard]] TemporalFormula negated(TemporalFormula formula);

/// Whether the formula is a claim about the initial state, which holds or does not, and no question
/// whether it holds in some reachable state: it has a temporal operator, and its outermost ones
/// speak of all paths.
[[nodiscard]] bool isClaim(const TemporalFormula& formula);

/// What a path is looked for to show: the formula, or the negation of a claim.
[[nodiscard]] TemporalFormula sought(const TemporalFormula& formula);

/// Whether one path cannot show that the formula holds. One does if no operator speaks of all
/// paths, of a conjunction at most one operand has a temporal operator, and the left operand of
/// until and the right one of release have none.
[[nodiscard]] bool needsSeveralPaths(const TemporalFormula& formula);

/// By node, whether a path is followed to show that it holds: it is a temporal operator that speaks
/// of one path, or has one outside of those that speak of all.
[[nodiscard]] std::vector<bool> alongPath(const TemporalFormula& formula);
/// The operand of a node that is followed along that path, the others being looked at as the path
/// goes: of a conjunction the first one along a path, of release the left one, else the right one.
/// Of a disjunction either may be.
[[nodiscard]] std::size_t followed(const TemporalFormula& formula, const std::vector<bool>& along,
                                   std::size_t node);

/// Whether a state alone tells if the condition holds, without the step that led to it.
[[nodiscard]] bool isOfState(const Condition& condition);

} // namespace tervoxal
