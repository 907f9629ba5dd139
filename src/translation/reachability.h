// The question "can a state where the formula holds be reached, in any number of steps" as a
// sequential circuit.
//
// With B the bits of a state: latch i < B holds bit i of the state, and all are 0 at the start,
// which is location 0 everywhere. Input i is bit i of the next state, and latch i takes it over: so
// the surroundings choose the next state, and latch B remembers that some choice was no step of the
// network. The output is 1 while no step was wrong and the formula holds. So it can become 1, in
// some number of steps, exactly when the state can be reached.

#pragma once

#include "aiger.h"
#include "names.h"

/// The circuit for the network and the formula of the model. An automaton named like one before it
/// gets its number behind its name, so that no two symbols are equal. A formula that holds a
/// temporal operator is false as a whole, as in a run. A formula that is none and a state of more
/// than 499999 bits end the process with status 1 and one line on standard error.
[[nodiscard]] Circuit reachability(const NetTimedModel& model, const Names& names);
