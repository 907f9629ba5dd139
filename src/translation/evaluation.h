// A condition at symbolic states.
//
// A path asks for the same condition at each position, over other variables. So it is laid out
// once: its atoms are counted from 0, and each gets the locations where it holds, in the order of
// the model's tables. At a state each atom is built once, at its first use, however often it is
// named, and what the condition does not name costs nothing. The nodes are those of fP and bef, in
// the order of the tokens.

#pragma once

#include "model/ntamodel.h"
#include "query/condition.h"

#include <optional>
#include <vector>

namespace tervoxal {

/// A condition over one model.
class Evaluation {
public:
    /// The model has a layout of states and outlives this. The atoms are propositions and
    /// locations.
    Evaluation(const NetTimedModel& model, Condition asked);

    /// The condition in the state. Precondition, asserted for each location looked at: the state
    /// has the bits of the model.
    [[nodiscard]] BoolForm value(const SymState& state);

private:
    const NetTimedModel& model;
    Condition condition; // the number of an atom is an index of carriers
    std::vector<std::vector<NetTimedModel::Location>> carriers; // of each atom
    std::vector<std::optional<BoolForm>> built;                 // of each atom, in the state
};

} // namespace tervoxal
