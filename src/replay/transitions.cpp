#include "replay/transitions.h"

#include "text/equalrange.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

namespace tervoxal {

namespace {

using Move = NetTimedModel::Move;
using Owner = Owners::Owner;

constexpr uint largest = std::numeric_limits<uint>::max();
const Move anyMove(largest, largest);

bool isLoop(const Move& move) { return move.first == move.second; }

} // namespace

Transitions::Transitions(const NetTimedModel& model) : model(model), owners(model) {
    for (uint action = 0; action < owners.size(); ++action) {
        if (owners[action].empty()) alwaysActive.push_back(owners.number(action));
        addCandidates(action);
    }
    std::sort(index.begin(), index.end());
    std::sort(idlers.begin(), idlers.end());
    idlers.erase(std::unique(idlers.begin(), idlers.end()), idlers.end());
}

void Transitions::addCandidates(uint action) {
    const std::span<const Owner> all = owners[action];
    // A step in which nothing moves is found from the first owner, if each owner has a self loop.
    const bool canIdle = std::ranges::all_of(
        all, [](const Owner& owner) { return std::ranges::any_of(*owner.moves, isLoop); });
    for (std::size_t i = 0; i < all.size(); ++i) {
        Candidate candidate{all[i].automaton, {}, 0, anyMove, action};
        if (all.size() > 1) {
            const Owner& other = all[i == 0 ? 1 : 0];
            candidate.other = other.automaton;
            if (other.moves->size() == 1) candidate.otherMove = *other.moves->begin();
        }
        for (const Move& move : *all[i].moves) {
            candidate.move = move;
            if (!isLoop(move) || (canIdle && i == 0)) index.push_back(candidate);
        }
    }
    if (canIdle && !all.empty()) idlers.push_back(all.front().automaton);
}

std::span<const Transitions::Candidate> Transitions::candidates(uint automaton, Move move) const {
    return equalRange(std::span(index), std::pair(automaton, move),
                      [](const Candidate& c) { return std::pair(c.automaton, c.move); });
}

void Transitions::addLeading(std::span<const Candidate> candidates, const State& from,
                             const State& to, std::size_t changes,
                             std::vector<uint>& numbers) const {
    const auto moveOf = [&](uint a) { return Move(from[a], to[a]); };
    const auto leads = [&](uint action) {
        std::size_t moved = 0;
        for (const Owner& owner : owners[action]) {
            const Move move = moveOf(owner.automaton);
            if (!owner.moves->contains(move)) return false;
            moved += isLoop(move) ? 0 : 1;
        }
        return moved == changes; // else one moved that does not have the action
    };
    // All candidates have the same automaton and move, so they are sorted by their other owner.
    while (!candidates.empty()) {
        const uint other = candidates.front().other;
        const auto sameOther =
            equalRange(candidates, other, [](const Candidate& c) { return c.other; });
        const auto addWith = [&](const Move& move) {
            for (const Candidate& candidate :
                 equalRange(sameOther, move, [](const Candidate& c) { return c.otherMove; })) {
                if (leads(candidate.action)) numbers.push_back(owners.number(candidate.action));
            }
        };
        if (other != 0) addWith(moveOf(other));
        addWith(anyMove);
        candidates = candidates.subspan(sameOther.size());
    }
}

std::vector<uint> Transitions::actions(const State& from, const State& to,
                                       std::span<const Change> changes) const {
    std::vector<uint> numbers;
    if (changes.empty()) {
        numbers = alwaysActive;
        for (const uint a : idlers) {
            addLeading(candidates(a, {from[a], from[a]}), from, to, 0, numbers);
        }
    } else {
        std::span<const Candidate> fewest;
        for (const Change& change : changes) {
            const auto found = candidates(change.automaton, {change.source, change.target});
            if (fewest.data() == nullptr || found.size() < fewest.size()) fewest = found;
            if (fewest.empty()) return {};
        }
        addLeading(fewest, from, to, changes.size(), numbers);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

} // namespace tervoxal
