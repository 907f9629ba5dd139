#include "translation/transitionfunction.h"

#include "translation/adder.h"

#include <cassert>
#include <map>
#include <utility>

namespace tervoxal {

namespace {

using Formulas = std::vector<BoolForm>;

/// The formulas joined by pairs, then the pairs likewise: their depth grows with the logarithm.
BoolForm joined(Formulas all, bool ofNone, BoolForm (*join)(const BoolForm&, const BoolForm&)) {
    if (all.empty()) return ofNone;
    while (all.size() > 1) {
        Formulas pairs;
        for (std::size_t i = 1; i < all.size(); i += 2) pairs.push_back(join(all[i - 1], all[i]));
        if (all.size() % 2 == 1) pairs.push_back(all.back());
        all.swap(pairs);
    }
    return all.front();
}

BoolForm some(Formulas all) { return joined(std::move(all), false, dis); }
BoolForm every(Formulas all) { return joined(std::move(all), true, con); }

/// The variables from first upward hold the number, as far as they go.
BoolForm decoded(int first, int width, uint number) {
    if (width == 0) return true;
    if (width == 1) return (number & 1U) != 0 ? BoolForm(first) : neg(BoolForm(first));
    const int low = width / 2;
    const BoolForm lower = decoded(first, low, number);
    const BoolForm upper = decoded(first + low, width - low, number >> static_cast<uint>(low));
    return con(lower, upper);
}

} // namespace

TransitionFunction::TransitionFunction(const NetTimedModel& model)
    : model(model), choices(model), tables(model) {
    assert(static_cast<std::size_t>(model.totalNrVertBits) + choices.bits <= mostVariables);
}

int TransitionFunction::variableOfState(std::size_t bit) { return 1 + static_cast<int>(bit); }

int TransitionFunction::variableOfChoice(std::size_t bit) const {
    return 1 + model.totalNrVertBits + static_cast<int>(bit);
}

BoolForm TransitionFunction::at(uint automaton, uint location) const {
    const FlatNetwork::Place place = tables.place(automaton, location);
    if (!place.location) return place.always;
    const auto first = static_cast<std::size_t>(model.bitShift[automaton]);
    return decoded(variableOfState(first), model.nrOfBits[automaton], location);
}

std::map<TransitionFunction::Effect, BoolForm> TransitionFunction::chosenMoves(uint automaton,
                                                                               uint action) const {
    const int field = variableOfChoice(choices.automata[automaton].first);
    std::map<Effect, Formulas> moves;
    for (const Choices::Move& move :
         Choices::choicesOf(model.actionEdges.at({automaton, action}))) {
        const BoolForm source = at(automaton, move.source);
        const BoolForm chosen = decoded(field, move.width, move.number);
        moves[{move.target & ~move.source, move.source & ~move.target}].push_back(
            con(source, chosen));
    }
    std::map<Effect, BoolForm> joint;
    for (auto& [effect, alike] : moves) joint.emplace(effect, some(std::move(alike)));
    return joint;
}

std::vector<BoolForm> TransitionFunction::next() const {
    std::vector<std::map<Effect, Formulas>> taken(model.nrOfBits.size()); // of each automaton
    for (uint i = 0; i < choices.actions.size(); ++i) {
        const std::set<uint>& owners = model.actionAutomata.at(choices.actions[i]);
        std::vector<std::map<Effect, BoolForm>> moves; // of each owner
        Formulas ready;
        for (const uint a : owners) {
            Formulas any;
            moves.push_back(chosenMoves(a, choices.actions[i]));
            for (const auto& [effect, move] : moves.back()) any.push_back(move);
            ready.push_back(some(std::move(any)));
        }
        const BoolForm possible = every(std::move(ready));
        const BoolForm chosen = decoded(variableOfChoice(0), choices.action.width, i);
        const BoolForm action = con(chosen, possible);
        auto own = moves.begin();
        for (const uint a : owners) {
            for (const auto& [effect, move] : *own) {
                taken[a][effect].push_back(own->size() == 1 ? action : con(action, move));
            }
            ++own;
        }
    }
    std::vector<BoolForm> bits;
    for (uint a = 1; a < taken.size(); ++a) append(bits, a, taken[a]);
    return bits;
}

void TransitionFunction::append(std::vector<BoolForm>& bits, uint automaton,
                                std::map<Effect, Formulas>& taken) const {
    const auto width = static_cast<std::size_t>(model.nrOfBits[automaton]);
    std::vector<Formulas> sets(width);
    std::vector<Formulas> clears(width);
    for (auto& [effect, alike] : taken) {
        const BoolForm moves = some(std::move(alike));
        for (std::size_t i = 0; i < width; ++i) {
            if ((effect.sets >> i & 1U) != 0) sets[i].push_back(moves);
            if ((effect.clears >> i & 1U) != 0) clears[i].push_back(moves);
        }
    }
    for (std::size_t i = 0; i < width; ++i) {
        const BoolForm set = some(std::move(sets[i]));
        const BoolForm cleared = some(std::move(clears[i]));
        const BoolForm kept = con(BoolForm(variableOfState(bits.size())), neg(cleared));
        bits.push_back(dis(set, kept));
    }
}

BoolForm TransitionFunction::enabled(uint action) const {
    const auto owners = model.actionAutomata.find(action);
    if (owners == model.actionAutomata.end()) return false;
    Formulas possible;
    for (const uint a : owners->second) {
        Formulas sources;
        for (const auto& [source, target] : model.actionEdges.at({a, action})) {
            sources.push_back(at(a, source));
        }
        possible.push_back(some(std::move(sources)));
    }
    return every(std::move(possible));
}

/// The values of a condition's tokens. Keeps what is more than a location, so each is built once,
/// however often it is named.
struct TransitionFunction::Atoms {
    using Term = Condition::Term;

    Atoms(const TransitionFunction& function, const Condition& condition) : function(function) {
        std::map<uint, Formulas> carriers;
        for (const Condition::Token& token : condition.tokens) {
            forEachAtom(token, [&](const Condition::Token& atom) {
                if (atom.term == Term::prop) carriers[atom.number];
            });
        }
        for (const auto& [location, prop] : function.model.valuation) {
            const auto named = carriers.find(prop);
            if (named == carriers.end()) continue;
            named->second.push_back(function.at(location.first, location.second));
        }
        for (auto& [prop, locations] : carriers) {
            known.emplace(std::pair(Term::prop, prop), some(std::move(locations)));
        }
    }

    BoolForm atom(const Condition::Token& token) {
        if (token.term == Term::at) return function.at(token.number, token.location);
        if (token.term == Term::sum) return reached(positiveSum(token, *this));
        const auto [value, first] =
            known.try_emplace(std::pair(token.term, token.number), BoolForm(false));
        if (first) {
            value->second =
                token.term == Term::enabled ? function.enabled(token.number) : deadlock();
        }
        return value->second;
    }
    [[nodiscard]] BoolForm deadlock() const {
        Formulas none;
        for (const uint action : function.choices.actions) {
            none.push_back(neg(function.enabled(action)));
        }
        return every(std::move(none));
    }
    static BoolForm constant(bool value) { return value; }
    static BoolForm negation(const BoolForm& a) { return neg(a); }
    static BoolForm conjunction(const BoolForm& a, const BoolForm& b) { return con(a, b); }
    static BoolForm disjunction(const BoolForm& a, const BoolForm& b) { return dis(a, b); }

    const TransitionFunction& function;
    std::map<std::pair<Term, uint>, BoolForm> known;
};

BoolForm TransitionFunction::holds(const Condition& condition) const {
    return valueOf(condition, Atoms(*this, condition));
}

} // namespace tervoxal
