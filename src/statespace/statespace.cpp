#include "statespace/statespace.h"

#include "model/layout.h"
#include "text/equalrange.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <limits>
#include <numeric>

namespace tervoxal {

namespace {

constexpr uint none = std::numeric_limits<uint>::max();

/// The n-th number of the generator splitmix64 (Steele, Lea and Flood, Fast Splittable Pseudorandom
/// Number Generators, 2014).
std::uint64_t randomWord(std::uint64_t n) {
    std::uint64_t z = (n + 1) * 0x9e3779b97f4a7c15;
    z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27U)) * 0x94d049bb133111eb;
    return z ^ (z >> 31U);
}

std::vector<uint> allOf(const FlatNetwork& network) {
    std::vector<uint> all(network.automata.size());
    std::iota(all.begin(), all.end(), 0U);
    return all;
}

} // namespace

StateSpace::StateSpace(const Participation& participation)
    : StateSpace(participation, allOf(participation.network)) {}

StateSpace::StateSpace(const Participation& participation, std::vector<uint> automata)
    : participation(participation), network(participation.network), members(std::move(automata)) {
    assert(std::ranges::is_sorted(members, std::ranges::less_equal()) || members.size() < 2);
    slots.assign(network.automata.size(), none);
    layOutFields();
    layOutActions();
    scratch.here.resize(members.size());
    scratch.row.resize(width);
    table.resize(64);
    scratch.hash = 0;
    for (const Field& field : fields) scratch.hash ^= keys[field.firstIndex];
    levels.push_back(0);
    add(entryOf(scratch.row.data(), scratch.hash), scratch.hash, scratch.row.data(), 0);
}

void StateSpace::layOutFields() {
    constexpr uint wordBits = 64;
    uint used = 0;
    std::size_t word = 0;
    uint locations = 0;
    for (uint s = 0; s < members.size(); ++s) {
        const uint a = members[s];
        slots[a] = s;
        const auto count = static_cast<uint>(network.locationsOf(a).size());
        const auto bits = static_cast<uint>(bitsFor(count));
        if (used + bits > wordBits) {
            ++word;
            used = 0;
        }
        fields.push_back({word, used, (Word(1) << bits) - 1, network.locationsBegin(a), locations});
        used += bits;
        locations += count;
    }
    width = word + 1;
    for (uint l = 0; l < locations; ++l) keys.push_back(static_cast<Hash>(randomWord(l)));
}

void StateSpace::layOutActions() {
    std::vector<uint> taken; // participants of the network that are among the automata
    for (const uint a : members) {
        const std::span<const uint> own = participation.of(a);
        taken.insert(taken.end(), own.begin(), own.end());
    }
    std::ranges::sort(taken);
    for (const uint p : taken) {
        const uint x = participation.action(p);
        if (actions.empty() || actions.back().action != x) {
            const auto begin = static_cast<uint>(participants.size());
            actions.push_back({x, begin, begin});
        }
        ++actions.back().participantsEnd;
        const uint s = slots[network.participants[p].automaton];
        const auto movesBegin = static_cast<uint>(moves.size());
        for (const uint m : network.movesOf(p)) {
            moves.push_back({network.moves[m].source - fields[s].firstLocation,
                             network.moves[m].target - fields[s].firstLocation});
        }
        participants.push_back({s, movesBegin, static_cast<uint>(moves.size())});
    }

    std::vector<std::pair<uint, uint>> places; // a location and an action that is tried there
    const auto count = [](const Participant& p) { return p.movesEnd - p.movesBegin; };
    for (uint x = 0; x < actions.size(); ++x) {
        const auto begin = participants.begin();
        const Participant& few = *std::ranges::min_element(
            begin + actions[x].participantsBegin, begin + actions[x].participantsEnd, {}, count);
        for (uint m = few.movesBegin; m < few.movesEnd; ++m) {
            const std::pair place(fields[few.slot].firstIndex + moves[m].source, x);
            if (places.empty() || places.back() != place) places.push_back(place);
        }
    }
    tried = Rows<uint>(keys.size(), places);
}

/// The state in row, hash and locations.
void StateSpace::unpack(State state, Scratch& scratch) const {
    const Word* packed = row(state);
    std::copy_n(packed, width, scratch.row.begin());
    scratch.hash = 0;
    for (std::size_t s = 0; s < fields.size(); ++s) {
        scratch.here[s] = local(packed, fields[s]);
        scratch.hash ^= keys[fields[s].firstIndex + scratch.here[s]];
    }
}

/// The moves of a participant from a location.
std::pair<uint, uint> StateSpace::choices(const Participant& participant, uint source) const {
    if (participant.movesEnd - participant.movesBegin == 1) { // as mostly
        const uint m = participant.movesBegin;
        return {m, moves[m].source == source ? m + 1 : m};
    }
    const std::span<const Move> all(moves);
    const auto found = equalRange(
        all.subspan(participant.movesBegin, participant.movesEnd - participant.movesBegin), source,
        &Move::source);
    const auto first = static_cast<uint>(found.data() - all.data());
    return {first, first + static_cast<uint>(found.size())};
}

/// Makes the chosen moves in row and hash, or takes them back.
void StateSpace::toggle(const Action& action, Scratch& scratch) const {
    for (uint p = action.participantsBegin; p < action.participantsEnd; ++p) {
        const Move& move = moves[scratch.chosen[p - action.participantsBegin]];
        const Field& field = fields[participants[p].slot];
        scratch.row[field.word] ^= Word(move.source ^ move.target) << field.shift;
        scratch.hash ^= keys[field.firstIndex + move.source] ^ keys[field.firstIndex + move.target];
    }
}

/// Calls use with each step from the state that is unpacked: with the index of the action, while
/// row and hash are those of the successor. Gives the work.
template <class Use>
std::int64_t StateSpace::forEachSuccessor(Scratch& scratch, Use&& use) const {
    auto work = static_cast<std::int64_t>(fields.size() / 8 + width);
    for (std::size_t s = 0; s < fields.size(); ++s) {
        const uint location = fields[s].firstIndex + scratch.here[s];
        for (const uint x : tried[location]) {
            const Action& action = actions[x];
            scratch.choices.clear();
            bool possible = true;
            for (uint p = action.participantsBegin; possible && p < action.participantsEnd; ++p) {
                scratch.choices.push_back(
                    choices(participants[p], scratch.here[participants[p].slot]));
                possible = scratch.choices.back().first < scratch.choices.back().second;
            }
            work += static_cast<std::int64_t>(scratch.choices.size());
            if (!possible) continue;
            scratch.chosen.clear();
            for (const auto& [begin, end] : scratch.choices) scratch.chosen.push_back(begin);
            while (true) {
                toggle(action, scratch);
                use(action.action);
                toggle(action, scratch);
                work += static_cast<std::int64_t>(scratch.chosen.size());
                std::size_t p = scratch.chosen.size(); // those after it begin anew
                while (p > 0 && ++scratch.chosen[p - 1] == scratch.choices[p - 1].second) {
                    scratch.chosen[p - 1] = scratch.choices[p - 1].first;
                    --p;
                }
                if (p == 0) break;
            }
        }
    }
    return work;
}

void StateSpace::expand() {
    assert(!complete() && !full());
    const auto state = static_cast<State>(next);
    if (state == levels.back()) levels.push_back(static_cast<State>(size()));
    ++next;
    unpack(state, scratch);
    const std::uint64_t before = stepCount;
    stepCount += participation.idle().size();
    workCount += forEachSuccessor(scratch, [&](uint) {
        ++stepCount;
        const std::size_t entry = entryOf(scratch.row.data(), scratch.hash);
        if (table[entry].number == 0) add(entry, scratch.hash, scratch.row.data(), state);
    });
    deadlockCount += stepCount == before ? 1U : 0U;
    if (complete()) levels.pop_back();
}

int StateSpace::depth() const {
    return static_cast<int>(levels.size()) - (levels.back() < size() ? 1 : 2);
}

int StateSpace::completeDepth() const {
    const bool whole = complete() || next == levels.back();
    return static_cast<int>(levels.size()) - (whole ? 1 : 2);
}

int StateSpace::depth(State state) const {
    return static_cast<int>(std::ranges::upper_bound(levels, state) - levels.begin()) - 1;
}

std::size_t StateSpace::memory() const {
    return rows.capacity() * sizeof(Word) + parents.capacity() * sizeof(State) +
           table.capacity() * sizeof(Entry);
}

std::optional<uint> StateSpace::slot(uint automaton) const {
    if (slots[automaton] == none) return {};
    return slots[automaton];
}

std::vector<StateSpace::Step> StateSpace::steps(State state) const {
    assert(state < next);
    Scratch scratch{std::vector<uint>(members.size()), std::vector<Word>(width), 0, {}, {}};
    unpack(state, scratch);
    std::vector<Step> steps;
    for (const uint x : participation.idle()) steps.push_back({x, state});
    forEachSuccessor(scratch, [&](uint action) {
        steps.push_back({action, table[entryOf(scratch.row.data(), scratch.hash)].number - 1});
    });
    return steps;
}

std::vector<StateSpace::State> StateSpace::pathTo(State state) const {
    std::vector<State> path = {state};
    while (path.back() != 0) path.push_back(parents[path.back()]);
    std::ranges::reverse(path);
    return path;
}

/// The entry that holds the state, or else the free one that it is to have.
std::size_t StateSpace::entryOf(const Word* wanted, Hash hash) const {
    const std::size_t last = table.size() - 1;
    for (std::size_t e = hash & last;; e = (e + 1) & last) {
        const Entry& entry = table[e];
        if (entry.number == 0 ||
            (entry.hash == hash && std::equal(wanted, wanted + width, row(entry.number - 1)))) {
            return e;
        }
    }
}

void StateSpace::add(std::size_t entry, Hash hash, const Word* found, State parent) {
    rows.insert(rows.end(), found, found + width);
    parents.push_back(parent);
    table[entry] = {hash, static_cast<State>(size())};
    workCount += static_cast<std::int64_t>(width);
    if (2 * size() > table.size()) enlarge();
}

void StateSpace::enlarge() {
    std::vector<Entry> smaller(2 * table.size());
    smaller.swap(table);
    const std::size_t last = table.size() - 1;
    for (const Entry& entry : smaller) {
        if (entry.number == 0) continue;
        std::size_t e = entry.hash & last;
        while (table[e].number != 0) e = (e + 1) & last;
        table[e] = entry;
    }
}

} // namespace tervoxal
