// The question "can a state be reached where a condition holds, in any number of steps" as a
// sequential circuit.
//
// Latch i holds bit i of the state, and all are 0 at the start, which is location 0 everywhere.
// Input i is bit i of the choice of a step (choices.h), and the latches take over the state after
// it, or stay as they are where nothing is chosen. The output is 1 where the condition holds. So it
// can become 1, in some number of steps, exactly when such a state can be reached.

#pragma once

#include "boolean/aiger.h"
#include "model/names.h"
#include "query/condition.h"

namespace tervoxal {

/// The circuit, without names. One of more than 999999 inputs and latches ends the process with
/// status 1 and one line on standard error.
[[nodiscard]] Circuit reachability(const NetTimedModel& model, const Condition& condition);

/// Gives the inputs, the latches and the output of the network's circuit their names, and the file
/// a comment. An automaton that is called "action" or like one before it gets its number after its
/// name, so that no two names are equal.
void nameSymbols(Circuit& circuit, const NetTimedModel& model, const Names& names);

} // namespace tervoxal
