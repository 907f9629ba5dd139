// Formulas as people write them, with names and operators between their operands, and their way to
// the postfix notation of formulas.
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
//
// Blanks separate and mean nothing. A bare name ends ahead of a blank, of one of ! & | ( ) " and of
// "->"; all other bytes may stand in it. `p` with digits behind it is always a number, and `true`
// and `false` are always constants; in double quotes they are names.

#pragma once

#include <map>
#include <string>
#include <vector>

/// The numbers of the propositions that have a name, ascending.
using PropNumbers = std::map<std::string, std::vector<unsigned int>>;

/// What an expression stands for.
struct Translated {
    /// The formula in postfix notation. It negates propositions only, and holds a constant only if
    /// it is nothing else: T, or a proposition and its negation for what is false.
    std::string postfix;
    /// What can hardly be meant, each one line.
    std::vector<std::string> warnings;
};

/// Translates an expression, in one pass there and back: time, memory and result are linear in its
/// length, however deep it nests. An expression that is malformed, an unknown name, and a name of
/// two propositions end the process with status 1 and one line on standard error that tells the
/// column, counted in bytes from 1.
[[nodiscard]] Translated translated(const std::string& expression, const PropNumbers& props);
