// Sums of weighted formulas as formulas.

#pragma once

#include "boolean/boolform.h"
#include "query/sum.h"

namespace tervoxal {

/// The formulas whose weights make up the sum reach its bound: the numbers are added by pairs, and
/// the pairs likewise, each as wide as what its numbers add up to.
[[nodiscard]] BoolForm reached(const PositiveSum<BoolForm>& sum);

} // namespace tervoxal
