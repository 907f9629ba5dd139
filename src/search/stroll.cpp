#include "stroll.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace {

class Stroll {
public:
    explicit Stroll(const Tables& tables);

    [[nodiscard]] bool stuck() const { return possible.empty(); }
    [[nodiscard]] int length() const { return static_cast<int>(stepsEnd.size()); }
    void step();
    void back();

private:
    void enter(uint location);
    void leave(uint location);

    const Tables& tables;
    std::vector<uint> in;    // of each automaton, its location
    std::vector<uint> users; // of each location, the actions of which it is a source
    std::vector<uint> usersBegin;
    std::vector<uint> waiting;  // of each action, its participants that are in no source
    std::vector<uint> possible; // the actions that are, in any order
    std::vector<uint> at;       // of each of them, its index there
    std::vector<std::pair<uint, uint>> moves; // from where to where, of all steps
    std::vector<std::size_t> stepsEnd;
    std::minstd_rand random;
};

Stroll::Stroll(const Tables& tables)
    : tables(tables), in(tables.automata.size()), usersBegin(tables.locations.size() + 1),
      waiting(tables.actions.size()), at(tables.actions.size()) {
    // Moves are sorted by source within a participant.
    const auto forEachSource = [&](auto&& use) {
        for (uint x = 0; x < tables.actions.size(); ++x) {
            for (uint p = tables.participantsBegin(x); p < tables.actions[x].participantsEnd; ++p) {
                for (uint m = tables.movesBegin(p); m < tables.participants[p].movesEnd; ++m) {
                    const uint source = tables.moves[m].source;
                    if (m > tables.movesBegin(p) && tables.moves[m - 1].source == source) continue;
                    use(x, source);
                }
            }
        }
    };
    forEachSource([&](uint, uint source) { ++usersBegin[source + 1]; });
    for (std::size_t l = 1; l < usersBegin.size(); ++l) usersBegin[l] += usersBegin[l - 1];
    users.resize(usersBegin.back());
    std::vector<uint> fill(usersBegin.begin(), usersBegin.end() - 1);
    forEachSource([&](uint x, uint source) { users[fill[source]++] = x; });

    for (uint x = 0; x < waiting.size(); ++x) {
        waiting[x] = tables.actions[x].participantsEnd - tables.participantsBegin(x);
        if (waiting[x] != 0) continue;
        at[x] = static_cast<uint>(possible.size());
        possible.push_back(x);
    }
    for (uint a = 0; a < in.size(); ++a) enter(tables.locationsBegin(a));
}

void Stroll::enter(uint location) {
    in[tables.locations[location].automaton] = location;
    for (uint i = usersBegin[location]; i < usersBegin[location + 1]; ++i) {
        const uint x = users[i];
        if (--waiting[x] != 0) continue;
        at[x] = static_cast<uint>(possible.size());
        possible.push_back(x);
    }
}

void Stroll::leave(uint location) {
    for (uint i = usersBegin[location]; i < usersBegin[location + 1]; ++i) {
        const uint x = users[i];
        if (waiting[x]++ != 0) continue;
        possible[at[x]] = possible.back();
        at[possible.back()] = at[x];
        possible.pop_back();
    }
}

void Stroll::step() {
    const uint x = possible[random() % possible.size()];
    for (uint p = tables.participantsBegin(x); p < tables.actions[x].participantsEnd; ++p) {
        std::vector<uint> targets;
        const uint here = in[tables.participants[p].automaton];
        for (uint m = tables.movesBegin(p); m < tables.participants[p].movesEnd; ++m) {
            if (tables.moves[m].source == here) targets.push_back(tables.moves[m].target);
        }
        const uint there = targets[random() % targets.size()];
        leave(here);
        enter(there);
        moves.emplace_back(here, there);
    }
    stepsEnd.push_back(moves.size());
}

void Stroll::back() {
    stepsEnd.pop_back();
    for (; moves.size() > (stepsEnd.empty() ? 0 : stepsEnd.back()); moves.pop_back()) {
        leave(moves.back().second);
        enter(moves.back().first);
    }
}

} // namespace

int strollLength(const Tables& tables, int most) {
    Stroll stroll(tables);
    int longest = 0;
    int back = 1;
    for (std::int64_t left = 8 * std::int64_t(most); left > 0 && longest < most; --left) {
        if (!stroll.stuck()) {
            stroll.step();
            if (stroll.length() <= longest) continue;
            longest = stroll.length();
            back = 1;
        } else if (stroll.length() == 0) {
            return 0;
        } else {
            for (int i = 0; i < back && stroll.length() > 0; ++i, --left) stroll.back();
            back *= 2;
        }
    }
    return longest;
}
