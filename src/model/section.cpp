#include "section.h"

#include <algorithm>

namespace {

template <class T>
void sortUnique(std::vector<T>& v) {
    if (!std::is_sorted(v.begin(), v.end())) std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());
}

} // namespace

Fault undeclared(unsigned int location, long line) {
    return {line, "location " + std::to_string(location) + " is not declared"};
}

void Section::addTransition(const Transition& t, long line) {
    transitions.push_back(t);
    const unsigned int greater = std::max(t.source, t.target);
    if (ends.empty() || greater > ends.back().location) ends.push_back({greater, line});
}

void Section::addValue(unsigned int l, long line) {
    if (greatestValue.line == 0 || l > greatestValue.location) greatestValue = {l, line};
}

void Section::sort() {
    sortUnique(locations);
    sortUnique(transitions);
    sortUnique(values);
}

std::vector<Fault> Section::faults(long end) const {
    if (locations.empty()) return {{end, "no location is declared"}};
    std::vector<Fault> found;
    const auto count = static_cast<unsigned int>(locations.size());
    for (unsigned int l = 0; l < count && found.empty(); ++l) {
        if (locations[l] != l) found.push_back(undeclared(l, end));
    }
    const auto first = std::find_if(ends.begin(), ends.end(),
                                    [&](const Mention& m) { return m.location >= count; });
    if (first != ends.end()) found.push_back(undeclared(first->location, first->line));
    if (greatestValue.line != 0 && greatestValue.location >= count) {
        found.push_back(undeclared(greatestValue.location, greatestValue.line));
    }
    return found;
}
