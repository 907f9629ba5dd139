// Texts in double quotes: \" and \\ stand for " and \, and a backslash before anything else
// stands for itself. Words of a shell.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tervoxal {

/// Where the quote stands that ends the text from begin on, npos if there is none.
[[nodiscard]] std::size_t closingQuote(std::string_view text, std::size_t begin);
/// What stands between the quotes, as it is meant.
[[nodiscard]] std::string unescaped(std::string_view text);
/// The text between two quotes, as unescaped takes it.
[[nodiscard]] std::string quoted(std::string_view text);

/// The text as one word of a shell, in single quotes where it needs them.
[[nodiscard]] std::string shellWord(std::string_view text);

} // namespace tervoxal
