#include "query/askedformula.h"

#include "query/formulacheck.h"
#include "system/filenames.h"
#include "text/fatal.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

namespace tervoxal {

namespace {

/// Without the newline at its end.
std::string told(const Diagnostics& findings, const std::string& file) {
    std::ostringstream lines;
    findings.show(lines, file);
    return lines.str().substr(0, lines.str().size() - 1);
}

} // namespace

Question readAskedFormula(const NetTimedModel& model, const std::string& name) {
    std::set<uint> carried;
    for (const auto& [location, prop] : model.valuation) carried.insert(prop);
    const std::string file = name + inputSuffix;
    Diagnostics findings;
    const auto form = checkFormula(file, &carried, TemporalOperators::answered, findings);
    if (!form) error(told(findings, file));
    findings.show(std::cerr, file);
    const bool temporal = std::ranges::any_of(
        form->onp, [](const OnpNode& token) { return token.op > OpDis && token.op != OpNone; });
    if (!temporal) return {name, name, conditionOf(*form)};
    return {name, name, {{{Condition::Term::falsity}}}, temporalFormula(temporalTokens(*form))};
}

EctlForm runFormula(const std::string& file, std::string text) {
    Diagnostics findings;
    std::optional<EctlForm> form =
        checkFormulaText(std::move(text), nullptr, TemporalOperators::falsify, findings);
    if (!form) error(told(findings, file));
    return *std::move(form);
}

} // namespace tervoxal
