#include "run.h"

#include "property.h"
#include "transitions.h"

#include <algorithm>
#include <cassert>

namespace {

/// Calls use with the participant's automaton and its move, for each participant.
template <class Use>
void forEachMove(const Tables& tables, const Taken& taken, Use&& use) {
    const uint begin = tables.participantsBegin(taken.action);
    for (std::size_t i = 0; i < taken.moves.size(); ++i) {
        use(tables.participants[begin + i].automaton, tables.moves[taken.moves[i]]);
    }
}

/// Calls use with each change of state that an action makes.
template <class Use>
void forEachChange(const Tables& tables, const Taken& taken, Use&& use) {
    forEachMove(tables, taken, [&](uint a, const Tables::Move& move) {
        if (move.source == move.target) return;
        use(Change{tables.automata[a].number, tables.locations[move.source].number,
                   tables.locations[move.target].number});
    });
}

/// The number of actions ahead of the first state where the condition holds.
std::size_t firstMet(const Tables& tables, const Run& run, const Condition& condition) {
    Property property(tables.model, condition);
    std::size_t position = 0;
    for (; position < run.size() && !property.holds(); ++position) {
        forEachChange(tables, run[position], [&](const Change& c) { property.change(c); });
    }
    return position;
}

/// An action of the network that leads from one state to the other, as the tables have it.
Taken takenBetween(const Tables& tables, uint number, const State& before, const State& after) {
    const std::optional<uint> action = tables.action(number);
    assert(action);
    Taken taken{*action, {}};
    for (uint p = tables.participantsBegin(*action); p < tables.actions[*action].participantsEnd;
         ++p) {
        const uint a = tables.automata[tables.participants[p].automaton].number;
        uint m = tables.movesBegin(p);
        while (tables.locations[tables.moves[m].source].number != before[a] ||
               tables.locations[tables.moves[m].target].number != after[a]) {
            ++m;
            assert(m < tables.participants[p].movesEnd);
        }
        taken.moves.push_back(m);
    }
    return taken;
}

} // namespace

Path pathOf(const Tables& tables, const Run& run) {
    Path path{static_cast<int>(run.size()), initialState(tables.model), {}};
    for (std::size_t i = 0; i < run.size(); ++i) {
        forEachChange(tables, run[i], [&](const Change& change) {
            path.changes.push_back({static_cast<int>(i) + 1, change});
        });
    }
    return path;
}

Run runOf(const Tables& tables, const Path& path) {
    const Transitions transitions(tables.model);
    State before = path.first;
    State after = before;
    Run run;
    for (auto change = path.changes.begin(); change != path.changes.end();) {
        std::vector<Change> changes;
        for (const int p = change->position; change != path.changes.end() && change->position == p;
             ++change) {
            changes.push_back(change->change);
            after[change->change.automaton] = change->change.target;
        }
        const std::vector<uint> actions = transitions.actions(before, after, changes);
        assert(!actions.empty());
        run.push_back(takenBetween(tables, actions.front(), before, after));
        for (const Change& made : changes) before[made.automaton] = made.target;
    }
    return run;
}

Run shortened(const Tables& tables, Run run, const Condition& condition, std::size_t least) {
    const std::size_t met = firstMet(tables, run, condition);
    run.resize(std::min(run.size(), std::max(met, least)));
    if (met < least) return run;
    std::vector<bool> needed = tables.lookedAt(condition);
    std::vector<bool> stays(run.size());
    std::size_t left = run.size();
    for (std::size_t i = run.size(); i-- > 0;) {
        bool stay = left <= least;
        forEachMove(tables, run[i], [&](uint a, const Tables::Move& move) {
            stay = stay || (needed[a] && move.source != move.target);
        });
        stays[i] = stay;
        if (!stay) --left;
        if (stay) forEachMove(tables, run[i], [&](uint a, const auto&) { needed[a] = true; });
    }
    Run kept;
    for (std::size_t i = 0; i < run.size(); ++i) {
        if (stays[i]) kept.push_back(std::move(run[i]));
    }
    return kept;
}
