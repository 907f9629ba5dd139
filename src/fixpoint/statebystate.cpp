#include "fixpoint/statebystate.h"

#include "replay/allstates.h"
#include "text/fatal.h"

#include <algorithm>
#include <cassert>
#include <string>
#include <vector>

namespace tervoxal {

StateByState::StateByState(const FlatNetwork& network)
    : participation(network), space(participation) {}

bool StateByState::explore(std::size_t most, const std::function<bool()>& stop) {
    constexpr std::size_t between = 1024; // to ask each time would cost more than to expand
    while (!space.complete() && space.size() <= most && !space.full()) {
        if (space.expanded() % between == 0 && stop()) return false;
        space.expand();
    }
    return space.complete() && space.size() <= most;
}

StateByState::Answer StateByState::answer(const TemporalFormula& question, const Fairness& fairness,
                                          bool any) const {
    assert(space.complete());
    const TemporalFormula formula = sought(question);
    const bool initially = isClaim(question);
    Answer answer;
    {
        std::vector<const Condition*> conditions;
        for (const TemporalFormula::Node& node : formula.nodes) {
            conditions.push_back(&node.condition);
        }
        for (const Condition& condition : fairness.conditions) conditions.push_back(&condition);
        const StateGraph graph(space, conditions);
        const Fixpoints fixpoints(graph, formula, fairness);
        answer.witness = witness(fixpoints, formula, initially, any);
        answer.unfair = !fairness.conditions.empty() && fixpoints.endsAlways();
    }
    if (answer.witness) return answer;
    const AllStates all(space.network.model, formula, fairness);
    const AllStates::Set& where = all.where(formula.nodes.size() - 1);
    if (all.states() != space.size()) {
        error("the certificate does not hold: there are " + std::to_string(all.states()) +
              " states in place of " + std::to_string(space.size()));
    }
    if (initially ? where[0] : std::ranges::find(where, true) != where.end()) {
        error("the certificate does not hold: a state meets what is said to be met in none");
    }
    return answer;
}

} // namespace tervoxal
