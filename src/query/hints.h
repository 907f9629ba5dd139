// What may have been meant by a word of an expression that is no name, as the end of a message.

#pragma once

#include "query/expression.h"

#include <string>
#include <string_view>

namespace tervoxal {

/// A word as it stands in an expression.
struct MistakenWord {
    std::string_view text;
    std::string_view source; // the expression from the word on
    bool quoted;
};

/// How an operator of another language is written: `; "and" is written &`. Empty for other words.
[[nodiscard]] std::string operatorHint(const MistakenWord& word);
/// Of a word without quotes that begins a known name: `; the name "goes up" needs double quotes`.
/// The longest such name is told. Else a name with blanks that is spelt almost like the words that
/// stand there in a row, if there is one. Linear in the names, like the hints below.
[[nodiscard]] std::string quotesHint(const MistakenWord& word, const Vocabulary::Named& names);
/// Of an action, an automaton or a location in place of a proposition how to ask for it: `, a
/// location is: at(lift, "goes up")`, else empty.
[[nodiscard]] std::string atomHint(const MistakenWord& word, const Vocabulary& vocabulary);
/// The same of a location in place of an automaton.
[[nodiscard]] std::string locationHint(const MistakenWord& word, const Vocabulary& vocabulary);
/// The names that are spelt almost like the word: `; the nearest: "red", "tree"`, else empty. With
/// words of the grammar among them where a proposition is due.
[[nodiscard]] std::string nearestHint(const MistakenWord& word, const Vocabulary::Named& names,
                                      bool proposition);

} // namespace tervoxal
