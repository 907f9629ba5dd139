// A path that shows that a formula holds, from where it holds in the graph of all states.
//
// The path is searched breadth first over pairs of a node of the formula, which is to be shown, and
// a node of the graph. A loop is added where EG is to be shown. Without fairness each loop that can
// make the path shorter is tried, as far as that pays; with fairness the loop goes to what is
// missing one by one, and is some loop.

#pragma once

#include "fixpoint/fixpoint.h"
#include "query/temporalformula.h"
#include "replay/path.h"

#include <optional>

namespace tervoxal {

struct Witness {
    Path path;
    bool least; // there is no shorter one
};

/// Shows the formula of the fixpoints at the initial node, or where it holds first; nothing if it
/// holds nowhere there. `any`: the first path will do. Takes time and memory for the graph times
/// the formula, and for loops a bounded time.
[[nodiscard]] std::optional<Witness>
witness(const Fixpoints& fixpoints, const TemporalFormula& formula, bool initially, bool any);

} // namespace tervoxal
