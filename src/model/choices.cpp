#include "model/choices.h"

#include "model/layout.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tervoxal {

namespace {

/// The end of the moves that leave the source of the first one.
Choices::Moves::const_iterator endOfSource(const Choices::Moves& moves,
                                           Choices::Moves::const_iterator first) {
    return moves.upper_bound({first->first, std::numeric_limits<uint>::max()});
}

} // namespace

Choices::Choices(const NetTimedModel& model)
    : action{0, bitsFor(model.actionAutomata.size())}, automata(model.nrOfBits.size()) {
    for (const auto& [number, owners] : model.actionAutomata) actions.push_back(number);
    if (actions.size() == 1) action.width = 1;
    for (const auto& [local, moves] : model.actionEdges) {
        Field& field = automata[local.first];
        for (const Move& move : choicesOf(moves)) field.width = std::max(field.width, move.width);
    }
    bits = static_cast<std::size_t>(action.width);
    for (Field& field : automata) {
        field.first = bits;
        bits += static_cast<std::size_t>(field.width);
    }
}

std::vector<Choices::Move> Choices::choicesOf(const Moves& moves) {
    std::vector<Move> all;
    for (auto move = moves.begin(); move != moves.end();) {
        const auto end = endOfSource(moves, move);
        const int width = bitsFor(static_cast<std::size_t>(std::distance(move, end)));
        for (uint number = 0; move != end; ++move, ++number)
            all.push_back({move->first, move->second, number, width});
    }
    return all;
}

std::optional<uint> Choices::target(const Moves& moves, uint source, uint number) {
    const auto first = moves.lower_bound({source, 0});
    if (first == moves.end() || first->first != source) return std::nullopt;
    const auto count = static_cast<std::size_t>(std::distance(first, endOfSource(moves, first)));
    number &= (1U << static_cast<uint>(bitsFor(count))) - 1;
    if (number >= count) return std::nullopt;
    return std::next(first, number)->second;
}

} // namespace tervoxal
