#include "search/randomwalk.h"

#include "text/equalrange.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <iterator>
#include <utility>

namespace tervoxal {

RandomWalk::RandomWalk(const Policy& policy, std::uint64_t seed)
    : policy(policy), random(seed), length(policy.shortest) {
    assert(seed != 0);
}

namespace {

bool isOpen(const Board& board, std::size_t question) {
    return !board.settled(question) && !board[question].found;
}

/// The number of the sequence 1, 1, 2, 1, 1, 2, 4, ... at an index from 1 on.
std::uint32_t luby(std::uint32_t index) {
    // From the end of a run of 2^n - 1 numbers, which is 2^(n-1); before it are two such runs.
    while (!std::has_single_bit(index + 1)) index -= std::bit_floor(index) - 1;
    return (index + 1) / 2;
}

} // namespace

Questions RandomWalk::open(const Board& board, const Questions& among) const {
    Questions open;
    std::ranges::copy_if(among, std::back_inserter(open),
                         [&](std::size_t q) { return isOpen(board, q); });
    return open;
}

/// A number below the bound, by xorshift (Marsaglia, Xorshift RNGs, 2003).
std::uint64_t RandomWalk::draw(std::uint64_t bound) {
    random ^= random << 13;
    random ^= random >> 7;
    random ^= random << 17;
    return (random >> 32) * bound >> 32;
}

/// Looks from now on for the questions that are open, if these are few of those that it looks for.
void RandomWalk::begin(const Board& board) {
    std::vector<const Condition*> conditions;
    for (std::size_t q = 0; q < board.size(); ++q) {
        if (isOpen(board, q)) conditions.push_back(&board[q].condition);
    }
    begun = walked;
    if (evaluator && 2 * conditions.size() > looked) return;
    evaluator.emplace(board.network, conditions);
    looked = left = conditions.size();
    taken.resize(board.network.actions.size());
    clear();
}

void RandomWalk::turn(Board& board, const Questions& /*open*/, bool /*alone*/) {
    constexpr int stretch = 256; // between two looks at whether it is stopped
    constexpr std::int64_t perStep = 8;
    const int limit = std::min(policy.longest, board.range.to);
    // Not so often that it counts.
    if (!evaluator || walked - begun > policy.unit * static_cast<std::int64_t>(looked)) {
        begin(board);
    }
    bool found = false;
    std::int64_t counts = 0;
    std::int64_t end = policy.turn;
    while (left > 0 && counts < end && !board.stopped()) {
        const std::int64_t before = evaluator->counted();
        for (int i = 0; i < stretch && left > 0; ++i) {
            if (look()) {
                found = true;
                end = counts + policy.turn;
            }
            const auto steps = static_cast<int>(actions.size());
            if (evaluator->possible().empty() || steps >= std::min(length, limit)) {
                offer(board);
                restart();
            } else {
                step(board.network);
            }
        }
        counts += evaluator->counted() - before + stretch * (perStep + drawn / 2);
    }
    offer(board);
    walked += counts;
    weight = found ? 1 : std::min(2 * weight, policy.vain);
    spent += 1 + weight * counts / policy.unit;
}

/// Whether some conditions hold that did in no state of a walk.
bool RandomWalk::look() {
    bool some = false;
    evaluator->tell([&](std::size_t) {
        some = true;
        --left;
        return false;
    });
    if (!some) return false;
    met = actions.size();
    news = true;
    return true;
}

void RandomWalk::step(const FlatNetwork& network) {
    const std::span<const uint> possible = evaluator->possible();
    uint next = possible[draw(possible.size())];
    for (int i = 1; i < drawn; ++i) {
        const uint other = possible[draw(possible.size())];
        if (taken[other] < taken[next]) next = other;
    }
    ++taken[next];
    actions.push_back(next);
    for (const uint p : network.participantsOf(next)) {
        const uint source = evaluator->at(network.participants[p].automaton);
        uint m = network.movesBegin(p);
        uint choices = 1;
        if (network.participants[p].movesEnd - m > 1) { // mostly there is no other
            const std::span<const FlatNetwork::Move> all(network.moves);
            const auto found = equalRange(all.subspan(m, network.movesOf(p).size()), source,
                                          &FlatNetwork::Move::source);
            m = static_cast<uint>(found.data() - all.data());
            choices = static_cast<uint>(found.size());
        }
        if (choices > 1) m += static_cast<uint>(draw(choices));
        moves.push_back(m);
    }
    movesEnd.push_back(moves.size());
    // All participants had to be looked at before one of them moves.
    const std::size_t first = movesEnd.size() > 1 ? movesEnd[movesEnd.size() - 2] : 0;
    for (std::size_t i = first; i < moves.size(); ++i) {
        evaluator->move(network.moves[moves[i]].source, network.moves[moves[i]].target);
    }
}

void RandomWalk::restart() {
    evaluator->reset();
    clear();
    drawn = 2 * drawn > policy.drawn ? 2 : 2 * drawn;
    ++walks;
    length = static_cast<int>(
        std::min<std::int64_t>(policy.longest, policy.shortest * std::int64_t{luby(walks)}));
}

void RandomWalk::clear() {
    actions.clear();
    moves.clear();
    movesEnd.clear();
    met = 0;
}

/// The walk up to where it met something last, if the board has not been told.
void RandomWalk::offer(Board& board) {
    if (!std::exchange(news, false)) return;
    Run run;
    run.reserve(met);
    for (std::size_t i = 0; i < met; ++i) {
        const auto begin =
            moves.begin() + static_cast<std::ptrdiff_t>(i == 0 ? 0 : movesEnd[i - 1]);
        const auto end = moves.begin() + static_cast<std::ptrdiff_t>(movesEnd[i]);
        run.push_back({actions[i], std::vector<uint>(begin, end)});
    }
    board.offer(run);
}

} // namespace tervoxal
