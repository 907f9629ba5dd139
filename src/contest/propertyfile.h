// Questions about a Petri net in the XML of property files, as the Model Checking Contest has them,
// asked of the network that the net was imported as (netids.h). Elements are known by their names
// without prefix:
//
//     property-set / property*
//     id, formula                             of a property; all others are skipped
//     exists-path, all-paths                  with finally, globally, next, or until / before,
//     reach conjunction, disjunction, negation is-fireable / transition*               some of the
//     transitions is possible deadlock integer-le / a, b                       a <= b, with
//     integer-constant, tokens-count / place*     a number, and the tokens of all the places
//     together

#pragma once

#include "query/question.h"

#include <string>
#include <vector>

namespace tervoxal {

/// The questions of a file about a network that is read. A formula is meant in the initial state:
/// whether some reachable state meets a condition, and whether all do, are questions about a state,
/// and what else it is becomes one about paths. Where an element is none of those above, or a sum
/// of tokens is not asked, the question tells so (unasked). Ends the process with status 1 and one
/// line on standard error, with the line of the file, where it is not well-formed or refused as
/// XmlFile refuses it, where it holds no property or two with one id, an operand is missing or too
/// many, a number is none, or an id is that of no place or transition.
[[nodiscard]] std::vector<Question> readProperties(const NetTimedModel& model, const Names& names,
                                                   const std::string& network,
                                                   const std::string& file);

} // namespace tervoxal
