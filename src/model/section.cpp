#include "model/section.h"

#include <algorithm>

namespace tervoxal {

namespace {

template <class T>
void sortUnique(std::vector<T>& v) {
    if (!std::is_sorted(v.begin(), v.end())) std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());
}

} // namespace

void Section::addTransition(const Transition& t, long line) {
    transitions.push_back(t);
    const uint greater = std::max(t.source, t.target);
    if (ends.empty() || greater > ends.back().location) ends.push_back({greater, line});
}

void Section::addValue(uint l, long line) {
    if (greatestValue.line == 0 || l > greatestValue.location) greatestValue = {l, line};
}

void Section::sort() {
    sortUnique(locations);
    sortUnique(transitions);
    sortUnique(values);
}

std::optional<NetworkFault> Section::fault(int automaton, long end) const {
    using Kind = NetworkFault::Kind;
    if (locations.empty()) return NetworkFault{Kind::noLocation, end, automaton};
    const auto undeclared = [automaton](uint l, long line) {
        return NetworkFault{Kind::undeclared, line, automaton, {}, l};
    };
    const auto count = static_cast<uint>(locations.size());
    for (uint l = 0; l < count; ++l) {
        if (locations[l] != l) return undeclared(l, end);
    }
    const auto first = std::find_if(ends.begin(), ends.end(),
                                    [&](const Mention& m) { return m.location >= count; });
    if (first != ends.end()) return undeclared(first->location, first->line);
    if (greatestValue.line == 0 || greatestValue.location < count) return {};
    return undeclared(greatestValue.location, greatestValue.line);
}

} // namespace tervoxal
