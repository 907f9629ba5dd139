#include "query/askedformula.h"

#include "query/formulacheck.h"
#include "system/filenames.h"
#include "text/fatal.h"
#include "text/readable.h"

#include <iostream>
#include <set>
#include <sstream>

namespace tervoxal {

namespace {

void refuseTemporal(const EctlForm& form) {
    if (form.temporalLength() == 0) return;
    const bool outermost = form.op == OpEF && form.temporalLength() == 1;
    error("formula: a temporal operator, and none is translated: what is asked is whether a state "
          "can be reached in which the formula holds" +
          (outermost ? ", so ask " + excerpt(form.left) : ""));
}

} // namespace

Condition readAskedFormula(const NetTimedModel& model, const std::string& name) {
    std::set<uint> carried;
    for (const auto& [location, prop] : model.valuation) carried.insert(prop);
    const std::string file = name + inputSuffix;
    Diagnostics findings;
    const auto form = checkFormula(file, &carried, findings);
    if (form) refuseTemporal(*form);
    std::ostringstream told;
    findings.show(told, file);
    std::string lines = told.str();
    if (!form) error(lines.substr(0, lines.size() - 1));
    std::cerr << lines;
    return conditionOf(*form);
}

} // namespace tervoxal
