#include "model/step.h"

#include "model/owners.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

namespace tervoxal {

namespace {

// Stands for none: no equality of distinct variables is false.
const BoolForm unbuilt(false);

} // namespace

Step::Step(const NetTimedModel& model) : stateBits(model.totalNrVertBits) {
    std::vector<uint> indexOf(model.nrOfBits.size());
    std::size_t treesEnd = 0;
    for (std::size_t a = 1; a < model.nrOfBits.size(); ++a) {
        const int bits = model.nrOfBits[a];
        if (bits == 0) continue;
        indexOf[a] = static_cast<uint>(automata.size());
        automata.push_back({model.bitShift[a], bits, treesEnd});
        treesEnd += std::size_t(2) << static_cast<uint>(bits);
    }
    sources.resize(treesEnd, {unbuilt, call});
    targets = sources;

    const auto endMark = static_cast<uint>(automata.size());
    std::map<std::vector<uint>, std::vector<uint>> actionsOf; // of each list of participants
    const Owners owners(model);
    for (std::size_t x = 0; x < owners.size(); ++x) {
        std::vector<uint> movers;
        for (const Owners::Owner& owner : owners[x]) {
            const uint a = indexOf[owner.automaton];
            moves.insert(moves.end(), owner.moves->begin(), owner.moves->end());
            participants.push_back({a, static_cast<uint>(moves.size())});
            movers.push_back(a);
        }
        // Actions without a participant are alike. At the head of the disjunction they fold into
        // one.
        if (participants.empty() && !actions.empty()) continue;
        movers.push_back(endMark);
        actionsOf[std::move(movers)].push_back(static_cast<uint>(actions.size()));
        actions.push_back({static_cast<uint>(participants.size()), 0});
    }
    layOutFrames(actionsOf);
}

void Step::layOutFrames(const std::map<std::vector<uint>, std::vector<uint>>& actionsOf) {
    const auto count = static_cast<uint>(automata.size());
    frames.push_back({0, 0});
    std::vector<uint> upTo(count + 1U); // the frame over the automata below an index
    const std::vector<uint>* before = nullptr;
    for (const auto& [movers, sameMovers] : actionsOf) {
        auto mover = movers.begin();
        uint a = 0;
        if (before != nullptr) {
            const auto difference = std::mismatch(before->begin(), before->end(), mover);
            a = *difference.first;
            mover = difference.second;
        }
        for (; a < count; ++a) {
            upTo[a + 1] = upTo[a];
            if (*mover == a) {
                ++mover;
            } else {
                assert(frames.size() <= std::numeric_limits<uint>::max());
                upTo[a + 1] = static_cast<uint>(frames.size());
                frames.push_back({upTo[a], a});
            }
        }
        for (const uint action : sameMovers) actions[action].frame = upTo[count];
        before = &movers;
    }
}

BoolForm Step::formula(const SymState& s1, const SymState& s2) {
    assert(s1.loc.size() == stateBits && s2.loc.size() == stateBits);
    ++call;
    equalities.assign(automata.size(), unbuilt);
    conditions.assign(frames.size(), unbuilt);
    conditions[0] = BoolForm(true);

    BoolForm result(false);
    uint participant = 0;
    uint move = 0;
    for (const Action& action : actions) {
        BoolForm together(true);
        for (; participant < action.participantsEnd; ++participant) {
            const Automaton& automaton = automata[participants[participant].automaton];
            BoolForm any(false);
            for (; move < participants[participant].movesEnd; ++move) {
                const auto& [from, to] = moves[move];
                const BoolForm target = location(targets, automaton, to, s2);
                const BoolForm source = location(sources, automaton, from, s1);
                any = dis(any, con(source, target));
            }
            together = con(together, any);
        }
        const BoolForm others = stay(action.frame, s1, s2);
        together = con(together, others);
        result = dis(result, together);
    }
    return result;
}

BoolForm Step::location(std::vector<Built>& nodes, const Automaton& automaton, uint l,
                        const SymState& s) const {
    const auto node = [&](int i) -> Built& {
        const uint first = 1U << static_cast<uint>(i);
        return nodes[automaton.tree + (first | (l & (first - 1)))];
    };
    int i = automaton.bits;
    while (i > 0 && node(i).call != call) --i;
    BoolForm r = i == 0 ? BoolForm(true) : node(i).formula;
    for (; i < automaton.bits; ++i) {
        const BoolForm bit = s.loc[automaton.shift + i];
        r = con(r, (l >> static_cast<uint>(i) & 1U) != 0 ? bit : neg(bit));
        node(i + 1) = {r, call};
    }
    return r;
}

BoolForm Step::stay(uint frame, const SymState& s1, const SymState& s2) {
    for (uint f = frame; conditions[f] == unbuilt; f = frames[f].parent) missing.push_back(f);
    for (; !missing.empty(); missing.pop_back()) {
        const auto& [parent, automaton] = frames[missing.back()];
        BoolForm& equality = equalities[automaton];
        if (equality == unbuilt) {
            equality = eq(s1.loc, s2.loc, automata[automaton].shift, automata[automaton].bits);
        }
        conditions[missing.back()] = con(conditions[parent], equality);
    }
    return conditions[frame];
}

} // namespace tervoxal
