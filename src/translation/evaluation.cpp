#include "translation/evaluation.h"

#include "translation/adder.h"

#include <cassert>
#include <map>
#include <utility>

namespace tervoxal {

Evaluation::Evaluation(const NetTimedModel& model, Condition asked)
    : model(model), condition(std::move(asked)) {
    using Term = Condition::Term;
    std::map<uint, uint> props;
    std::optional<uint> deadlock;
    const auto makeIndex = [&](Condition::Token& token) {
        assert(token.term != Term::after && token.term != Term::initial);
        const auto next = static_cast<uint>(atoms.size());
        if (token.term == Term::prop) {
            const auto [known, first] = props.try_emplace(token.number, next);
            if (first) atoms.push_back({{}});
            token.number = known->second;
        } else if (token.term == Term::at) {
            atoms.push_back({{{token.number, token.location}}});
            token.number = next;
        } else if (token.term == Term::enabled) {
            token.number = addAction(token.number);
        } else if (token.term == Term::deadlock) {
            if (!deadlock) {
                deadlock = next;
                atoms.emplace_back();
            }
            token.number = *deadlock;
        }
    };
    for (Condition::Token& token : condition.tokens) {
        makeIndex(token);
        if (token.term != Term::sum) continue;
        std::vector<Condition::Part> parts = *token.parts;
        for (Condition::Part& part : parts) makeIndex(part.atom);
        token.parts = std::make_shared<const std::vector<Condition::Part>>(std::move(parts));
    }
    if (deadlock) {
        for (const auto& [number, automata] : model.actionAutomata) (void)addAction(number);
    }
    if (props.empty()) return;
    std::vector<bool> always(atoms.size());
    for (const auto& [location, number] : model.valuation) {
        const auto named = props.find(number);
        if (named == props.end()) continue;
        // A carrier without bits makes its proposition true; a second one would add nothing.
        const bool noBits = model.nrOfBits[location.first] == 0;
        if (noBits && always[named->second]) continue;
        if (noBits) always[named->second] = true;
        atoms[named->second].front().push_back(location);
    }
}

/// The atom of an action; one that the network does not have is never possible.
uint Evaluation::addAction(uint number) {
    const auto [known, first] = actions.try_emplace(number, static_cast<uint>(atoms.size()));
    if (!first) return known->second;
    Atom& atom = atoms.emplace_back();
    const auto owners = model.actionAutomata.find(number);
    if (owners == model.actionAutomata.end()) {
        atom.emplace_back();
        return known->second;
    }
    for (const uint a : owners->second) {
        Carriers& sources = atom.emplace_back();
        for (const auto& [source, target] : model.actionEdges.at({a, number})) {
            const NetTimedModel::Location location(a, source);
            if (sources.empty() || sources.back() != location) sources.push_back(location);
        }
    }
    return known->second;
}

struct Evaluation::Formulas {
    Evaluation& of;
    const SymState& state;

    static BoolForm constant(bool value) { return value; }
    [[nodiscard]] BoolForm atom(const Condition::Token& token) const {
        if (token.term == Condition::Term::sum) return reached(positiveSum(token, *this));
        std::optional<BoolForm>& known = of.built[token.number];
        if (!known) {
            known = token.term == Condition::Term::deadlock ? deadlock() : carried(token.number);
        }
        return *known;
    }
    [[nodiscard]] BoolForm carried(uint atom) const {
        BoolForm all(true);
        for (const Carriers& carriers : of.atoms[atom]) {
            BoolForm r(false);
            for (const auto& [a, l] : carriers) {
                r = dis(r, of.model.bef(static_cast<int>(a), static_cast<int>(l), state.loc));
            }
            all = con(all, r);
        }
        return all;
    }
    [[nodiscard]] BoolForm deadlock() const {
        BoolForm r(true);
        for (const auto& [number, index] : of.actions) {
            const BoolForm possible = atom({Condition::Term::enabled, index});
            r = con(r, neg(possible));
        }
        return r;
    }
    static BoolForm negation(const BoolForm& a) { return neg(a); }
    static BoolForm conjunction(const BoolForm& a, const BoolForm& b) { return con(a, b); }
    static BoolForm disjunction(const BoolForm& a, const BoolForm& b) { return dis(a, b); }
};

BoolForm Evaluation::value(const SymState& state) {
    built.assign(atoms.size(), {});
    return valueOf(condition, Formulas{*this, state});
}

} // namespace tervoxal
