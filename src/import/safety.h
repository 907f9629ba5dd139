// Whether a net without a bound is safe: no unit ever gets a second token. Its network takes only
// the steps that keep it so, and up to the first second token these are the steps of the net. So it
// is asked of the network whether a state can be reached from which the net would do otherwise.

#pragma once

#include "import/petrinet.h"

#include <span>
#include <string>

namespace tervoxal {

/// The expression about the network, with numbers in place of names, that holds where some
/// transition has all its tokens and would put a second one into a unit. Linear in the net.
[[nodiscard]] std::string secondTokenExpression(const PetriNet& net, const NetAutomata& automata);

/// The transitions that lead to a second token, a line each with two blanks before it, and what the
/// last one does: the given ones, and one more. Plays the token game; a transition that lacks a
/// token, and an end where no second token is at hand, end the process with status 1 and one line
/// on standard error.
[[nodiscard]] std::string toSecondToken(const PetriNet& net, std::span<const uint> transitions);

} // namespace tervoxal
