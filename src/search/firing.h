// A run of a network as the search finds it: actions one after the other, with the moves of their
// participants.

#pragma once

#include "model/flatnetwork.h"
#include "query/condition.h"
#include "replay/path.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace tervoxal {

/// The move of each participant of an action. Copies share them: a path is kept for each of
/// perhaps thousands of questions, and most of these have their steps from the same run.
class Moves {
public:
    Moves() : Moves(std::vector<uint>()) {}
    Moves(std::vector<uint> moves)
        : moves(std::make_shared<const std::vector<uint>>(std::move(moves))) {}

    [[nodiscard]] auto begin() const { return moves->begin(); }
    [[nodiscard]] auto end() const { return moves->end(); }
    [[nodiscard]] std::size_t size() const { return moves->size(); }
    [[nodiscard]] uint operator[](std::size_t participant) const { return (*moves)[participant]; }

private:
    std::shared_ptr<const std::vector<uint>> moves;
};

/// An action that is taken, and its moves, as indices of the network.
struct Firing {
    uint action;
    Moves moves;
};

using Run = std::vector<Firing>;

/// The run as states at positions.
[[nodiscard]] Path pathOf(const FlatNetwork& network, const Run& run);

/// A path whose steps are actions, as a run of the first action that makes each. Steps that change
/// nothing are left out. Precondition, asserted: it is a run of the network.
[[nodiscard]] Run runOf(const FlatNetwork& network, const Path& path);

/// What is left of the first `length` actions of a run, which come to a state where the condition
/// holds: it holds in the last state. Walking back from there, an action stays only if it moves an
/// automaton that the condition or a later action looks at. Linear in these actions, and in what
/// the condition names.
[[nodiscard]] Run shortened(const FlatNetwork& network, const Run& run, std::size_t length,
                            const Condition& condition);

} // namespace tervoxal
