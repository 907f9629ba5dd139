// The marking equation as an engine: it looks for weights of locations that exclude all states in
// which a question is met (see weightfinder.h).
//
// The solver gives a state that meets the question, and of this a cube of locations that suffice.
// If a fact of the board excludes the cube, or weights are found that do, the solver has to give
// another one, until none is left: then the question is unreachable. Where the equation allows a
// cube, the engine gives up on the question.

#pragma once

#include "search/engine.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tervoxal {

class MarkingEquation : public Engine {
public:
    MarkingEquation();
    ~MarkingEquation() override;

    [[nodiscard]] std::string status() const override { return "marking equation"; }
    [[nodiscard]] std::int64_t cost() const override;
    /// Undecided questions that it has not given up on, none where there is no library for it.
    [[nodiscard]] Questions open(const Board& board, const Questions& among) const override;
    void turn(Board& board, const Questions& open, bool alone) override;

private:
    /// Made at the first turn.
    struct Work;
    std::unique_ptr<Work> work;
};

} // namespace tervoxal
