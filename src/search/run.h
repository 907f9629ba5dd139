// A run of a network as the search finds it: actions one behind the other, with the moves of their
// participants.

#pragma once

#include "condition.h"
#include "path.h"
#include "tables.h"

#include <cstddef>
#include <vector>

/// An action that is taken, and the move of each of its participants, as indices of the tables.
struct Taken {
    uint action;
    std::vector<uint> moves;
};

using Run = std::vector<Taken>;

/// The run as states at positions.
[[nodiscard]] Path pathOf(const Tables& tables, const Run& run);

/// A path whose steps are actions, as a run of the first action that makes each. Steps that change
/// nothing are left out. Precondition, asserted: it is a run of the network.
[[nodiscard]] Run runOf(const Tables& tables, const Path& path);

/// What is left of a run that meets the condition somewhere: it still does, and it has `least`
/// actions or more if it had. It ends where the condition holds first; then, walking back from the
/// end, an action stays only if it moves an automaton that the condition or an action behind it
/// looks at. Linear in the run, and in the network.
[[nodiscard]] Run shortened(const Tables& tables, Run run, const Condition& condition,
                            std::size_t least);
