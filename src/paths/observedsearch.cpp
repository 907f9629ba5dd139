#include "paths/observedsearch.h"

#include "replay/allstates.h"
#include "search/firing.h"

#include <algorithm>
#include <utility>

namespace tervoxal {

namespace {

Board::Range withSilent(Board::Range range, int silent) {
    range.to = range.to < Lengths::unlimited - silent ? range.to + silent : Lengths::unlimited;
    return range;
}

} // namespace

ObservedSearch::ObservedSearch(const NetTimedModel& model,
                               std::shared_ptr<const ObservedNetwork> observed, Board::Range range)
    : model(model), observed(std::move(observed)), range(range), network(this->observed->model),
      board(network, {this->observed->shown}, withSilent(range, this->observed->silent)),
      portfolio(board) {}

bool ObservedSearch::run(const std::function<bool()>& stop, const std::function<bool()>& proving,
                         const std::function<void()>& news) {
    bool stopped = false;
    Board::Listener listener;
    listener.refuted = [&](std::span<const std::size_t>) { news(); };
    listener.found = listener.unreachable = listener.closed = [&](std::size_t) { news(); };
    listener.stop = [&] { return stopped = stopped || stop(); };
    listener.proving = proving;
    portfolio.run(listener);
    return stopped && !board.settled(0);
}

void ObservedSearch::tell(Known& known) const {
    const Board::Entry& entry = board[0];
    known.refuted = std::max(known.refuted, std::min(entry.refuted - observed->silent, range.to));
    if (entry.found && !(known.path && known.path->k <= entry.length() - observed->silent)) {
        Path own = path();
        if (!known.path || own.k < known.path->k) known.path = std::move(own);
    }
    if (entry.unreachable) {
        known.unreachable = true;
        known.certificate = entry.certificate;
    }
    if (entry.found || entry.unreachable) known.observed = observed;
    known.settled = board.settled(0) && (!range.least || !known.path || known.least());
}

/// The run of the network that the search has found.
Path ObservedSearch::path() const {
    const Path whole = pathOf(network, board[0].path);
    Path path{0, initialState(model), {}};
    State state = path.first;
    auto change = whole.changes.begin();
    for (int p = 1; p <= whole.k; ++p) {
        const Firing& taken = board[0].path[static_cast<std::size_t>(p) - 1];
        const uint action = network.actions[taken.action].number;
        if (observed->save == action) path.loop = path.k;
        const std::optional<uint> original = observed->actions[action];
        if (original) {
            ++path.k;
            path.actions.push_back(*original);
        }
        for (; change != whole.changes.end() && change->position == p; ++change) {
            Change own = change->change;
            if (!original || own.automaton >= state.size()) continue;
            for (uint* const location : {&own.source, &own.target}) {
                const auto origin = observed->origins.find({own.automaton, *location});
                if (origin != observed->origins.end()) *location = origin->second;
            }
            if (own.source == own.target) continue;
            state[own.automaton] = own.target;
            path.changes.push_back({path.k, own});
        }
    }
    path.ends = std::ranges::none_of(model.actionAutomata, [&](const auto& entry) {
        return canTake(model, state, entry.first);
    });
    return path;
}

} // namespace tervoxal
