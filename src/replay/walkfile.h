// A file of steps that somebody has taken by hand: a JSON object (RFC 8259) whose member `walk` has
// an object for each step, from the initial state on.
//
//     {"network":"race",
//     "walk":[
//     {"action":11,"name":"see flag 2 down","changes":[[1,0,1]]},
//     {"action":21,"name":"see flag 1 down","changes":[[2,0,1]]}]}
//
// A change is an automaton, the location that it leaves and the one that it comes to. Automata that
// stay are not told; a step without a change has no list or an empty one. Other members, as the two
// names here, are for readers. Numbers are those of the network.

#pragma once

#include "replay/path.h"
#include "replay/transitions.h"

#include <istream>
#include <string>

namespace tervoxal {

/// Reads a walk to the end of the stream. One that is malformed, or that has a step which its
/// action does not make on the network, ends the process with status 1 and one line on standard
/// error, which begins with the name. Linear in the stream and a state, but for the search of
/// actions.
[[nodiscard]] Path readWalk(std::istream& in, const std::string& name,
                            const Transitions& transitions);

} // namespace tervoxal
