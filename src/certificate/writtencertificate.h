// What a certificate's file says, as showCertificate writes it or a person. Nothing of it is
// believed here.
//
//     # never: EXPRESSION                 what no reachable state meets
//     # sum of weights: 2 EXPRESSION + EXPRESSION never increases, 1 at the start
//     NAME: EXPRESSION                    states whose sum is greater than at the start
//     # inductive relative to these:
//     NAME: EXPRESSION                    states that no step leads into, from outside of all
//     # not met in any state of these automata alone, whatever the others do:
//     #     AUTOMATON                     a name in double quotes, or a number
//
// An expression is one of expression.h about a state. In a sum it counts its weight where it holds,
// 1 where none stands before it. Where there is no sum, all sets are inductive. Other comments and
// blank lines mean nothing.

#pragma once

#include "model/names.h"
#include "query/condition.h"

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace tervoxal {

struct WrittenCertificate {
    struct Set {
        long line;
        std::string name;
        Condition states;
    };
    struct Term {
        std::uint64_t weight;
        Condition where;
    };
    struct Sum {
        long line = 0;
        std::vector<Term> terms;     // their weights are together at most greatestSum
        std::uint64_t initially = 0; // at most greatestSum
        std::vector<Set> sets;
    };
    static constexpr std::uint64_t greatestSum = std::uint64_t(1) << 62U;

    std::optional<Condition> never;
    std::vector<Sum> sums;
    std::vector<Set> sets;
    /// The numbers of automata, ascending, each once.
    std::optional<std::vector<uint>> alone;
};

/// Reads a certificate about the network to the end of the stream. One that is malformed, or that
/// says nothing of a kind above, ends the process with status 1 and one line on standard error,
/// which begins with the name and the line. Linear in the stream.
[[nodiscard]] WrittenCertificate readCertificate(std::istream& in, const std::string& name,
                                                 const NetTimedModel& model, const Names& names);

} // namespace tervoxal
