// Formula lines that were meant to be expressions.

#pragma once

#include "ectlform.h"

#include <string>

/// Whether a text that is no formula, for that reason, looks like an expression of expression.h,
/// with operators between their operands, brackets or double quotes.
[[nodiscard]] bool looksLikeExpression(const std::string& text, const FormulaFault& fault);
