// Values in rows of different lengths, all in one list (compressed sparse rows). Rows are counted
// from 0.

#pragma once

#include "model/ntamodel.h"

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace tervoxal {

template <class Value>
class Rows {
public:
    Rows() = default;
    /// As many rows, of pairs of a row below the count and a value: each row has its values in the
    /// order of the pairs. A counting sort, linear in pairs and rows.
    Rows(std::size_t count, const std::vector<std::pair<uint, Value>>& entries)
        : begins(count + 1), values(entries.size()) {
        for (const auto& [row, value] : entries) ++begins[row + 1];
        for (std::size_t row = 1; row < begins.size(); ++row) begins[row] += begins[row - 1];
        std::vector<uint> next(begins.begin(), begins.end() - 1);
        for (const auto& [row, value] : entries) values[next[row]++] = value;
    }

    [[nodiscard]] std::span<const Value> operator[](std::size_t row) const {
        return std::span(values).subspan(begins[row], begins[row + 1] - begins[row]);
    }
    [[nodiscard]] std::span<Value> operator[](std::size_t row) {
        return std::span(values).subspan(begins[row], begins[row + 1] - begins[row]);
    }

private:
    std::vector<uint> begins; // of each row, and the end of the last one
    std::vector<Value> values;
};

} // namespace tervoxal
