// Why a condition is never met, in a form that can be checked without the one who found it: sets of
// states none of which is ever reached; or automata that cannot meet it alone, whatever the others
// do. Of the sets, some are excluded by weights of locations whose sum never increases, the others
// are an inductive invariant relative to these.
//
// It proves that no path of any length meets the condition if
//
//     1. no action increases a sum of weights, and each state of a set that it excludes has a
//        greater sum than the initial state,
//     2. the initial state is in none of the other sets,
//     3. the condition holds in no state but those of the sets, and
//     4. no step leads from a state outside of all sets into one of the other sets, unless that
//        state is excluded by weights as well;
//
// or else if none of the states of those automata alone meets it (see replay/alone.h). Of a formula
// about paths the certificate is the number of states (see replay/allstates.h).

#pragma once

#include "model/names.h"
#include "model/ntamodel.h"

#include <algorithm>
#include <compare>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tervoxal {

struct Certificate {
    /// Some locations of an automaton, by ascending number. Those that the network do without may
    /// be among them or not.
    struct Places {
        uint automaton;
        std::vector<uint> locations;

        [[nodiscard]] bool has(uint location) const {
            return std::ranges::binary_search(locations, location);
        }
        auto operator<=>(const Places&) const = default; // NOLINT(modernize-use-nullptr)
    };
    /// States in which all of some automata are in such locations, whatever the others do.
    using Set = std::vector<Places>;

    /// Of a location, greater than 0. Those of all automata together fit in 64 bits.
    struct Weight {
        uint automaton;
        uint location;
        uint weight;

        auto operator<=>(const Weight&) const = default; // NOLINT(modernize-use-nullptr)
    };
    /// Sets in whose states the weights of where the automata are have a sum that is never reached.
    struct Weighed {
        std::vector<Weight> weights; // by ascending location; those that lack have weight 0
        std::vector<Set> sets;       // each has an automaton once, ascending
    };

    std::vector<Set> sets; // inductive relative to those of the weights
    /// The numbers of the automata that were searched alone, ascending. There are no sets then.
    std::optional<std::vector<uint>> alone{};
    /// Of a formula about paths: the number of states of the network, all of which were searched.
    /// There are no sets then.
    std::optional<std::size_t> states{};
    std::vector<Weighed> weighed{};
};

/// The same, with equal weights but once, ascending, and with no set twice.
[[nodiscard]] std::vector<Certificate::Weighed> merged(std::vector<Certificate::Weighed> weighed);

/// A line before the question where the certificate is about another network.
constexpr std::string_view observedHead = "# in the network with an observer of the formula:";

/// Writes a line `NAME: EXPRESSION` for each set, which is a file of questions: no reachable state
/// answers any of them. Automata that were searched alone and a number of states are comments. An
/// automaton or a location stands under its name, or under its number where the name is missing or
/// another one's as well. Where there are weights, each line
///
///     # sum of weights: 2 at(a, l) + at(b, m) never increases, 1 at the start
///
/// stands before the sets that these exclude (equal weights of an automaton are of one expression,
/// which counts 1 where it holds), and `# inductive relative to these:` before the others.
void showCertificate(std::ostream& out, const NetTimedModel& model, const Names& names,
                     const Certificate& certificate);

} // namespace tervoxal
