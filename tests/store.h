// The store as a text.

#pragma once

#include "boolean/boolform.h"

#include <cstdlib>
#include <string>

namespace tervoxal {

/// The nodes in the order of their creation, each as its kind and operands, then the formula. #1
/// stands for the first node, T and F for the constants.
inline std::string storeText(const BoolForm& f) {
    const auto text = [](int nr) {
        if (nr == 0 || nr == BoolForm::trueNr) return std::string(nr == 0 ? "F" : "T");
        const int n = std::abs(nr);
        return (nr < 0 ? "-" : "") +
               (n > 1000000 ? '#' + std::to_string(n - 1000000) : std::to_string(n));
    };
    std::string nodes;
    for (const Triple& t : BoolForm::tv)
        nodes += (t.op == bfCon ? '&' : '=') + text(t.left) + ',' + text(t.right) + ' ';
    return nodes + text(f.nr);
}

} // namespace tervoxal
