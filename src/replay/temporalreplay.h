// Whether a path shows that a formula about paths holds, in plain code.
//
// The formula is evaluated along the path: each temporal operator of one path speaks of this path,
// from a position on. Where the formula needs several paths, one operand is followed along the
// path, and what others say is looked up in a search of all states.

#pragma once

#include "model/names.h"
#include "query/temporalformula.h"
#include "replay/allstates.h"
#include "replay/path.h"
#include "replay/transitions.h"

#include <cstddef>
#include <set>
#include <vector>

namespace tervoxal {

/// A part of the formula that is met.
struct MetPart {
    int position;
    std::size_t node; // of the formula
};

/// The automata that a formula speaks of: those that carry its propositions, that it places and
/// that have its actions.
[[nodiscard]] std::set<uint> namedAutomata(const NetTimedModel& model,
                                           const TemporalFormula& formula);

/// The parts that are met, by ascending position. A path that is no run of the network, whose end
/// or loop is none, whose loop is not fair, or on which the formula does not hold at position 0, if
/// `initially`, or anywhere, ends the process with status 1 and one line on standard error. `all`
/// may be null if one path shows the formula.
[[nodiscard]] std::vector<MetPart> replay(const Transitions& transitions, const Path& path,
                                          const Names& names, const TemporalFormula& formula,
                                          const Fairness& fairness, bool initially,
                                          const AllStates* all);

} // namespace tervoxal
