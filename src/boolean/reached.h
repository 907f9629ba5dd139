// The nodes of the store that formulas reach over their operands.

#pragma once

#include "boolean/boolform.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace tervoxal {

/// One bit for each node from the first of the store to the last that the formulas reach. Calls use
/// with the triple of each node reached, later nodes first. Linear in the number of bits.
template <class Use>
[[nodiscard]] std::vector<bool> reachedNodes(const std::vector<BoolForm>& formulas, Use&& use) {
    constexpr int none = BoolForm::maxVariable;
    std::vector<bool> reached;
    const auto reach = [&](int formula) {
        const int n = std::abs(formula);
        if (BoolForm::isNode(n)) reached[static_cast<std::size_t>(n - none - 1)] = true;
    };
    int last = none;
    for (const BoolForm& f : formulas) {
        if (f.nr != BoolForm::trueNr) last = std::max(last, std::abs(f.nr));
    }
    reached.resize(static_cast<std::size_t>(last - none));
    for (const BoolForm& f : formulas) {
        if (f.nr != BoolForm::trueNr) reach(f.nr);
    }
    // An operand has a smaller number than its node, so one walk from the top down reaches all.
    for (std::size_t i = reached.size(); i-- > 0;) {
        if (!reached[i]) continue;
        const Triple& t = BoolForm::tv[i];
        reach(t.left);
        reach(t.right);
        use(t);
    }
    return reached;
}

} // namespace tervoxal
