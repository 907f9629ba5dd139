#include "translation/evaluation.h"

#include <cassert>
#include <map>
#include <utility>

namespace tervoxal {

Evaluation::Evaluation(const NetTimedModel& model, Condition asked)
    : model(model), condition(std::move(asked)) {
    using Term = Condition::Term;
    std::map<uint, uint> props;
    for (Condition::Token& token : condition.tokens) {
        assert(token.term != Term::enabled && token.term != Term::deadlock);
        const auto next = static_cast<uint>(carriers.size());
        if (token.term == Term::prop) {
            const auto [known, first] = props.try_emplace(token.number, next);
            if (first) carriers.emplace_back();
            token.number = known->second;
        } else if (token.term == Term::at) {
            carriers.emplace_back(1, NetTimedModel::Location(token.number, token.location));
            token.number = next;
        }
    }
    std::vector<bool> always(carriers.size());
    for (const auto& [location, number] : model.valuation) {
        const auto named = props.find(number);
        if (named == props.end()) continue;
        // A carrier without bits makes its proposition true; a second one would add nothing.
        const bool noBits = model.nrOfBits[location.first] == 0;
        if (noBits && always[named->second]) continue;
        if (noBits) always[named->second] = true;
        carriers[named->second].push_back(location);
    }
}

BoolForm Evaluation::value(const SymState& state) {
    struct Formulas {
        Evaluation& of;
        const SymState& state;

        static BoolForm constant(bool value) { return value; }
        [[nodiscard]] BoolForm atom(const Condition::Token& token) const {
            std::optional<BoolForm>& atom = of.built[token.number];
            if (atom) return *atom;
            BoolForm r(false);
            for (const auto& [a, l] : of.carriers[token.number]) {
                r = dis(r, of.model.bef(static_cast<int>(a), static_cast<int>(l), state.loc));
            }
            atom = r;
            return r;
        }
        static BoolForm negation(const BoolForm& a) { return neg(a); }
        static BoolForm conjunction(const BoolForm& a, const BoolForm& b) { return con(a, b); }
        static BoolForm disjunction(const BoolForm& a, const BoolForm& b) { return dis(a, b); }
    };
    built.assign(carriers.size(), {});
    return valueOf(condition, Formulas{*this, state});
}

} // namespace tervoxal
