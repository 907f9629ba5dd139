// The grammar of expressions as the help of the commands tells it.

#pragma once

#include <string>

namespace tervoxal {

/// Who takes an expression: with what formula files can say alone, with all that can be asked of a
/// state, or with what can be asked of paths as well.
enum class Grammar { ofFormulas, whole, ofPaths };

/// A line for each form, then the precedence, ending in a newline.
[[nodiscard]] std::string grammarHelp(Grammar grammar);

} // namespace tervoxal
