#include "replay/walk.h"

#include "text/fatal.h"
#include "text/readable.h"

#include <algorithm>
#include <string>

namespace tervoxal {

Walk::Walk(const Transitions& transitions, const Path& path, const Condition& condition)
    : steps(&transitions), path(&path), property(transitions.model, condition), before(path.first),
      now(path.first) {
    for (uint a = 1; a < now.size(); ++a) {
        if (now[a] != 0) property.change({a, 0, now[a]});
    }
    met = property.holds();
}

Walk::Walk(const Transitions& transitions, const Path& path, const Course& course)
    : Walk(transitions, path, Condition{{{Condition::Term::truth}}}) {
    this->course = &course;
    met = course.parts.contains(0);
}

std::span<const std::string> Walk::parts() const {
    if (course == nullptr) return {};
    const auto here = course->parts.find(at);
    return here == course->parts.end() ? std::span<const std::string>() : here->second;
}

bool Walk::step() {
    if (at == path->k) return false;
    ++at;
    const bool stood = changed.empty() && at > 1;
    for (const Change& change : changed) before[change.automaton] = change.target;
    changed.clear();
    for (; used < path->changes.size() && path->changes[used].position == at; ++used) {
        const Change& change = path->changes[used].change;
        changed.push_back(change);
        now[change.automaton] = change.target;
        property.change(change);
    }
    // Where nothing moves twice, the same actions are possible.
    if (!stood || !changed.empty() || !path->actions.empty()) {
        possible = steps->actions(before, now, changed);
    }
    if (!path->actions.empty()) {
        const uint taken = path->actions[static_cast<std::size_t>(at) - 1];
        const bool leads = std::ranges::binary_search(possible, taken);
        possible.assign(leads ? 1 : 0, taken);
    }
    met = course != nullptr ? course->parts.contains(at) : property.holds();
    return true;
}

namespace {

/// The sources or targets of the automata that moved; of many the first ones.
std::string shown(std::span<const Change> changes, uint Change::*location, const Names& names) {
    constexpr std::size_t most = 3;
    std::string text = "(";
    for (const Change& change : changes.first(std::min(most, changes.size()))) {
        if (text.size() > 1) text += ", ";
        text += readable(names.automaton(change.automaton)) + ": " +
                readable(names.location(change.automaton, change.*location));
    }
    if (changes.size() > most) text += ", " + std::to_string(changes.size() - most) + " more";
    return text + ")";
}

[[noreturn]] void refuseStep(const Walk& walk, const Names& names) {
    const std::string begin = "step " + std::to_string(walk.position()) + ": no action leads from ";
    if (!walk.changes().empty()) {
        error(begin + shown(walk.changes(), &Change::source, names) + " to " +
              shown(walk.changes(), &Change::target, names));
    }
    std::vector<Change> all;
    for (uint a = 1; a < walk.state().size(); ++a) {
        all.push_back({a, walk.state()[a], walk.state()[a]});
    }
    error(begin + shown(all, &Change::source, names) + " to the same state");
}

} // namespace

void replay(Walk walk, const Names& names) {
    std::vector<Change> all; // what the automata would have to do to be in location 0
    for (uint a = 1; a < walk.state().size(); ++a) {
        if (walk.state()[a] != 0) all.push_back({a, walk.state()[a], 0});
    }
    if (!all.empty()) {
        error("position 0 is not the initial state: " + shown(all, &Change::source, names) +
              " in place of " + shown(all, &Change::target, names));
    }
    bool met = walk.holds();
    while (walk.step()) {
        if (walk.actions().empty()) refuseStep(walk, names);
        met = met || walk.holds();
        if (walk.model().totalNrVertBits == 0) break; // every step is the same
    }
    if (!met) error("the formula holds at no position of the path");
}

} // namespace tervoxal
