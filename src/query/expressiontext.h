// Formulas as expressions that mean the same (see expression.h), for those who show parts of one.

#pragma once

#include "model/names.h"
#include "query/expression.h"
#include "query/temporalformula.h"

#include <cstddef>
#include <string>

namespace tervoxal {

class ExpressionText {
public:
    /// The names must outlive it.
    ExpressionText(const NetTimedModel& model, const Names& names);

    /// The expression for a node of a formula. Things stand under their names, or under their
    /// numbers where a name is missing or another one's as well.
    [[nodiscard]] std::string of(const TemporalFormula& formula, std::size_t node) const;
    /// The same of a condition, in time linear in the text.
    [[nodiscard]] std::string of(const Condition& condition) const;

private:
    struct Operand;

    [[nodiscard]] Operand operand(const Condition& condition) const;
    [[nodiscard]] std::string atom(const Condition::Token& token) const;
    /// A sum reaches its bound, or stays below it.
    [[nodiscard]] std::string sum(const Condition::Token& token, bool reaches) const;

    const Vocabulary vocabulary;
    const Names& names;
};

} // namespace tervoxal
