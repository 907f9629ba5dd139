#include "replay/property.h"

#include "text/equalrange.h"

#include <algorithm>
#include <map>

namespace tervoxal {

Property::Property(const NetTimedModel& model, Condition question)
    : condition(std::move(question)) {
    using Term = Condition::Term;
    std::map<uint, uint> props;
    std::map<NetTimedModel::Location, uint> locations;
    std::map<uint, uint> actions;
    const auto indexIn = [&](auto& known, const auto& key) {
        const auto next = static_cast<uint>(atoms.size());
        const auto [entry, isNew] = known.try_emplace(key, next);
        if (isNew) atoms.emplace_back();
        return entry->second;
    };
    const auto makeIndex = [&](Condition::Token& token) {
        if (token.term == Term::prop) {
            token.number = indexIn(props, token.number);
        } else if (token.term == Term::at) {
            token.number =
                indexIn(locations, NetTimedModel::Location(token.number, token.location));
        } else if (token.term == Term::enabled) {
            token.number = indexIn(actions, token.number);
        } else if (token.term == Term::deadlock) {
            if (!possible) {
                possible = static_cast<uint>(atoms.size());
                atoms.emplace_back();
            }
            token.number = *possible;
        }
    };
    for (Condition::Token& token : condition.tokens) {
        makeIndex(token);
        if (token.term != Term::sum) continue;
        std::vector<Condition::Part> parts = *token.parts;
        for (Condition::Part& part : parts) makeIndex(part.atom);
        token.parts = std::make_shared<const std::vector<Condition::Part>>(std::move(parts));
    }
    asked = atoms.size();
    if (possible) {
        for (const auto& [action, automata] : model.actionAutomata) indexIn(actions, action);
    }

    if (!props.empty()) {
        for (const auto& [location, number] : model.valuation) {
            const auto named = props.find(number);
            if (named != props.end()) counted.emplace_back(location, named->second);
        }
    }
    counted.insert(counted.end(), locations.begin(), locations.end());
    for (const auto& [action, atom] : actions) {
        const auto automata = model.actionAutomata.find(action);
        if (automata == model.actionAutomata.end()) continue;
        atoms[atom].action = true;
        atoms[atom].need = static_cast<uint>(automata->second.size());
        for (const uint a : automata->second) {
            for (const auto& [source, target] : model.actionEdges.at({a, action})) {
                const std::pair entry(NetTimedModel::Location(a, source), atom);
                if (counted.empty() || counted.back() != entry) counted.push_back(entry);
            }
        }
    }
    std::sort(counted.begin(), counted.end());
    for (const auto& [location, atom] : counted) {
        if (location.second == 0) changeCount(atom, true);
    }
}

void Property::changeCount(uint atom, bool up) {
    const bool before = atoms[atom].holds();
    atoms[atom].count += up ? 1U : -1U;
    const bool after = atoms[atom].holds();
    if (after == before) return;
    stale = stale || atom < asked;
    if (atoms[atom].action && possible) changeCount(*possible, after);
}

void Property::change(const Change& change) {
    const auto forEach = [&](uint location, bool up) {
        const NetTimedModel::Location key(change.automaton, location);
        using Entry = std::pair<NetTimedModel::Location, uint>;
        for (const auto& entry : equalRange(std::span(counted), key, &Entry::first)) {
            changeCount(entry.second, up);
        }
    };
    forEach(change.source, false);
    forEach(change.target, true);
}

std::set<uint> Property::automata() const {
    std::set<uint> all;
    for (const auto& [location, atom] : counted) {
        if (atom < asked) all.insert(all.end(), location.first);
    }
    return all;
}

namespace {

/// Truth values over atoms.
template <class Atom>
struct Truth {
    explicit Truth(const std::vector<Atom>& atoms) : atoms(atoms) {}

    static bool constant(bool value) { return value; }
    [[nodiscard]] bool atom(const Condition::Token& token) const {
        if (token.term == Condition::Term::sum) {
            std::int64_t sum = 0;
            for (const auto& [part, weight] : *token.parts) sum += atom(part) ? weight : 0;
            return sum >= token.least;
        }
        return atoms[token.number].holds() != (token.term == Condition::Term::deadlock);
    }
    static bool negation(bool a) { return !a; }
    static bool conjunction(bool a, bool b) { return a && b; }
    static bool disjunction(bool a, bool b) { return a || b; }

    const std::vector<Atom>& atoms;
};

} // namespace

bool Property::holds() {
    if (stale) value = valueOf(condition, Truth(atoms));
    stale = false;
    return value;
}

} // namespace tervoxal
