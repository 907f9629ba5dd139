#include "translation/reachability.h"

#include "translation/transitionfunction.h"

#include <set>

namespace tervoxal {

namespace {

/// Adds the names of a field's bits.
void addBits(std::vector<std::string>& names, const std::string& field, int width) {
    for (int i = 0; i < width; ++i) names.push_back(field + std::to_string(i));
}

} // namespace

Circuit reachability(const NetTimedModel& model, const Condition& condition) {
    refuseVariables("the circuit", model.totalNrVertBits + static_cast<long>(Choices(model).bits));
    const TransitionFunction function(model);
    Circuit circuit;
    for (std::size_t i = 0; i < function.choices.bits; ++i) {
        circuit.inputs.push_back({function.variableOfChoice(i), ""});
    }
    for (const BoolForm& next : function.next()) {
        circuit.latches.push_back(
            {TransitionFunction::variableOfState(circuit.latches.size()), next, ""});
    }
    circuit.outputs.push_back({function.holds(condition), ""});
    return circuit;
}

void nameSymbols(Circuit& circuit, const NetTimedModel& model, const Names& names) {
    const Choices choices(model);
    std::vector<std::string> inputs;
    std::vector<std::string> latches;
    std::set<std::string> taken = {"action"};
    addBits(inputs, "action.bit", choices.action.width);
    for (uint a = 1; a < model.nrOfBits.size(); ++a) {
        std::string name = names.automaton(a);
        while (!taken.insert(name).second) name += " (automaton " + std::to_string(a) + ')';
        addBits(inputs, name + ".choice", choices.automata[a].width);
        addBits(latches, name + ".bit", model.nrOfBits[a]);
    }
    for (std::size_t i = 0; i < inputs.size(); ++i) circuit.inputs[i].name = inputs[i];
    for (std::size_t i = 0; i < latches.size(); ++i) circuit.latches[i].name = latches[i];
    circuit.outputs.front().name = "reached";
    circuit.comment =
        "Output 0 can become 1 exactly when the network can reach a state in which the "
        "formula holds.";
}

} // namespace tervoxal
