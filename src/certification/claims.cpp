#include "certification/claims.h"

#include <algorithm>
#include <bit>
#include <bitset>
#include <cassert>
#include <utility>

namespace tervoxal {

namespace {

/// A state of some of the sets.
Condition anyOf(const std::vector<WrittenCertificate::Set>& sets) {
    using Term = Condition::Term;
    Condition any{{{Term::falsity}}};
    for (const WrittenCertificate::Set& set : sets) {
        any.tokens.insert(any.tokens.end(), set.states.tokens.begin(), set.states.tokens.end());
        any.tokens.push_back({Term::disjunction});
    }
    return any;
}

BoolFormVect constant(int width, std::uint64_t number) {
    return {width, std::bitset<2048>(number)};
}

/// The bits that hold all sums of these weights, and the number as well.
int widthOf(const std::vector<WrittenCertificate::Term>& terms, std::uint64_t number) {
    std::uint64_t together = 1;
    for (const WrittenCertificate::Term& term : terms) together += term.weight;
    return static_cast<int>(std::bit_width(std::max(together, number)));
}

/// The sum of the weights whose conditions hold, as a balanced tree of adders.
BoolFormVect sumOf(int width, const std::vector<WrittenCertificate::Term>& terms,
                   const std::vector<BoolForm>& where) {
    std::vector<BoolFormVect> parts;
    for (std::size_t i = 0; i < terms.size(); ++i) {
        parts.push_back(con(where[i], constant(width, terms[i].weight)));
    }
    if (parts.empty()) return constant(width, 0);
    for (; parts.size() > 1; parts.resize((parts.size() + 1) / 2)) {
        for (std::size_t i = 0; 2 * i < parts.size(); ++i) {
            parts[i] = 2 * i + 1 < parts.size() ? parts[2 * i] + parts[2 * i + 1] : parts[2 * i];
        }
    }
    return parts.front();
}

/// The automata that a condition looks at, if it does so by places alone.
std::optional<std::vector<uint>> automataOf(const Condition& condition) {
    using Term = Condition::Term;
    std::vector<uint> automata;
    for (const Condition::Token& token : condition.tokens) {
        switch (token.term) {
        case Term::at: automata.push_back(token.number); break;
        case Term::prop:
        case Term::enabled:
        case Term::sum:
        case Term::deadlock: return {};
        default: break;
        }
    }
    std::ranges::sort(automata);
    automata.erase(std::unique(automata.begin(), automata.end()), automata.end());
    return automata;
}

} // namespace

std::string nameOf(Claim claim) {
    switch (claim) {
    case Claim::initial: return "initial";
    case Claim::step: return "step";
    case Claim::question: break;
    }
    return "question";
}

Claims::Claims(const Certified& certified)
    : network(certified.network), model(network.model), certificate(certified.certificate),
      alone(certified.alone), states{model.genSymState(1, 0),
                                     model.genSymState(1 + model.totalNrVertBits, 1)},
      never(model, certified.never), sets(model, anyOf(certificate.sets)) {
    assert(2L * model.totalNrVertBits <= mostVariables);
    for (const WrittenCertificate::Sum& sum : certificate.sums) {
        weighed.emplace_back(model, anyOf(sum.sets));
        std::vector<Evaluation>& own = terms.emplace_back();
        for (const WrittenCertificate::Term& term : sum.terms) own.emplace_back(model, term.where);
    }
}

BoolForm Claims::violation(Claim claim) {
    switch (claim) {
    case Claim::initial: return initial();
    case Claim::step: return step();
    case Claim::question: break;
    }
    return question();
}

BoolForm Claims::initial() {
    BoolForm outside = neg(inside(states[0]));
    for (std::size_t i = 0; i < certificate.sums.size(); ++i) {
        outside = dis(outside, isGreater(states[0], i));
    }
    return con(model.fI(0, states[0]), outside);
}

BoolForm Claims::step() {
    const BoolForm from = inside(states[0]);
    const BoolForm next = model.fT(states[0], states[1]);
    BoolForm fails = con(sets.value(states[1]), neg(inWeighed(states[1])));
    fails = dis(fails, neg(possible(states[1])));
    if (alone != nullptr) {
        // Else a solver would have to find out that both states are alike for the diagram.
        const BoolForm left = con(moved(alone->automata), neg(aloneHolds(states[1])));
        fails = dis(fails, left);
    }
    for (std::size_t i = 0; i < certificate.sums.size(); ++i) fails = dis(fails, increases(i));
    return con(con(from, next), fails);
}

BoolForm Claims::question() {
    const SymState& state = states[0];
    BoolForm fails = con(inside(state), never.value(state));
    for (std::size_t i = 0; i < certificate.sums.size(); ++i) {
        const BoolForm reached = con(weighed[i].value(state), neg(isGreater(state, i)));
        fails = dis(fails, reached);
    }
    return con(con(possible(state), aloneHolds(state)), fails);
}

/// Each automaton is in a location that some run may come to.
BoolForm Claims::possible(const SymState& state) const {
    BoolForm all(true);
    for (int a = 1; a <= model.nrOfAutomata; ++a) {
        const int bits = model.nrOfBits[static_cast<std::size_t>(a)];
        const auto index = network.automaton(static_cast<uint>(a));
        if (!index) {
            all = con(all, model.bef(a, 0, state.loc));
            continue;
        }
        const FlatNetwork::Indices locations = network.locationsOf(*index);
        if (locations.size() == 1U << static_cast<uint>(bits)) continue;
        BoolForm some(false);
        for (const uint l : locations) {
            some =
                dis(some, model.bef(a, static_cast<int>(network.locations[l].number), state.loc));
        }
        all = con(all, some);
    }
    return all;
}

BoolForm Claims::aloneHolds(const SymState& state) const {
    return alone != nullptr ? alone->holds(state) : BoolForm(true);
}

BoolForm Claims::inside(const SymState& state) {
    const BoolForm excluded = dis(inWeighed(state), sets.value(state));
    return con(con(possible(state), aloneHolds(state)), neg(excluded));
}

/// The state is in a set that a sum excludes.
BoolForm Claims::inWeighed(const SymState& state) {
    BoolForm any(false);
    for (Evaluation& own : weighed) any = dis(any, own.value(state));
    return any;
}

/// One of the automata is elsewhere in state 1. The nodes are those by which a step tells that an
/// automaton stays.
BoolForm Claims::moved(const std::vector<uint>& automata) const {
    BoolForm stay(true);
    for (const uint a : automata) {
        stay = con(stay, eq(states[0].loc, states[1].loc, model.bitShift[a], model.nrOfBits[a]));
    }
    return neg(stay);
}

/// The sum is greater than it is said to be at the start.
BoolForm Claims::isGreater(const SymState& state, std::size_t sum) {
    const WrittenCertificate::Sum& own = certificate.sums[sum];
    std::vector<BoolForm> where;
    for (Evaluation& term : terms[sum]) where.push_back(term.value(state));
    const int width = widthOf(own.terms, own.initially);
    return gt(sumOf(width, own.terms, where), constant(width, own.initially));
}

/// The weights that come are together more than those that go. A weight that looks at places alone
/// stays if their automata do: it says so, since a solver would have to find that out.
BoolForm Claims::increases(std::size_t sum) {
    const std::vector<WrittenCertificate::Term>& weights = certificate.sums[sum].terms;
    std::vector<BoolForm> come;
    std::vector<BoolForm> go;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const auto automata = automataOf(weights[i].where);
        const BoolForm changed = automata ? moved(*automata) : BoolForm(true);
        const BoolForm before = terms[sum][i].value(states[0]);
        const BoolForm after = terms[sum][i].value(states[1]);
        come.push_back(con(changed, con(after, neg(before))));
        go.push_back(con(changed, con(before, neg(after))));
    }
    const int width = widthOf(weights, 0);
    return gt(sumOf(width, weights, come), sumOf(width, weights, go));
}

} // namespace tervoxal
