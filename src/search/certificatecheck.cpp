#include "search/certificatecheck.h"

#include "replay/alone.h"
#include "search/conditionliterals.h"
#include "search/solver.h"
#include "search/unrolling.h"

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

    void leaveSets() {
        for (const int set : setsAt(0)) solver.add({-set});
    }
    [[nodiscard]] bool meetsSet() { return possible(literals.some(setsAt(unrolling.depth()))); }
    [[nodiscard]] bool meets(const Condition& condition) {
        return possible(literals.literal(condition, 0));
    }
    void step() { unrolling.step(); }

private:
    [[nodiscard]] bool possible(int literal) {
        solver.assume(literal);
        return solver.solve(-1) == Solver::Verdict::satisfiable;
    }

    /// A literal for each set at the position.
    std::vector<int> setsAt(int position) {
        std::map<Certificate::Places, int> known;
        std::vector<int> sets;
        for (const Certificate::Set& set : certificate.sets) {
            std::vector<int> outside;
            for (const Certificate::Places& places : set) {
                const auto [literal, first] = known.try_emplace(places, 0);
                if (first) literal->second = placesAt(places, position);
                outside.push_back(-literal->second);
            }
            sets.push_back(-literals.some(std::move(outside)));
        }
        return sets;
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
};

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
    if (certificate.alone) return aloneFault(network, *certificate.alone, conditions);
    Checked first(network, certificate, true);
    if (first.meetsSet()) return "the initial state is in a set of states that it excludes";
    Checked any(network, certificate, false);
    any.leaveSets();
    for (const Condition* condition : conditions) {
        if (any.meets(*condition)) return "what is asked holds in a state that it does not exclude";
    }
    any.step();
    if (any.meetsSet()) return "a step leads into a set of states that it excludes";
    return "";
}

} // namespace tervoxal
