#include "search/conditionliterals.h"

#include "query/atoms.h"

#include <algorithm>
#include <cstddef>

namespace tervoxal {

ConditionLiterals::ConditionLiterals(const Unrolling& unrolling, Solver& solver)
    : unrolling(unrolling), solver(solver) {}

int ConditionLiterals::literal(const Condition& condition, int position) {
    this->position = position;
    return valueOf(condition, *this);
}

std::vector<uint> ConditionLiterals::cube(const Condition& condition) {
    const FlatNetwork& network = unrolling.network;
    const std::vector<bool> looked = lookedAt(network, condition);
    const auto here = [&](uint l) { return unrolling.location(0, l); };
    std::vector<uint> cube;
    for (uint l = 0; l < network.locations.size(); ++l) {
        if (looked[network.locations[l].automaton] && solver.value(here(l))) cube.push_back(l);
    }
    solver.assume(-literal(condition, 0));
    for (const uint l : cube) solver.assume(here(l));
    if (solver.solve(-1) == Solver::Verdict::unsatisfiable) { // sat(cube & !P)
        std::erase_if(cube, [&](uint l) { return !solver.failed(here(l)); });
    }
    return cube;
}

int ConditionLiterals::constant(bool value) const {
    return value ? unrolling.truth() : -unrolling.truth();
}

int ConditionLiterals::disjunction(int a, int b) { return some({a, b}); }

int ConditionLiterals::some(std::vector<int> literals) {
    const int truth = unrolling.truth();
    std::erase(literals, -truth);
    std::sort(literals.begin(), literals.end());
    literals.erase(std::unique(literals.begin(), literals.end()), literals.end());
    if (literals.empty()) return -truth;
    for (const int literal : literals) {
        if (literal == truth || std::binary_search(literals.begin(), literals.end(), -literal)) {
            return truth;
        }
    }
    if (literals.size() == 1) return literals[0];
    const int result = solver.newVariable();
    for (const int literal : literals) solver.add({-literal, result});
    literals.insert(literals.end(), {-result, 0});
    solver.add(literals);
    return result;
}

int ConditionLiterals::atom(const Condition::Token& token) {
    if (token.term == Condition::Term::at) return at(token.number, token.location);
    const std::tuple key(position, token.term, token.number);
    if (const auto known = atoms.find(key); known != atoms.end()) return known->second;
    const int result = token.term == Condition::Term::prop      ? prop(token.number)
                       : token.term == Condition::Term::enabled ? enabled(token.number)
                                                                : deadlock();
    atoms.emplace(key, result);
    return result;
}

int ConditionLiterals::prop(uint number) {
    std::vector<int> literals;
    for (const auto& [a, l] : unrolling.network.carriers(number)) literals.push_back(at(a, l));
    return some(std::move(literals));
}

int ConditionLiterals::at(uint automaton, uint location) const {
    const FlatNetwork::Place place = unrolling.network.place(automaton, location);
    return place.location ? unrolling.location(position, *place.location) : constant(place.always);
}

int ConditionLiterals::enabled(uint action) {
    const FlatNetwork& network = unrolling.network;
    const auto x = network.action(action);
    if (!x) return constant(false);
    std::vector<int> missing;
    for (const uint p : network.participantsOf(*x)) {
        std::vector<int> sources;
        for (const uint m : network.movesOf(p)) {
            sources.push_back(unrolling.location(position, network.moves[m].source));
        }
        missing.push_back(-some(std::move(sources)));
    }
    return -some(std::move(missing));
}

int ConditionLiterals::deadlock() {
    std::vector<int> possible;
    for (const FlatNetwork::Action& action : unrolling.network.actions) {
        possible.push_back(atom({Condition::Term::enabled, action.number}));
    }
    return -some(std::move(possible));
}

} // namespace tervoxal
