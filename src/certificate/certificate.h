// Why a condition is never met, in a form that can be checked without the one who found it: sets of
// states none of which is ever reached, an inductive invariant; or automata that cannot meet it
// alone, whatever the others do.
//
// It proves that no path of any length meets the condition if
//
//     1. the initial state is in none of the sets,
//     2. the condition holds in no state but those of the sets, and
//     3. no step leads from a state outside of the sets into one of them;
//
// or else if none of the states of those automata alone meets it (see replay/alone.h).

#pragma once

#include "model/names.h"
#include "model/ntamodel.h"

#include <algorithm>
#include <compare>
#include <optional>
#include <ostream>
#include <string>
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

    std::vector<Set> sets;
    /// The numbers of the automata that were searched alone, ascending. There are no sets then.
    std::optional<std::vector<uint>> alone{};
};

/// Writes a line `NAME: EXPRESSION` for each set, which is a file of questions: no reachable state
/// answers any of them. Automata that were searched alone are a comment. An automaton or a location
/// stands under its name, or under its number where the name is missing or another one's as well.
void showCertificate(std::ostream& out, const NetTimedModel& model, const Names& names,
                     const Certificate& certificate);

} // namespace tervoxal
