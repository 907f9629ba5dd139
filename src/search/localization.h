// Some automata alone, state by state: those that a question looks at, and as many others as it
// takes (Kurshan, Computer-Aided Verification of Coordinating Processes, 1994; the automata to add
// are found as by Clarke, Grumberg, Jha, Lu and Veith, Counterexample-Guided Abstraction
// Refinement, 2000).
//
// The others take part in anything, so the least distance at which a state of these automata meets
// the question is a lower bound, and if there is no such state the question is unreachable. Else
// the shortest path to it is replayed on the whole network. Each of the other automata has to
// follow its actions by itself; of those that cannot, which block the path, the first one is added.
// A path that none blocks is of least length.
//
// On the 13 unreachable questions about the contest's afcs_24_a it made no difference whether the
// first, the last or each of the blocking automata is added: four are proved by one or two
// automata, in 15 ms with the reading of the network, and the others by none of these ways.
//
// Beside that, all automata are explored for all questions: 30 unreachable ones about the 2482
// states of IBM319 take 40 ms together.

#pragma once

#include "search/engine.h"
#include "statespace/labelling.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tervoxal {

class Localization : public Engine {
public:
    struct Parameters {
        /// States that take more memory, in bytes, are given up.
        std::size_t memory = std::size_t(200) << 20U;
        /// A question has its turn until it has cost twice as much as the one that has cost least,
        /// and that much more: a millisecond.
        std::int64_t lead = 5000;
        /// All automata have a quarter of the work, and this to begin with: 20 ms, twice what it
        /// takes for the 2482 states of IBM319.
        std::int64_t begin = 100000;
    };

    /// The board must outlive it.
    explicit Localization(const Board& board, const Parameters& parameters);
    explicit Localization(const Board& board) : Localization(board, Parameters()) {}
    ~Localization() override;

    [[nodiscard]] std::string status() const override;
    [[nodiscard]] std::int64_t cost() const override { return spent; }
    /// Questions that are not settled, but for those whose automata have too many states.
    [[nodiscard]] Questions open(const Board& board, const Questions& among) const override;
    void turn(Board& board, const Questions& open, bool alone) override;

private:
    struct Exploration;

    [[nodiscard]] bool left(const Board& board, std::size_t question) const;
    void choose(const Board& board, const Questions& open);
    void explore(Board& board, std::unique_ptr<Exploration>& exploration);
    [[nodiscard]] std::vector<std::pair<std::size_t, StateSpace::State>>
    label(const Board& board, Exploration& exploration);
    void refute(Board& board, const Questions& questions, int depth) const;
    void meet(Board& board, const Exploration& exploration, std::size_t question,
              StateSpace::State state);
    void add(std::size_t question, const std::vector<uint>& missing);
    void exclude(Board& board, const Exploration& exploration);

    const FlatNetwork& network;
    const Parameters parameters;
    const Participation participation;
    std::unique_ptr<Exploration> all;                       // automata, for all questions
    std::unique_ptr<Exploration> some;                      // automata, for one question
    std::vector<std::optional<std::vector<uint>>> automata; // of questions that had a turn
    std::vector<std::int64_t> spentOn;                      // by question
    std::vector<bool> givenUp;                              // by question
    std::int64_t spent = 0;
    std::int64_t spentOnAll = 0;
};

} // namespace tervoxal
