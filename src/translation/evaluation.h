// A condition at symbolic states.
//
// A path asks for the same condition at each position, over other variables. So it is laid out
// once: its atoms are counted from 0, and each gets the locations where it holds, in the order of
// the model's tables. An action is possible where each of its automata is in one of the sources of
// its transitions. At a state each atom is built once, at its first use, however often it is named,
// and what the condition does not name costs nothing. The nodes are those of fP and bef, in the
// order of the tokens.

#pragma once

#include "model/ntamodel.h"
#include "query/condition.h"

#include <map>
#include <optional>
#include <vector>

namespace tervoxal {

/// A condition over one model.
class Evaluation {
public:
    /// The model has a layout of states and outlives this. Precondition, asserted: the condition is
    /// about a state alone.
    Evaluation(const NetTimedModel& model, Condition asked);

    /// The condition in the state. Precondition, asserted for each location looked at: the state
    /// has the bits of the model.
    [[nodiscard]] BoolForm value(const SymState& state);

private:
    using Carriers = std::vector<NetTimedModel::Location>;
    /// Holds where for each of these some automaton is in one of the locations.
    using Atom = std::vector<Carriers>;
    struct Formulas;

    [[nodiscard]] uint addAction(uint number);

    const NetTimedModel& model;
    Condition condition;                        // the number of an atom is an index of atoms
    std::vector<Atom> atoms;                    // that of a deadlock stays empty
    std::map<uint, uint> actions;               // the atom of each that is looked at
    std::vector<std::optional<BoolForm>> built; // of each atom, in the state
};

} // namespace tervoxal
