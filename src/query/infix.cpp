#include "query/infix.h"

#include "text/scanner.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tervoxal {

bool looksLikeExpression(const std::string& text, const FormulaFault& fault) {
    const std::string_view line = text;
    if (line.find_first_of("!|()\"") != std::string::npos || line.find("->") != std::string::npos)
        return true;
    const std::size_t at = line.find('&');
    // Before the fault it is an operator of a formula.
    if (at == std::string::npos || at + 1 < fault.column) return false;
    const std::string_view left = trimmed(line.substr(0, at));
    return !left.empty() && std::none_of(left.begin(), left.end(), isBlank) &&
           !trimmed(line.substr(at + 1)).empty();
}

} // namespace tervoxal
