// A linear program without an objective: whether some values meet all rows, within bounds of the
// values that change from one question to the next. This is the one class that knows the library
// which does the work. Where the system is built without it, no program has an answer.
//
// Rows and columns are numbered from 0. All is in floating point: who needs certainty checks what
// comes of it.

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tervoxal {

class LinearProgram {
public:
    struct Range {
        double least;
        double greatest;
    };
    struct Entry {
        int row;
        double factor;
    };
    enum class Verdict { feasible, infeasible, unknown };

    /// Whether there is a library that does the work.
    static const bool available;

    /// For each row the sum of its entries, each times the value of its column, is in the range.
    explicit LinearProgram(std::vector<Range> rows);
    LinearProgram(const LinearProgram&) = delete;
    LinearProgram& operator=(const LinearProgram&) = delete;
    ~LinearProgram();

    /// Columns are numbered in the order in which they come; all are there before the first
    /// question. An entry for each row at most.
    void column(Range range, const std::vector<Entry>& entries);
    void bound(int column, Range range);

    /// Goes on from the last basis. Unknown where it was stopped or gives up, at the latest after
    /// that many iterations.
    [[nodiscard]] Verdict solve(int iterations, const std::function<bool()>& stop);
    /// A factor for each row, so that no values within bounds give the sum of the rows that their
    /// ranges ask for (Farkas); nothing where the library has none. Precondition: the last question
    /// was infeasible.
    [[nodiscard]] std::optional<std::vector<double>> ray() const;

    /// The iterations of all questions so far.
    [[nodiscard]] std::int64_t iterations() const { return spent; }

private:
    class Library;
    std::unique_ptr<Library> library;
    std::int64_t spent = 0;
};

} // namespace tervoxal
