// A walk along a path on its network: at each position the state, how the walk came there and
// whether the condition holds. A copy goes on from the same position on its own.

#pragma once

#include "model/names.h"
#include "replay/path.h"
#include "replay/property.h"
#include "replay/transitions.h"

#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace tervoxal {

/// What a path shows of a formula about paths.
struct Course {
    std::map<int, std::vector<std::string>> parts; // that are met, by position
    std::set<uint> automata;                       // that the formula speaks of
};

class Walk {
public:
    /// At position 0. The transitions and the path must outlive the walk and its copies.
    Walk(const Transitions& transitions, const Path& path, const Condition& condition);
    /// Of a path that shows a formula about paths. It holds where a part of it is met.
    Walk(const Transitions& transitions, const Path& path, const Course& course);

    /// Goes to the next position, false at the last one. Takes time for what changes, not for the
    /// whole state.
    bool step();

    /// 0 to k.
    [[nodiscard]] int position() const { return at; }
    [[nodiscard]] const State& state() const { return now; }
    [[nodiscard]] bool holds() const { return met; }
    /// The automata that moved in the step that led here, ascending. Empty at position 0.
    [[nodiscard]] std::span<const Change> changes() const { return changed; }
    /// The numbers of the actions that lead here from the position before, ascending, or of those
    /// the one that the path tells. Empty at position 0, and where no such action leads here.
    [[nodiscard]] std::span<const uint> actions() const { return possible; }
    [[nodiscard]] const Transitions& transitions() const { return *steps; }
    [[nodiscard]] const NetTimedModel& model() const { return steps->model; }
    /// The automata that the condition speaks of, or the formula.
    [[nodiscard]] std::set<uint> named() const {
        return course != nullptr ? course->automata : property.automata();
    }
    /// The number of steps.
    [[nodiscard]] int length() const { return path->k; }
    [[nodiscard]] const Path& whole() const { return *path; }
    /// Whether it shows a formula about paths, and the parts of it that are met here.
    [[nodiscard]] bool isCourse() const { return course != nullptr; }
    [[nodiscard]] std::span<const std::string> parts() const;
    /// Goes along another path from here, of which its own is the beginning.
    void goOn(const Path& longer) { path = &longer; }

private:
    const Transitions* steps;
    const Path* path;
    const Course* course = nullptr;
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
