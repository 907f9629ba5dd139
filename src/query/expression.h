// Questions as people write them, with names and operators between their operands: about one state,
// or about the paths from it.
//
//     !a             not
//     a & b          and
//     a | b          or
//     a -> b         implies: the weakest, groups to the right
//     (a)            brackets
//     true  false    the constants
//     p12            the proposition 12
//     name           the proposition of that name
//     "a name"       likewise, whatever the name holds; \" and \\ stand for " and \ in it
//     deadlock       no action is possible
//     enabled(x)     action x is possible
//     at(a, l)       automaton a is in location l
//     after(x)       the last step was action x
//     initial        no step has been taken yet
//     count(t, t) >= 2   how many of the things hold; also <, <=, =, !=, >
//     any(t, t)      some of them holds
//     all(t, t)      all of them hold
//     deadlock(x, x) no action but these is possible
//     EX a  AX a     a holds after the next step: of some path, of all paths
//     EF a  AF a     a holds some time
//     EG a  AG a     a holds for ever
//     E[a U b]       b holds some time and a up to then; A[a U b] likewise
//
// x, a and l are numbers or names. A thing t is a proposition, at(a, l) or enabled(x). In the
// brackets of the last four a name in double quotes that has a * or a ? stands for all names that
// match: ? for one character, * for any number of them. A thing counts once, however often it is
// named. Either side of a comparison is a sum and difference of counts and numbers. Blanks separate
// and mean nothing. A bare name ends before a blank, of one of ! & | ( ) " and of "->", between the
// brackets of an atom before a comma as well, and in E[ ] before a "]" that it has not opened; all
// other bytes may stand in it. `p` with digits after it is always a number, and so are digits
// between the brackets of an atom; `true`, `false` and `deadlock` are always these words. In double
// quotes they are names. `enabled`, `at`, `after`, `count`, `any` and `all` are names unless a
// bracket follows, and so are EX and its like unless an operand does, where a proposition is called
// that. `initial` and "E[..." are names where a proposition is called that.

#pragma once

#include "query/condition.h"
#include "query/temporalformula.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tervoxal {

/// What there is in a network, and what it is called.
struct Vocabulary {
    /// The numbers of the things of a name, ascending.
    using Named = std::map<std::string, std::vector<unsigned int>>;
    struct Things {
        Named named;
        std::set<unsigned int> numbers; // of all, also of those without a name
    };

    Named props;
    Things actions;
    Things automata;
    std::map<unsigned int, Things> locations; // of each automaton
};

/// What an expression says.
struct Expression {
    /// What it asks of a state; false if it is temporal. Negates atoms only.
    Condition condition;
    /// What it asks, if it speaks of paths or of the step that led to a state.
    std::optional<TemporalFormula> temporal;
    /// Why no formula file can say it, empty if one can.
    std::string beyondFormula;
    /// What can hardly be meant, each one line.
    std::vector<std::string> warnings;
};

/// Parses an expression, in one pass there and back: time, memory and result are linear in its
/// length, however deep it nests. An expression that is malformed, an unknown name, an action, an
/// automaton or a location that is not there, and a name of two things end the process with status
/// 1 and one line on standard error that tells the column, counted in bytes from 1. `where` stands
/// before that, for expressions that stand in a file.
[[nodiscard]] Expression expressionOf(const std::string& text, const Vocabulary& vocabulary,
                                      const std::string& where = {});

} // namespace tervoxal
