#include "search/portfolio.h"

#include "search/bmc.h"
#include "search/pdr.h"

#include <utility>

namespace tervoxal {

Portfolio::Portfolio(Board& board) : board(board) {
    engines.push_back(std::make_unique<BoundedModelChecking>(seekingPolicy));
    engines.push_back(std::make_unique<BoundedModelChecking>(refutingPolicy));
    engines.push_back(std::make_unique<BoundedModelChecking>(leastPolicy));
    engines.push_back(std::make_unique<PropertyDirectedReachability>(board));
}

Portfolio::Portfolio(Board& board, std::vector<std::unique_ptr<Engine>> engines)
    : board(board), engines(std::move(engines)) {}

void Portfolio::run(const Board::Listener& listener) {
    board.tell(&listener);
    while (!board.stopped()) {
        Engine* next = nullptr;
        Questions open;
        int working = 0;
        for (std::unique_ptr<Engine>& engine : engines) {
            Questions own = engine->open(board);
            if (own.empty()) {
                engine.reset(); // which gives back its memory
                continue;
            }
            ++working;
            if (next != nullptr && next->cost() <= engine->cost()) continue;
            next = engine.get();
            open = std::move(own);
        }
        std::erase(engines, nullptr);
        if (next == nullptr) break;
        next->turn(board, open, working == 1);
    }
    board.tell(nullptr);
}

} // namespace tervoxal
