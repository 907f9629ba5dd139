// The engines that work on one board, in turns: the one that has cost the least goes on.

#pragma once

#include "search/board.h"
#include "search/engine.h"

#include <memory>
#include <vector>

namespace tervoxal {

class Portfolio {
public:
    /// All engines for the board, which must outlive it.
    explicit Portfolio(Board& board);
    /// These engines.
    Portfolio(Board& board, std::vector<std::unique_ptr<Engine>> engines);

    /// Searches until no engine can find out more, or until the listener stops it. Goes on where it
    /// was stopped.
    void run(const Board::Listener& listener);

private:
    Board& board;
    std::vector<std::unique_ptr<Engine>> engines;
};

} // namespace tervoxal
