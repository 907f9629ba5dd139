// What a search has found out about a question, in words.

#pragma once

#include "search.h"

#include <string>

struct Outcome {
    enum class Kind { path, never, none, open };

    Kind kind;
    std::string detail; // what follows the word for the kind

    /// For a table: "path of 4 steps", "never: ...", "none of 0 to 20 steps".
    [[nodiscard]] std::string brief() const;
    /// Alone: "a path of 4 steps", "never, at any length: ...", "no path of 0 to 20 steps".
    [[nodiscard]] std::string full() const;
};

/// The outcome of one of the search's findings, final where that is settled.
[[nodiscard]] Outcome outcomeOf(const Search& search, const Finding& finding,
                                const Search::Range& range);

/// " of 0 to 17 steps".
[[nodiscard]] std::string ofLengths(int from, int to);
