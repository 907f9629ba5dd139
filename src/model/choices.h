// How bits choose a step of the network, so that no bits are wrong: what cannot be done is not
// done, and the state stays as it is. They are the inputs of the circuit that model checkers get,
// and the path that a model checker tells is read from them.
//
// The bits are fields, one after the other, each an unsigned number with its lowest bit first:
//
//     action         an index of the actions by ascending number
//     automaton 1    an index of its moves with that action from where it is, by ascending target
//     automaton 2    likewise
//     ...
//
// A field is as wide as its greatest index needs, but a single action has a bit as well, so that a
// path with steps has bits in each. An automaton that nowhere has two moves with one action from
// one location has no field, and one that has less to choose at the moment looks at the lowest bits
// of its own. An index without an action, an action that is not possible and an index without a
// move choose nothing.

#pragma once

#include "model/ntamodel.h"

#include <cstddef>
#include <optional>
#include <set>
#include <vector>

namespace tervoxal {

class Choices {
public:
    /// The choices of a network that is read and laid out. Linear in its tables.
    explicit Choices(const NetTimedModel& model);

    struct Field {
        std::size_t first; // bit
        int width;
    };
    /// A move, and the number that chooses it on that many bits of its automaton's field.
    struct Move {
        uint source;
        uint target;
        uint number;
        int width;
    };
    /// The moves of one automaton with one action, as the model holds them.
    using Moves = std::set<NetTimedModel::Move>;

    [[nodiscard]] static std::vector<Move> choicesOf(const Moves& moves);
    /// Where the move leads that the number of the automaton's field chooses; nothing if there is
    /// none.
    [[nodiscard]] static std::optional<uint> target(const Moves& moves, uint source, uint number);

    std::vector<uint> actions; // their numbers, ascending
    Field action;
    std::vector<Field> automata; // from index 1
    std::size_t bits;            // of all fields
};

} // namespace tervoxal
