#include "text/carriagereturns.h"

#include <algorithm>
#include <cstddef>

namespace tervoxal {

void checkCarriageReturns(const std::string& text, Diagnostics& findings) {
    long line = 1;
    long first = 0;
    long count = 0;
    std::size_t from = 0;
    for (std::size_t at = text.find('\r'); at != std::string::npos; at = text.find('\r', from)) {
        const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
        line += std::count(begin, text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
        if (++count == 1) first = line;
        from = std::min(text.find('\n', at), text.size());
    }
    if (count == 0) return;
    const std::string lines =
        count == 1 ? "this line holds a carriage return"
                   : std::to_string(count) + " lines hold carriage returns, this one first";
    findings.warn(first, lines + ": a line ends at a newline alone");
}

} // namespace tervoxal
