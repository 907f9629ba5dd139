#include "replay/path.h"

#include "model/layout.h"

#include "model/choices.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace tervoxal {

namespace {

/// The automata that are not in location 0, ascending, with their locations.
using Marked = std::vector<std::pair<uint, uint>>;

/// Calls use for each automaton that is in different locations.
template <class Use>
void forEachChange(const Marked& before, const Marked& after, Use&& use) {
    auto b = before.begin();
    for (const auto& [automaton, target] : after) {
        for (; b != before.end() && b->first < automaton; ++b) use(Change{b->first, b->second, 0});
        const bool both = b != before.end() && b->first == automaton;
        const uint source = both ? b->second : 0;
        if (both) ++b;
        if (source != target) use(Change{automaton, source, target});
    }
    for (; b != before.end(); ++b) use(Change{b->first, b->second, 0});
}

} // namespace

Path decodePath(const NetTimedModel& model, int k, int maxVar, std::span<const int> literals) {
    const std::vector<uint> automatonOf = automataOfBits(model);

    Path path{k, initialState(model), {}};
    Marked before;
    Marked here;
    int position = 0;
    const auto finishPosition = [&] {
        if (position == 0) {
            for (const auto& [automaton, location] : here) path.first[automaton] = location;
        } else if (position <= k) {
            forEachChange(before, here, [&](const Change& change) {
                path.changes.push_back({position, change});
            });
        }
        std::swap(before, here);
        here.clear();
        ++position;
    };
    for (const int literal : literals) {
        if (literal <= 0) continue;
        if (literal > maxVar) break;
        const int p = (literal - 1) / model.totalNrVertBits;
        while (position < p) finishPosition();
        const int bit = (literal - 1) % model.totalNrVertBits;
        const uint automaton = automatonOf[static_cast<std::size_t>(bit)];
        if (here.empty() || here.back().first != automaton) here.emplace_back(automaton, 0);
        here.back().second |= 1U << static_cast<uint>(bit - model.bitShift[automaton]);
    }
    finishPosition();
    finishPosition(); // of this position all are in location 0
    return path;
}

Path twiceAround(const Path& path) {
    Path twice = path;
    if (!path.loop) return twice;
    const int length = path.k - *path.loop;
    twice.k += length;
    for (const Path::PositionedChange& change : path.changes) {
        if (change.position > *path.loop) {
            twice.changes.push_back({change.position + length, change.change});
        }
    }
    const std::vector<uint> around(path.actions.begin() + *path.loop, path.actions.end());
    twice.actions.insert(twice.actions.end(), around.begin(), around.end());
    return twice;
}

namespace {

/// The number in a field of the text.
uint numberIn(const std::string& text, const Choices::Field& field) {
    uint number = 0;
    for (int i = field.width; i-- > 0;) {
        number = 2 * number + (text[field.first + static_cast<std::size_t>(i)] == '1' ? 1U : 0U);
    }
    return number;
}

/// What the chosen action changes, which is nothing where it is not possible.
std::vector<Change> chosenChanges(const NetTimedModel& model, const Choices& choices,
                                  const State& state, const std::string& text) {
    const uint index = numberIn(text, choices.action);
    if (index >= choices.actions.size()) return {};
    const uint action = choices.actions[index];
    std::vector<Change> changes;
    for (const uint a : model.actionAutomata.at(action)) {
        const std::optional<uint> target = Choices::target(
            model.actionEdges.at({a, action}), state[a], numberIn(text, choices.automata[a]));
        if (!target) return {};
        if (*target != state[a]) changes.push_back({a, state[a], *target});
    }
    return changes;
}

} // namespace

Path decodeChoices(const NetTimedModel& model, std::span<const std::string> texts) {
    const Choices choices(model);
    Path path{0, initialState(model), {}};
    State state = path.first;
    for (const std::string& text : texts) {
        assert(text.size() == choices.bits);
        const std::vector<Change> changes = chosenChanges(model, choices, state, text);
        if (changes.empty()) continue;
        ++path.k;
        for (const Change& change : changes) {
            path.changes.push_back({path.k, change});
            state[change.automaton] = change.target;
        }
    }
    return path;
}

} // namespace tervoxal
