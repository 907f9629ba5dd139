// Formula lines that were meant to be expressions.

#pragma once

#include "temporal/ectlform.h"

#include <string>

namespace tervoxal {

/// Whether a text that is no formula, for that reason, looks like an expression of expression.h,
/// with operators between their operands, brackets or double quotes.
[[nodiscard]] bool looksLikeExpression(const std::string& text, const FormulaFault& fault);

} // namespace tervoxal
