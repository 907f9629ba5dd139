// Numbers with their names in a row, for a message.

#pragma once

#include "text/readable.h"
#include "text/uint.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace tervoxal {

/// `3`, or `3 "idle"` with a name that is not empty.
[[nodiscard]] inline std::string numbered(uint number, const std::string& name) {
    return std::to_string(number) + (name.empty() ? "" : ' ' + inQuotes(name));
}

/// `location 3`, `locations 3, 4 "idle" and 5`, `locations 3, 4, 5, 6, 7 and 20 others`, from the
/// words for one and for many. nameOf gives the name of a number, empty where it has none.
template <class NameOf>
[[nodiscard]] std::string listed(const std::string& one, const std::string& many,
                                 const std::vector<uint>& numbers, const NameOf& nameOf) {
    constexpr std::size_t most = 5;
    const std::size_t told = std::min(most, numbers.size());
    std::string text = numbers.size() == 1 ? one : many;
    for (std::size_t i = 0; i < told; ++i) {
        const bool last = i + 1 == numbers.size();
        text += (i == 0 ? " " : last ? " and " : ", ") + numbered(numbers[i], nameOf(numbers[i]));
    }
    if (told < numbers.size()) {
        text += " and " + std::to_string(numbers.size() - told) + " others";
    }
    return text;
}

} // namespace tervoxal
