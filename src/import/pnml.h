// Place/transition nets in PNML (ISO/IEC 15909-2), read with expat, piece by piece: the memory is
// linear in the net, not in the file.
//
// Elements are known by their names without prefix, and by where they stand. Read are
//
//     pnml / net / page*                         one net; pages nest, and may be absent
//     place, transition, arc                     of a net or a page
//     referencePlace, referenceTransition        stand for the node that they name
//     name/text, initialMarking/text, inscription/text
//     toolspecific[tool=nupn]/structure/unit     nested units, where the structure is marked safe
//
// All others are skipped with all that they hold. An arc may stand before its nodes.

#pragma once

#include "import/petrinet.h"

#include <string>

namespace tervoxal {

/// Reads a net with that bound on the tokens of a place; 0 for a safe one. With a bound, no units
/// are read. Ends the process with status 1 and one line on standard error, with the line of the
/// file, where it is not well-formed, declares entities or the like, nests elements deeper than
/// 1000, or is no net that is read:
///  - none or several nets, a coloured net, an arc that inhibits or resets;
///  - a weight or an initial marking that is above the bound, or above 1 where that is 0; a weight
///  of
///    0; arcs between the same nodes that weigh more than that together;
///  - an id that is missing or given twice, an arc that leads to no node or not between a place and
///    a transition, a reference to nothing, to another kind or to itself;
///  - units of which one names no place, two share a place, none has some place, or one has two
///    places marked.
[[nodiscard]] PetriNet readPnml(const std::string& file, uint bound);

} // namespace tervoxal
