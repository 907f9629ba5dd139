#include "reachability.h"

#include "evaluation.h"
#include "fatal.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace {

/// What the bits of a state are called, all differently: model checkers refuse equal symbols.
std::vector<std::string> bitNames(const NetTimedModel& model, const Names& names) {
    std::set<std::string> taken;
    std::vector<std::string> bits;
    for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
        std::string name = names.automaton(a);
        while (!taken.insert(name).second) name += " (automaton " + std::to_string(a) + ')';
        for (int i = 0; i < model.nrOfBits[a]; ++i) {
            bits.push_back(name + ".bit" + std::to_string(i));
        }
    }
    return bits;
}

} // namespace

Circuit reachability(const NetTimedModel& model, const Names& names) {
    const int bits = model.totalNrVertBits;
    if (2L * bits >= BoolForm::maxVariable) {
        error("a step needs " + std::to_string(2L * bits) + " variables, the limit is " +
              std::to_string(BoolForm::maxVariable - 1));
    }
    const SymState state = model.genSymState(1, 0);
    const SymState nextState = model.genSymState(1 + bits, 1);
    const BoolForm holds = Evaluation(model, conditionOf(*model.form)).value(state);
    const BoolForm step = model.actionSucc(1, state, nextState);
    const BoolForm wrong(1 + 2 * bits);

    Circuit circuit;
    const std::vector<std::string> symbols = bitNames(model, names);
    for (int i = 0; i < bits; ++i) {
        const std::string& symbol = symbols[static_cast<std::size_t>(i)];
        const BoolForm next = nextState.loc[i];
        circuit.inputs.push_back({next.nr, symbol + '\''});
        circuit.latches.push_back({state.loc[i].nr, next, symbol});
    }
    circuit.latches.push_back({wrong.nr, dis(wrong, neg(step)), "a wrong step"});
    circuit.outputs.push_back({con(neg(wrong), holds), "reached"});
    circuit.comment =
        "Output 0 can become 1 exactly when the network can reach a state in which the "
        "formula holds.";
    return circuit;
}
