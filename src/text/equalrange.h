// Binary search for all elements with a key.

#pragma once

#include <algorithm>
#include <functional>
#include <span>

namespace tervoxal {

/// Those of the elements whose projection is the key; they are sorted by it. What
/// std::ranges::equal_range gives does not compile with clang++ 14.
template <class Element, class Key, class Projection = std::identity>
[[nodiscard]] std::span<Element> equalRange(std::span<Element> sorted, const Key& key,
                                            Projection projection = {}) {
    const auto first = std::ranges::lower_bound(sorted, key, {}, projection);
    return {first, std::ranges::upper_bound(first, sorted.end(), key, {}, projection)};
}

} // namespace tervoxal
