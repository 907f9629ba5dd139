#include "search/portfolio.h"

#include "search/bmc.h"
#include "search/localization.h"
#include "search/markingequation.h"
#include "search/pdr.h"
#include "search/randomwalk.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace tervoxal {

namespace {

constexpr std::int64_t unlimited = std::numeric_limits<std::int64_t>::max();

Portfolio::Engines lastingEngines(const Board& board) {
    Portfolio::Engines engines;
    engines.push_back(std::make_unique<RandomWalk>(walkPolicy));
    engines.push_back(std::make_unique<MarkingEquation>());
    engines.push_back(std::make_unique<Localization>(board));
    engines.push_back(std::make_unique<PropertyDirectedReachability>(board));
    return engines;
}

Portfolio::Engines visitingEngines() {
    Portfolio::Engines engines;
    for (const BoundedModelChecking::Policy& policy :
         {seekingPolicy, refutingPolicy, leastPolicy}) {
        engines.push_back(std::make_unique<BoundedModelChecking>(policy));
    }
    return engines;
}

} // namespace

Portfolio::Portfolio(Board& board)
    : Portfolio(board, lastingEngines(board), visitingEngines, Parameters()) {}

Portfolio::Portfolio(Board& board, Engines lasting, std::function<Engines()> visiting,
                     const Parameters& parameters)
    : board(board), lasting(std::move(lasting)), make(std::move(visiting)), parameters(parameters),
      shortened(board.size()) {}

void Portfolio::run(const Board::Listener& listener) {
    board.tell(&listener);
    while (!board.stopped() && (turn() || nextVisit())) {
    }
    board.tell(nullptr);
}

std::string Portfolio::status() const { return current == nullptr ? "begins" : current->status(); }

/// A turn of the engine that has cost the least in this visit; false where the visit is over.
bool Portfolio::turn() {
    if (spent >= share) return false;
    Engine* best = nullptr;
    std::int64_t least = 0;
    Questions open;
    int working = 0;
    for (std::size_t i = 0; i < lasting.size() + visiting.size(); ++i) {
        Engine& engine = i < lasting.size() ? *lasting[i] : *visiting[i - lasting.size()];
        Questions own = engine.open(board, asked);
        if (own.empty()) continue;
        ++working;
        const std::int64_t cost = engine.cost() - (i < lasting.size() ? before[i] : 0);
        if (best != nullptr && least <= cost) continue;
        best = &engine;
        least = cost;
        open = std::move(own);
    }
    if (best == nullptr) return false;
    const std::int64_t begin = best->cost();
    current = best;
    best->turn(board, open, working == 1 && share == unlimited);
    current = nullptr;
    spent += best->cost() - begin;
    if (asked.size() == 1 && board[asked[0]].found) {
        shortened[asked[0]] += best->cost() - begin;
        if (shortened[asked[0]] > parameters.shortening) board.close(asked[0]);
    }
    return true;
}

/// All questions together first, then each that is left. False where no engine works on any.
bool Portfolio::nextVisit() {
    const auto begin = [&](Questions questions, std::int64_t most) {
        asked = std::move(questions);
        share = most;
        spent = 0;
        visiting.clear(); // before the new ones need the memory
        if (make) visiting = make();
        before.clear();
        for (const auto& engine : lasting) before.push_back(engine->cost());
    };
    const auto works = [&](const std::unique_ptr<Engine>& engine) {
        return !engine->open(board, asked).empty();
    };
    if (round < 0) {
        left.resize(board.size());
        std::iota(left.begin(), left.end(), std::size_t(0));
        round = 0;
        begin(left, left.size() == 1 ? unlimited : parameters.together);
        return true;
    }
    while (!left.empty()) {
        if (next == left.size()) {
            next = 0;
            ++round;
        }
        const std::int64_t most = parameters.alone << std::min(round, 30);
        begin({left[next]}, left.size() == 1 ? unlimited : most);
        if (std::ranges::any_of(lasting, works) || std::ranges::any_of(visiting, works)) {
            ++next;
            return true;
        }
        left.erase(left.begin() + static_cast<std::ptrdiff_t>(next));
    }
    return false;
}

} // namespace tervoxal
