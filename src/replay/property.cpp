#include "property.h"

#include <algorithm>

Property::Property(const NetTimedModel& model) {
    refuseWithoutValue(model.form->onp);
    std::map<uint, uint> indices;
    for (const OnpNode& token : model.form->onp) {
        if (token.op > OpDis) {
            program.clear();
            return;
        }
        const bool named = token.op == OpVar || token.op == OpNegVar;
        uint prop = 0;
        if (named) {
            const auto next = static_cast<uint>(indices.size());
            prop = indices.try_emplace(static_cast<uint>(token.varNr), next).first->second;
        }
        program.push_back({token.op, prop});
    }
    carriers.resize(indices.size());
    for (const auto& [location, number] : model.valuation) {
        const auto named = indices.find(number);
        if (named == indices.end()) continue;
        carried.emplace_back(location, named->second);
        if (location.second == 0) ++carriers[named->second];
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

bool Property::evaluated() const {
    std::vector<bool> values;
    for (const Token& token : program) {
        if (token.op == OpTrue) {
            values.push_back(true);
        } else if (token.op <= OpNegVar) {
            values.push_back((carriers[token.prop] > 0) == (token.op == OpVar));
        } else {
            const bool right = values.back();
            values.pop_back();
            values.back() = token.op == OpCon ? values.back() && right : values.back() || right;
        }
    }
    return !values.empty() && values.back();
}

bool Property::holds() {
    if (stale) value = evaluated();
    stale = false;
    return value;
}

bool holds(const NetTimedModel& model, const State& state) {
    Property property(model);
    for (uint a = 1; a < state.size(); ++a) property.change({a, 0, state[a]});
    return property.holds();
}
