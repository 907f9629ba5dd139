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
    const auto make = [&] { return atomValue(unrolling.network, token, *this); };
    return token.term == Condition::Term::prop ? shared(token.term, token.number, make) : make();
}

template <class Make>
int ConditionLiterals::shared(Condition::Term term, uint number, Make&& make) {
    const std::tuple key(position, term, number);
    if (const auto known = atoms.find(key); known != atoms.end()) return known->second;
    const int result = make();
    atoms.emplace(key, result);
    return result;
}

int ConditionLiterals::located(uint location) const {
    return unrolling.location(position, location);
}

int ConditionLiterals::possible(uint action) {
    return shared(Condition::Term::enabled, action,
                  [&] { return possibleValue(unrolling.network, action, *this); });
}

int ConditionLiterals::deadlock() {
    return shared(Condition::Term::deadlock, 0,
                  [&] { return deadlockValue(unrolling.network, *this); });
}

int ConditionLiterals::sum(const Condition::Token& token) {
    const std::tuple key(position, token.parts, token.least);
    if (const auto known = sums.find(key); known != sums.end()) return known->second;
    PositiveSum<int> sum = positiveSum(token, *this);
    const std::int64_t lacking = sum.total - sum.least + 1; // so much may not be false
    int result = 0;
    if (lacking < sum.least) {
        for (auto& [weight, literal] : sum.parts) literal = -literal;
        sum.least = lacking;
        result = -reached(sum);
    } else {
        result = reached(sum);
    }
    sums.emplace(key, result);
    return result;
}

int ConditionLiterals::reached(const PositiveSum<int>& sum) {
    std::vector<Totals> all;
    for (const auto& [weight, literal] : sum.parts) {
        all.push_back({{std::min(weight, sum.least), literal}});
    }
    while (all.size() > 1) {
        std::vector<Totals> pairs;
        for (std::size_t i = 1; i < all.size(); i += 2) {
            pairs.push_back(totals(all[i - 1], all[i], sum.least));
        }
        if (all.size() % 2 == 1) pairs.push_back(std::move(all.back()));
        all.swap(pairs);
    }
    return all.front().back().second;
}

ConditionLiterals::Totals ConditionLiterals::totals(const Totals& left, const Totals& right,
                                                    std::int64_t most) {
    // What is reached at each amount of a half, from 0 on; after the last one nothing more is.
    const auto withEnds = [&](const Totals& half) {
        Totals all = {{0, unrolling.truth()}};
        all.insert(all.end(), half.begin(), half.end());
        all.emplace_back(0, -unrolling.truth());
        return all;
    };
    const Totals ofLeft = withEnds(left);
    const Totals ofRight = withEnds(right);
    std::map<std::int64_t, int> literals;
    for (std::size_t l = 0; l + 1 < ofLeft.size(); ++l) {
        for (std::size_t r = 0; r + 1 < ofRight.size(); ++r) {
            literals[std::min(ofLeft[l].first + ofRight[r].first, most)] = 0;
        }
    }
    literals.erase(0);
    for (auto& [amount, literal] : literals) literal = solver.newVariable();
    for (std::size_t l = 0; l + 1 < ofLeft.size(); ++l) {
        for (std::size_t r = 0; r + 1 < ofRight.size(); ++r) {
            const std::int64_t amount = std::min(ofLeft[l].first + ofRight[r].first, most);
            if (amount > 0) {
                solver.add({-ofLeft[l].second, -ofRight[r].second, literals[amount]});
            }
            const auto above = literals.upper_bound(amount);
            if (above != literals.end()) {
                solver.add({ofLeft[l + 1].second, ofRight[r + 1].second, -above->second});
            }
        }
    }
    return {literals.begin(), literals.end()};
}

} // namespace tervoxal
