// Random walks: paths taken blindly, each state of which is looked at for all questions at once.
// They cost so little that most of what is reachable and not hidden is found before any solver has
// been given the network (West, Protocol Validation by Random State Exploration, 1986).
//
// Of some actions that are possible, drawn at random, the one is taken that was taken least often
// so far: what happens rarely is where something new is. A walk ends where nothing is possible, or
// at a length that grows now and then, and the next one begins in the initial state.
//
// It finds paths and proves nothing.

#pragma once

#include "search/engine.h"
#include "search/evaluator.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tervoxal {

class RandomWalk : public Engine {
public:
    struct Policy {
        /// How many of the possible actions are drawn for each step: 2 in the first walk, twice as
        /// many from walk to walk up to that number, and 2 again.
        int drawn;
        /// The steps of the first walk, and the greatest number of any. Between them lengths follow
        /// the sequence of Luby (Luby, Sinclair and Zuckerman, Optimal Speedup of Las Vegas
        /// Algorithms, 1993): 1, 1, 2, 1, 1, 2, 4, ... times the first.
        int shortest;
        int longest;
        /// The counts of a turn (see evaluator.h); it goes on for as many after each find.
        std::int64_t turn;
        /// A unit of cost in counts.
        std::int64_t unit;
        /// How many times over a turn in vain counts at most.
        std::int64_t vain;
    };

    /// The same seed gives the same walks everywhere.
    explicit RandomWalk(const Policy& policy, std::uint64_t seed = 1);

    /// What is spent in vain counts several times over, so that others get more of the turns where
    /// walks find nothing.
    [[nodiscard]] std::string status() const override { return "random walks"; }
    [[nodiscard]] std::int64_t cost() const override { return spent; }
    /// Questions without a path.
    [[nodiscard]] Questions open(const Board& board, const Questions& among) const override;
    /// Looks for all questions of the board without a path, whichever are asked for.
    void turn(Board& board, const Questions& open, bool alone) override;

private:
    void begin(const Board& board);
    bool look();
    void step(const FlatNetwork& network);
    void restart();
    void clear();
    void offer(Board& board);
    [[nodiscard]] std::uint64_t draw(std::uint64_t bound);

    const Policy policy;
    std::uint64_t random;
    std::optional<Evaluator> evaluator; // of the conditions that were open when it was made
    std::size_t looked = 0;             // for how many conditions it was made
    std::size_t left = 0;               // of them, those that no walk has met
    std::vector<std::uint32_t> taken;   // of each action, how often
    std::uint32_t walks = 1;            // begun so far
    int drawn = 2;                      // in the walk at hand
    int length;                         // of it at most
    std::vector<uint> actions;          // of the walk
    std::vector<uint> moves;            // of the walk, a move for each participant
    std::vector<std::size_t> movesEnd;  // of each of its actions
    std::size_t met = 0;                // where the walk met something last
    bool news = false;                  // it did, and the board was not told
    std::int64_t walked = 0;            // counts, of all turns
    std::int64_t begun = 0;             // of them, when it last saw which questions are open
    std::int64_t weight = 1;            // of the turns in vain
    std::int64_t spent = 0;
};

/// All 605 actions of a net of 607 places are seen to be possible after 6 to 19 ms, by seed; with
/// never more than 4 drawn after 35 to 170. Few of them find the way sooner where little is
/// possible and what is rare leads back: three trains on one siding (bench/networks) are put in
/// order within 1 to 3 turns with 2 drawn, 1 to 21 with up to 64. Where walks only got longer, some
/// states of networks of a few automata were missed: a walk that has come to where it cannot leave
/// has to end.
inline constexpr RandomWalk::Policy walkPolicy{64, 256, 1 << 17, 100000, 50, 16};

} // namespace tervoxal
