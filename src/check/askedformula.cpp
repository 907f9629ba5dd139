#include "askedformula.h"

#include "fatal.h"
#include "filenames.h"
#include "formulacheck.h"
#include "readable.h"

#include <iostream>
#include <sstream>

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
    CheckedNetwork network{true, {}};
    for (const auto& [location, prop] : model.valuation) network.props.insert(prop);
    const std::string file = name + inputSuffix;
    Findings findings;
    const auto form = checkFormula(file, network, findings);
    if (form) refuseTemporal(*form);
    std::ostringstream told;
    findings.show(told, file);
    std::string lines = told.str();
    if (!form) error(lines.substr(0, lines.size() - 1));
    std::cerr << lines;
    return conditionOf(*form);
}
