#include "search/certificatecheck.h"

#include "certificate/weightscheck.h"
#include "replay/alone.h"
#include "search/conditionliterals.h"
#include "search/solver.h"
#include "search/unrolling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>

namespace tervoxal {

namespace {

/// A certificate in an unrolling.
class Checked {
public:
    /// From the initial state, or else from any.
    Checked(const FlatNetwork& network, const Certificate& certificate, bool initial)
        : network(network), certificate(certificate),
          unrolling(network, solver, Scope{StepKind::interleaving, initial}),
          literals(unrolling, solver) {}

    /// From now on the last state is outside of the sets that weights exclude, as far as they count
    /// at all: each has a literal under which it does, which is assumed in all questions.
    void leaveWeighed() {
        std::size_t i = 0;
        for (const Certificate::Weighed& weighed : certificate.weighed) {
            for (const int set : literalsOf(weighed.sets)) {
                if (i == active.size()) active.push_back(solver.newVariable());
                solver.add({-active[i++], -set});
            }
        }
        needed.resize(active.size());
    }
    void leaveSets() {
        for (const int set : literalsOf(certificate.sets)) solver.add({-set});
    }
    /// Which of the sets have no states but those of larger sets and of those that weights exclude.
    [[nodiscard]] std::vector<bool> coveredSets();
    [[nodiscard]] bool meetsSet() { return possible(literals.some(literalsOf(certificate.sets))); }
    [[nodiscard]] bool meets(const Condition& condition) {
        return possible(literals.literal(condition, unrolling.depth()));
    }
    void step() { unrolling.step(); }
    /// The sets that weights exclude without which something would have been possible, in a row.
    [[nodiscard]] const std::vector<bool>& neededSets() const { return needed; }

private:
    [[nodiscard]] bool possible(int literal) {
        solver.assume(literal);
        for (const int set : active) solver.assume(set);
        if (solver.solve(-1) == Solver::Verdict::satisfiable) return true;
        for (std::size_t i = 0; i < active.size(); ++i) {
            if (solver.failed(active[i])) needed[i] = true;
        }
        return false;
    }

    /// A literal for each set at the last position.
    std::vector<int> literalsOf(const std::vector<Certificate::Set>& sets) {
        std::vector<int> all;
        for (const Certificate::Set& set : sets) {
            std::vector<int> outside;
            for (const Certificate::Places& places : set) {
                const auto [literal, first] = known.try_emplace({unrolling.depth(), places}, 0);
                if (first) literal->second = placesAt(places, unrolling.depth());
                outside.push_back(-literal->second);
            }
            all.push_back(-literals.some(std::move(outside)));
        }
        return all;
    }

    [[nodiscard]] int placesAt(const Certificate::Places& places, int position) {
        std::vector<int> in;
        for (const uint location : places.locations) {
            const FlatNetwork::Place place = network.place(places.automaton, location);
            if (place.always) in.push_back(unrolling.truth());
            if (place.location) in.push_back(unrolling.location(position, *place.location));
        }
        return literals.some(std::move(in));
    }

    const FlatNetwork& network;
    const Certificate& certificate;
    Solver solver;
    Unrolling unrolling;
    ConditionLiterals literals;
    std::vector<int> active;
    std::vector<bool> needed;
    std::map<std::pair<int, Certificate::Places>, int> known; // by position
};

std::vector<bool> Checked::coveredSets() {
    // A set that covers another one leaves more of the states, so it comes before that.
    std::vector<std::pair<double, std::size_t>> order;
    for (std::size_t i = 0; i < certificate.sets.size(); ++i) {
        double share = 0; // its logarithm
        for (const Certificate::Places& places : certificate.sets[i]) {
            std::size_t there = 0;
            for (const uint location : places.locations) {
                const FlatNetwork::Place place = network.place(places.automaton, location);
                if (place.always || place.location) ++there;
            }
            const auto index = network.automaton(places.automaton);
            const double of = index ? network.locationsOf(*index).size() : 1;
            share += std::log(static_cast<double>(there) / of);
        }
        order.emplace_back(-share, i);
    }
    std::ranges::sort(order);
    for (const Certificate::Weighed& weighed : certificate.weighed) {
        for (const int set : literalsOf(weighed.sets)) solver.add({-set});
    }
    const std::vector<int> literals = literalsOf(certificate.sets);
    std::vector<bool> covered(literals.size());
    for (const auto& [share, i] : order) {
        covered[i] = !possible(literals[i]);
        if (!covered[i]) solver.add({-literals[i]});
    }
    return covered;
}

std::string aloneFault(const FlatNetwork& network, const std::vector<uint>& numbers,
                       const std::vector<const Condition*>& conditions) {
    std::vector<uint> automata;
    uint last = 0;
    for (const uint a : numbers) {
        if (a <= last) return "the automata that it names are not in ascending order";
        if (a >= network.model.nrOfBits.size()) return "it names an automaton that is not there";
        if (const auto index = network.automaton(a)) automata.push_back(*index);
        last = a;
    }
    return metAlone(network, automata, conditions)
               ? "what is asked may be met by the automata that it names"
               : "";
}

} // namespace

std::string certificateFault(const FlatNetwork& network, const Certificate& certificate,
                             const std::vector<const Condition*>& conditions) {
    Certificate copy = certificate;
    return trim(network, copy, conditions);
}

std::string trim(const FlatNetwork& network, Certificate& certificate,
                 const std::vector<const Condition*>& conditions) {
    if (certificate.alone) return aloneFault(network, *certificate.alone, conditions);
    for (const Certificate::Weighed& weighed : certificate.weighed) {
        std::string fault = weightsFault(network, weighed);
        if (!fault.empty()) return fault;
    }
    const std::vector<bool> covered = Checked(network, certificate, false).coveredSets();
    std::size_t place = 0;
    std::erase_if(certificate.sets, [&](const auto&) { return covered[place++]; });
    if (!certificate.sets.empty() && Checked(network, certificate, true).meetsSet()) {
        return "the initial state is in a set of states that it excludes";
    }
    Checked any(network, certificate, false);
    any.leaveWeighed();
    any.leaveSets();
    for (const Condition* condition : conditions) {
        if (any.meets(*condition)) return "what is asked holds in a state that it does not exclude";
    }
    if (!certificate.sets.empty()) {
        any.step();
        any.leaveWeighed();
        if (any.meetsSet()) return "a step leads into a set of states that it excludes";
    }
    std::size_t i = 0;
    for (Certificate::Weighed& weighed : certificate.weighed) {
        std::erase_if(weighed.sets, [&](const auto&) { return !any.neededSets()[i++]; });
    }
    std::erase_if(certificate.weighed, [](const auto& weighed) { return weighed.sets.empty(); });
    return "";
}

} // namespace tervoxal
