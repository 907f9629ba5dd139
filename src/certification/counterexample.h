// What shows that a claim of a certificate does not hold: the states that a solver found, looked at
// in the tables of the network and without formulas.

#pragma once

#include "certification/claims.h"
#include "replay/transitions.h"

#include <span>
#include <string>
#include <vector>

namespace tervoxal {

struct Counterexample {
    std::string what;          // "a step leads into set 3 of line 7"
    std::vector<State> states; // the one, or the two of a step
    std::vector<Change> changes;
    std::vector<uint> actions;  // that lead from one to the other, ascending
    std::vector<uint> automata; // that the failure looks at or that move, ascending
};

/// The counterexample that a model is: literals by ascending variable, each once, of which those up
/// to maxVar are bits of states. If it is none, what is empty.
[[nodiscard]] Counterexample counterexample(const Certified& certified,
                                            const Transitions& transitions, Claim claim, int maxVar,
                                            std::span<const int> literals);

} // namespace tervoxal
