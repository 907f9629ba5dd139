#include "search/firing.h"

#include "query/atoms.h"

#include "replay/transitions.h"

#include <algorithm>
#include <cassert>

namespace tervoxal {

namespace {

/// Calls use with the participant's automaton and its move, for each participant.
template <class Use>
void forEachMove(const FlatNetwork& network, const Firing& taken, Use&& use) {
    const uint begin = network.participantsBegin(taken.action);
    for (std::size_t i = 0; i < taken.moves.size(); ++i) {
        use(network.participants[begin + i].automaton, network.moves[taken.moves[i]]);
    }
}

/// Calls use with each change of state that an action makes.
template <class Use>
void forEachChange(const FlatNetwork& network, const Firing& taken, Use&& use) {
    forEachMove(network, taken, [&](uint a, const FlatNetwork::Move& move) {
        if (move.source == move.target) return;
        use(Change{network.automata[a].number, network.locations[move.source].number,
                   network.locations[move.target].number});
    });
}

/// An action of the network that leads from one state to the other, as the network have it.
Firing takenBetween(const FlatNetwork& network, uint number, const State& before,
                    const State& after) {
    const std::optional<uint> action = network.action(number);
    assert(action);
    std::vector<uint> moves;
    for (const uint p : network.participantsOf(*action)) {
        const uint a = network.automata[network.participants[p].automaton].number;
        uint m = network.movesBegin(p);
        while (network.locations[network.moves[m].source].number != before[a] ||
               network.locations[network.moves[m].target].number != after[a]) {
            ++m;
            assert(m < network.participants[p].movesEnd);
        }
        moves.push_back(m);
    }
    return {*action, std::move(moves)};
}

} // namespace

Path pathOf(const FlatNetwork& network, const Run& run) {
    Path path{static_cast<int>(run.size()), initialState(network.model), {}};
    for (std::size_t i = 0; i < run.size(); ++i) {
        forEachChange(network, run[i], [&](const Change& change) {
            path.changes.push_back({static_cast<int>(i) + 1, change});
        });
    }
    return path;
}

Run runOf(const FlatNetwork& network, const Path& path) {
    const Transitions transitions(network.model);
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
        run.push_back(takenBetween(network, actions.front(), before, after));
        for (const Change& made : changes) before[made.automaton] = made.target;
    }
    return run;
}

Run shortened(const FlatNetwork& network, const Run& run, std::size_t length,
              const Condition& condition) {
    std::vector<bool> needed = lookedAt(network, condition);
    std::vector<bool> stays(length);
    for (std::size_t i = length; i-- > 0;) {
        forEachMove(network, run[i], [&](uint a, const FlatNetwork::Move& move) {
            stays[i] = stays[i] || (needed[a] && move.source != move.target);
        });
        if (stays[i]) forEachMove(network, run[i], [&](uint a, const auto&) { needed[a] = true; });
    }
    Run kept;
    for (std::size_t i = 0; i < length; ++i) {
        if (stays[i]) kept.push_back(run[i]);
    }
    return kept;
}

} // namespace tervoxal
