// Lines that were meant to hold a keyword of the network file.

#pragma once

#include <string>
#include <string_view>

namespace tervoxal {

/// A line whose first word is a keyword, or a slip of one.
struct KeywordLine {
    /// Empty if the line begins with no such word.
    std::string_view keyword;
    /// What is wrong with the word; empty if it is the keyword in the first column.
    std::string slip;
    /// What stands after the word, with the blanks around it.
    std::string_view after;
};

/// Looks for a keyword that is indented, in capitals, misspelt or cut. `end` has to stand alone to
/// be recognised as misspelt. The line must outlive the result.
[[nodiscard]] KeywordLine keywordLine(std::string_view line);

} // namespace tervoxal
