#include "query/vocabulary.h"

namespace tervoxal {

Vocabulary vocabularyOf(const NetTimedModel& model, const Names& names) {
    Vocabulary vocabulary;
    for (const auto& [prop, name] : names.props) vocabulary.props[name].push_back(prop);
    for (const auto& [number, name] : names.actions)
        vocabulary.actions.named[name].push_back(number);
    for (const auto& [number, owners] : model.actionAutomata) {
        vocabulary.actions.numbers.insert(vocabulary.actions.numbers.end(), number);
    }
    for (const auto& [a, name] : names.automata) vocabulary.automata.named[name].push_back(a);
    for (const auto& [location, vertex] : model.verts) {
        const auto& [a, l] = location;
        vocabulary.automata.numbers.insert(vocabulary.automata.numbers.end(), a);
        std::set<uint>& numbers = vocabulary.locations[a].numbers;
        numbers.insert(numbers.end(), l);
    }
    for (const auto& [location, name] : names.locations) {
        vocabulary.locations.at(location.first).named[name].push_back(location.second);
    }
    return vocabulary;
}

} // namespace tervoxal
