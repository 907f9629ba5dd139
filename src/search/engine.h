// An engine of the search: a method that works on the questions of a board, a turn at a time. Who
// runs several of them needs to know nothing else of them.

#pragma once

#include "search/board.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tervoxal {

/// Questions of a board, by ascending index.
using Questions = std::vector<std::size_t>;

class Engine {
public:
    Engine() = default;
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    virtual ~Engine() = default;

    /// What it is and how far it has come, for who waits: "bounded model checking, depth 31".
    [[nodiscard]] virtual std::string status() const = 0;
    /// What it has cost so far. The unit is the time that it takes to give a solver one literal of
    /// a clause, about 0.2 us; it is counted, not measured, so that the same input gives the same
    /// turns.
    [[nodiscard]] virtual std::int64_t cost() const = 0;
    /// Of these questions those that it can work on as the board stands. One that it can not work
    /// on it never will.
    [[nodiscard]] virtual Questions open(const Board& board, const Questions& among) const = 0;
    /// Works on these for a while, the shorter the less it has cost so far, and tells the board
    /// what comes out. `alone`: nobody else can work on them, so it need not give up early. Comes
    /// back soon when the board is stopped, and goes on in the next turn to the same answers.
    /// Precondition: open gives them, and there is one.
    virtual void turn(Board& board, const Questions& open, bool alone) = 0;
};

} // namespace tervoxal
