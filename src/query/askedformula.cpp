#include "query/askedformula.h"

#include "query/formulacheck.h"
#include "system/filenames.h"
#include "text/fatal.h"
#include "text/readable.h"

#include <iostream>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

namespace tervoxal {

namespace {

void refuseTemporal(const EctlForm& form) {
    if (form.temporalLength() == 0) return;
    const bool outermost = form.op == OpEF && form.temporalLength() == 1;
    error("formula: a temporal operator, and none is translated: what is asked is whether a state "
          "can be reached in which the formula holds" +
          (outermost ? ", so ask " + excerpt(form.left) : ""));
}

/// Without the newline at its end.
std::string told(const Diagnostics& findings, const std::string& file) {
    std::ostringstream lines;
    findings.show(lines, file);
    return lines.str().substr(0, lines.str().size() - 1);
}

} // namespace

Condition readAskedFormula(const NetTimedModel& model, const std::string& name) {
    std::set<uint> carried;
    for (const auto& [location, prop] : model.valuation) carried.insert(prop);
    const std::string file = name + inputSuffix;
    Diagnostics findings;
    const auto form = checkFormula(file, &carried, findings);
    if (form) refuseTemporal(*form);
    if (!form) error(told(findings, file));
    findings.show(std::cerr, file);
    return conditionOf(*form);
}

EctlForm runFormula(const std::string& file, std::string text) {
    Diagnostics findings;
    std::optional<EctlForm> form = checkFormulaText(std::move(text), nullptr, findings);
    if (!form) error(told(findings, file));
    return *std::move(form);
}

} // namespace tervoxal
