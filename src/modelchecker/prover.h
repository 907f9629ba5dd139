// A model checker beside a search: it is asked about the questions to which the search has not
// found a path yet, one after the other, and the search is told what comes out. Nothing of that is
// believed:
//
//  - what it calls proved has to come with an inductive invariant, which is checked on the steps of
//    the search;
//  - what it calls refuted has to come with a path, which is replayed on the network. The search
//    takes it for the shortest so far.
//
// While a model checker is at work, a signal that asks the process to end is noticed here.

#pragma once

#include "certificate/certificate.h"
#include "model/names.h"
#include "modelchecker/modelchecker.h"
#include "programs/invariant.h"
#include "search/board.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tervoxal {

/// What a model checker says of latches, said of the automata whose bits they are.
[[nodiscard]] Certificate certificateOf(const NetTimedModel& model, const std::vector<Cube>& cubes);

class Prover {
public:
    struct Setting {
        std::chrono::seconds limit; // for each question
        /// Told why there is no proof of a question.
        std::function<void(std::size_t question, const std::string& why)> unproved;
    };

    /// Begins with the first question. All have to outlive it.
    Prover(Board& board, const Names& names, Setting setting);

    /// Whether there is something to take: then the search should stop for it. Asked often, it
    /// looks every 10 milliseconds, and does nothing else.
    [[nodiscard]] bool ready();
    /// Waits for 10 milliseconds, or until it is ready. Precondition, asserted: it is working.
    void wait();
    /// Whether it is working on a question.
    [[nodiscard]] bool working() const { return checker != nullptr; }
    /// Whether a signal came that asks the process to end. Then nothing is taken any more.
    [[nodiscard]] bool interrupted() const { return signal != 0; }
    /// Tells the board and its listener what came out, if the question is still of interest, and
    /// begins with the next one; not while the search runs. Ends the process with status 1 and one
    /// line on standard error where a certificate or a witness is refused.
    void take(const Board::Listener& listener);

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool ofInterest() const {
        return !board[question].found && !board[question].unreachable;
    }
    void begin();
    void end();
    void look(std::chrono::milliseconds time);
    void prove(const std::string& invariant, const std::string& source);
    void refute(const std::string& witness, const std::string& source);

    Board& board;
    const NetTimedModel& model;
    const Names& names;
    const Setting setting;
    std::size_t question = 0;
    std::optional<Children> children; // none while nothing is at work
    std::unique_ptr<ModelChecker> checker;
    Clock::time_point latest; // when it has looked
    std::optional<Proof> proof;
    int signal = 0;
};

} // namespace tervoxal
