// The engines that work on one board, in turns: the one that has cost the least goes on.
//
// Many questions are asked together at first, since one query can answer many, and then each gets
// visits of its own, with engines for what it alone depends on, in shares that double from round to
// round. So an easy question waits for a hard one no longer than that one's share, and what a hard
// one costs in the end is at most doubled by the visits that came to nothing. Engines of the
// network as a whole keep what they learn from one question to the next.

#pragma once

#include "search/board.h"
#include "search/engine.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tervoxal {

class Portfolio {
public:
    using Engines = std::vector<std::unique_ptr<Engine>>;

    struct Parameters {
        /// What is spent on all questions together, and on one alone in the first round, in the
        /// unit of Engine::cost: about 0.4 and 0.1 s.
        std::int64_t together = 2000000;
        std::int64_t alone = 500000;
        /// What is spent on shorter paths once there is one, about 4 s; then the question is
        /// closed.
        std::int64_t shortening = 10000000;
    };

    /// All engines for the board, which must outlive it.
    explicit Portfolio(Board& board);
    /// Engines of the whole network, and those that are made for each visit to some questions.
    Portfolio(Board& board, Engines lasting, std::function<Engines()> visiting,
              const Parameters& parameters);

    /// Searches until no engine can find out more, or until the listener stops it. Goes on where it
    /// was stopped.
    void run(const Board::Listener& listener);

    /// What is being done, for who waits.
    [[nodiscard]] std::string status() const;

private:
    [[nodiscard]] bool turn();
    [[nodiscard]] bool nextVisit();

    Board& board;
    Engines lasting;
    Engines visiting; // of the visit at hand
    const Engine* current = nullptr;
    const std::function<Engines()> make;
    const Parameters parameters;
    Questions asked;                     // in the visit at hand
    std::vector<std::int64_t> before;    // what the lasting engines had cost before it
    std::int64_t share = 0;              // of the visit
    std::int64_t spent = 0;              // in it
    Questions left;                      // that some engine may work on
    std::size_t next = 0;                // index of the one to visit in this round
    int round = -1;                      // -1 before all are visited together
    std::vector<std::int64_t> shortened; // spent on each question alone since it has a path
};

} // namespace tervoxal
