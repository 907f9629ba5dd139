#include "property.h"

#include <algorithm>
#include <cstddef>
#include <map>

Property::Property(const NetTimedModel& model, Condition asked) : condition(std::move(asked)) {
    using Term = Condition::Term;
    std::map<uint, uint> props;
    std::map<NetTimedModel::Location, uint> locations;
    for (Condition::Token& token : condition.tokens) {
        const auto next = static_cast<uint>(props.size() + locations.size());
        if (token.term == Term::prop) {
            token.number = props.try_emplace(token.number, next).first->second;
        } else if (token.term == Term::at) {
            const NetTimedModel::Location location(token.number, token.location);
            token.number = locations.try_emplace(location, next).first->second;
        }
    }
    carriers.resize(props.size() + locations.size());
    for (const auto& [location, number] : model.valuation) {
        const auto named = props.find(number);
        if (named != props.end()) carried.emplace_back(location, named->second);
    }
    carried.insert(carried.end(), locations.begin(), locations.end());
    std::sort(carried.begin(), carried.end());
    for (const auto& [location, atom] : carried) {
        if (location.second == 0) ++carriers[atom];
    }
}

void Property::change(const Change& change) {
    const auto forEach = [&](uint location, auto&& use) {
        const NetTimedModel::Location key(change.automaton, location);
        auto at = std::lower_bound(carried.begin(), carried.end(), std::pair(key, 0U));
        for (; at != carried.end() && at->first == key; ++at) use(carriers[at->second]);
    };
    forEach(change.source, [&](uint& count) { stale = --count == 0 || stale; });
    forEach(change.target, [&](uint& count) { stale = count++ == 0 || stale; });
}

namespace {

/// Truth values over counts of carriers.
struct Truth {
    const std::vector<uint>& carriers;

    static bool constant(bool value) { return value; }
    [[nodiscard]] bool atom(const Condition::Token& token) const {
        return carriers[token.number] > 0;
    }
    static bool negation(bool a) { return !a; }
    static bool conjunction(bool a, bool b) { return a && b; }
    static bool disjunction(bool a, bool b) { return a || b; }
};

} // namespace

bool Property::holds() {
    if (stale) value = valueOf(condition, Truth{carriers});
    stale = false;
    return value;
}

bool holds(const NetTimedModel& model, const Condition& condition, const State& state) {
    Property property(model, condition);
    for (uint a = 1; a < state.size(); ++a) property.change({a, 0, state[a]});
    return property.holds();
}
