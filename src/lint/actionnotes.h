// What is odd about the actions of a network that a run takes: those that look as if another one
// was meant, and those that no run can take.

#pragma once

#include "model/names.h"
#include "text/diagnostics.h"

#include <set>
#include <string>
#include <vector>

namespace tervoxal {

/// An action of an automaton, and the line of its first transition there.
struct ActionUse {
    uint action;
    uint automaton;
    long line;
};

/// Notes of the kinds unnamed-action, near-number and dead-action. uses are all of the network, in
/// any order; told are actions that are known to be dead already. An action is taken for dead if
/// FlatNetwork leaves it out. Linear but for sorting.
void noteActions(const NetTimedModel& model, const Names& names, std::vector<ActionUse> uses,
                 const std::set<uint>& told, Diagnostics& findings);

} // namespace tervoxal
