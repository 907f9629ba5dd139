// A path of a network: states at the positions 0 to k, as a solver's model tells them. Whether it
// is a run of the network is for a walk to find out.
//
// Bit i of automaton a at position p is the state variable 1 + p * totalNrVertBits + bitShift[a] +
// i. A variable that is missing from the model, or greater than the largest one in the clauses, is
// 0.

#pragma once

#include "state.h"

#include <span>
#include <vector>

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
};

/// Decodes a model: literals by ascending variable, each once. The network must be laid out, and
/// maxVar is the largest state variable in the clauses. Linear in the literals and a state.
[[nodiscard]] Path decodePath(const NetTimedModel& model, int k, int maxVar,
                              std::span<const int> literals);
