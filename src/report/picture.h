// A network as a graph in DOT, which Graphviz draws: a cluster for each automaton, a box for each
// location with its name and its propositions in braces, an arrow into the initial location, and
// one arrow for all transitions between two locations, with the names of their actions.
//
// With a path on it, the locations that it comes to are filled, and the transitions that it takes
// are bold and tell the numbers of their steps. Where several actions lead to a state, the least
// one counts. The transitions of a loop, to which the path goes back, have another colour and say
// so. That picture is a report, showDot, and may leave automata out.
//
// Labels are valid UTF-8, whatever bytes the names have.

#pragma once

#include "model/names.h"
#include "model/ntamodel.h"

#include <ostream>
#include <string>

namespace tervoxal {

/// Draws a network that is read and laid out.
void drawNetwork(std::ostream& out, const NetTimedModel& model, const Names& names,
                 const std::string& title);

} // namespace tervoxal
