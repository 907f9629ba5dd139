#include "certification/counterexample.h"

#include "replay/path.h"
#include "replay/property.h"

#include <algorithm>
#include <set>

namespace tervoxal {

namespace {

using Set = WrittenCertificate::Set;
using Sum = WrittenCertificate::Sum;

class Judge {
public:
    Judge(const Certified& certified, Counterexample& result)
        : certified(certified), model(certified.network.model), certificate(certified.certificate),
          result(result) {}

    void judge(Claim claim) {
        switch (claim) {
        case Claim::initial: initial(); break;
        case Claim::step: step(); break;
        case Claim::question: question(); break;
        }
        for (const Change& change : result.changes) looked.insert(change.automaton);
        result.automata.assign(looked.begin(), looked.end());
    }

private:
    [[nodiscard]] Property propertyIn(const Condition& condition, const State& state) const {
        Property property(model, condition);
        for (uint a = 1; a < state.size(); ++a) {
            if (state[a] != 0) property.change({a, 0, state[a]});
        }
        return property;
    }
    [[nodiscard]] bool holds(const Condition& condition, const State& state) const {
        return propertyIn(condition, state).holds();
    }
    [[nodiscard]] const Set* setWith(const std::vector<Set>& sets, const State& state) const {
        const auto found =
            std::ranges::find_if(sets, [&](const Set& set) { return holds(set.states, state); });
        return found == sets.end() ? nullptr : &*found;
    }
    [[nodiscard]] const Set* weighedWith(const State& state) const {
        for (const Sum& sum : certificate.sums) {
            if (const Set* const set = setWith(sum.sets, state)) return set;
        }
        return nullptr;
    }
    [[nodiscard]] std::uint64_t valueOf(const Sum& sum, const State& state) const {
        std::uint64_t value = 0;
        for (const auto& [weight, where] : sum.terms) {
            if (holds(where, state)) value += weight;
        }
        return value;
    }
    /// Whether all automata are where they and those that are listed may be.
    [[nodiscard]] bool possible(const State& state) const {
        for (uint a = 1; a < state.size(); ++a) {
            const FlatNetwork::Place place = certified.network.place(a, state[a]);
            if (!place.always && !place.location) return false;
        }
        return certified.alone == nullptr || certified.alone->contains(state);
    }
    [[nodiscard]] bool inside(const State& state) const {
        return possible(state) && setWith(certificate.sets, state) == nullptr &&
               weighedWith(state) == nullptr;
    }

    void look(const Condition& condition) { looked.merge(Property(model, condition).automata()); }
    static std::string called(const Set& set) {
        return "set " + set.name + " of line " + std::to_string(set.line);
    }
    static std::string called(const Sum& sum) {
        return "the sum of weights of line " + std::to_string(sum.line);
    }

    void initial() {
        const State& state = result.states.front();
        if (state != initialState(model)) return;
        const Set* const weighed = weighedWith(state);
        if (const Set* const set = weighed ? weighed : setWith(certificate.sets, state)) {
            result.what = "the initial state is in " + called(*set);
            look(set->states);
            return;
        }
        for (const Sum& sum : certificate.sums) {
            const std::uint64_t value = valueOf(sum, state);
            if (value <= sum.initially) continue;
            result.what = called(sum) + " is " + std::to_string(value) + " at the start, not " +
                          std::to_string(sum.initially);
            for (const auto& [weight, where] : sum.terms) look(where);
            return;
        }
    }

    void step() {
        const State& from = result.states.front();
        const State& to = result.states.back();
        if (result.actions.empty() || !inside(from)) return;
        for (const Sum& sum : certificate.sums) {
            const std::uint64_t before = valueOf(sum, from);
            const std::uint64_t after = valueOf(sum, to);
            if (after <= before) continue;
            result.what = "a step increases " + called(sum) + " from " + std::to_string(before) +
                          " to " + std::to_string(after);
            return;
        }
        const Set* const set = setWith(certificate.sets, to);
        if (set == nullptr || weighedWith(to) != nullptr) return;
        result.what = "a step leads into " + called(*set) + " from outside of all sets";
        look(set->states);
    }

    void question() {
        const State& state = result.states.front();
        for (const Sum& sum : certificate.sums) {
            const Set* const set = setWith(sum.sets, state);
            if (set == nullptr || !possible(state)) continue;
            const std::uint64_t value = valueOf(sum, state);
            if (value > sum.initially) continue;
            result.what = called(*set) + " has a state whose sum of weights is " +
                          std::to_string(value) + ", not more than at the start";
            for (const auto& [weight, where] : sum.terms) look(where);
            return;
        }
        if (!inside(state) || !holds(certified.never, state)) return;
        result.what = "what is asked holds in a state that is not excluded";
        look(certified.never);
    }

    const Certified& certified;
    const NetTimedModel& model;
    const WrittenCertificate& certificate;
    Counterexample& result;
    std::set<uint> looked; // automata
};

} // namespace

Counterexample counterexample(const Certified& certified, const Transitions& transitions,
                              Claim claim, int maxVar, std::span<const int> literals) {
    const NetTimedModel& model = certified.network.model;
    const Path path = decodePath(model, claim == Claim::step ? 1 : 0, maxVar, literals);
    Counterexample result;
    result.states = {path.first};
    if (claim == Claim::step) {
        result.states.push_back(path.first);
        for (const auto& [position, change] : path.changes) {
            result.changes.push_back(change);
            result.states.back()[change.automaton] = change.target;
        }
        result.actions =
            transitions.actions(result.states.front(), result.states.back(), result.changes);
    }
    Judge(certified, result).judge(claim);
    return result;
}

} // namespace tervoxal
