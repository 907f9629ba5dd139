// A path of a network: states at the positions 0 to k, as a solver's model or the choices of its
// steps tell them. Whether it is a run of the network is for a walk to find out.
//
// In a model, bit i of automaton a at position p is the state variable 1 + p * totalNrVertBits +
// bitShift[a] + i. A variable that is missing from the model, or greater than the largest one in
// the clauses, is 0.

#pragma once

#include "replay/state.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tervoxal {

struct Path {
    /// An automaton that is elsewhere at a position than at the one before.
    struct PositionedChange {
        int position;
        Change change;
    };

    int k;       // steps
    State first; // at position 0
    /// By ascending position and automaton. There are no more of them than true state variables and
    /// their successors, whatever k and the number of automata.
    std::vector<PositionedChange> changes;

    // Of a path that shows what a formula about paths asks for:

    /// The number of the action of each step; empty if any that leads there will do.
    std::vector<uint> actions{};
    /// The position, before the last one, that the last one equals: there it goes on for ever.
    std::optional<int> loop{};
    /// It ends at the last position, since no action is possible there.
    bool ends = false;
};

/// The same path, once more through its loop if it has one.
[[nodiscard]] Path twiceAround(const Path& path);

/// Decodes a model: literals by ascending variable, each once. The network must be laid out, and
/// maxVar is the largest state variable in the clauses. Linear in the literals and a state.
[[nodiscard]] Path decodePath(const NetTimedModel& model, int k, int maxVar,
                              std::span<const int> literals);
/// Makes the steps that are chosen, from the initial state; those that change nothing are left out.
/// Each text is a 0 or 1 for each bit of choices.h, anything else being a 0. Linear in the
/// texts and the moves that they choose among.
[[nodiscard]] Path decodeChoices(const NetTimedModel& model, std::span<const std::string> texts);

} // namespace tervoxal
