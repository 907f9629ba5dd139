// A walk along a path on its network: at each position the state, how the walk came there and
// whether the condition holds. A copy goes on from the same position on its own.

#pragma once

#include "model/names.h"
#include "replay/path.h"
#include "replay/property.h"
#include "replay/transitions.h"

#include <set>
#include <span>
#include <vector>

namespace tervoxal {

class Walk {
public:
    /// At position 0. The transitions and the path must outlive the walk and its copies.
    Walk(const Transitions& transitions, const Path& path, const Condition& condition);

    /// Goes to the next position, false at the last one. Takes time for what changes, not for the
    /// whole state.
    bool step();

    /// 0 to k.
    [[nodiscard]] int position() const { return at; }
    [[nodiscard]] const State& state() const { return now; }
    [[nodiscard]] bool holds() const { return met; }
    /// The automata that moved in the step that led here, ascending. Empty at position 0.
    [[nodiscard]] std::span<const Change> changes() const { return changed; }
    /// The numbers of the actions that lead here from the position before, ascending. Empty at
    /// position 0, and where no action leads here.
    [[nodiscard]] std::span<const uint> actions() const { return possible; }
    [[nodiscard]] const Transitions& transitions() const { return *steps; }
    [[nodiscard]] const NetTimedModel& model() const { return steps->model; }
    /// The automata that the condition speaks of.
    [[nodiscard]] std::set<uint> named() const { return property.automata(); }
    /// The number of steps.
    [[nodiscard]] int length() const { return path->k; }

private:
    const Transitions* steps;
    const Path* path;
    Property property;
    State before;
    State now;
    std::size_t used = 0; // of the path's changes
    int at = 0;
    bool met = false;
    std::vector<Change> changed;
    std::vector<uint> possible;
};

/// Walks to the end, from position 0. A path that does not begin in the initial state, that has a
/// step without an action or that never meets the formula ends the process with status 1 and one
/// line on standard error.
void replay(Walk walk, const Names& names);

} // namespace tervoxal
