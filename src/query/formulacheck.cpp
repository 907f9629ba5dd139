#include "query/formulacheck.h"

#include "query/infix.h"
#include "system/filetext.h"
#include "text/carriagereturns.h"
#include "text/lines.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <utility>

namespace tervoxal {

namespace {

/// Operators that are dropped or make the formula false. None stands at or after the column.
void checkOperators(const std::string& text, std::size_t column, long line,
                    TemporalOperators operators, Diagnostics& findings) {
    bool dropped = false;
    bool temporal = operators == TemporalOperators::answered;
    for (std::size_t at = text.find('E'); at < column - 1; at = text.find('E', at + 1)) {
        const std::string op = text.substr(at, 2);
        bool& told = beginsTemporal(op) ? temporal : dropped;
        if (told) continue;
        told = true;
        const std::string place = "column " + std::to_string(at + 1) + ": ";
        if (!beginsTemporal(op)) {
            findings.warn(line, place + "an \"E\" that begins no operator is dropped");
        } else {
            findings.warn(line, place + op + " is not translated, the formula is false as a whole");
        }
    }
}

std::set<uint> propsOf(const EctlForm& form) {
    std::set<uint> props;
    for (const OnpNode& token : form.onp) {
        if (token.op != OpVar && token.op != OpNegVar) continue;
        props.insert(static_cast<uint>(token.varNr));
    }
    return props;
}

} // namespace

std::vector<std::string> uncarried(const std::set<uint>& asked, const std::set<uint>& carried) {
    std::vector<std::string> warnings;
    for (const uint prop : asked) {
        if (carried.contains(prop)) continue;
        warnings.push_back("no location carries proposition " + std::to_string(prop) +
                           ", it is false in every state");
    }
    return warnings;
}

std::optional<EctlForm> checkFormula(const std::string& file, const std::set<uint>* carried,
                                     TemporalOperators operators, Diagnostics& findings) {
    return checkFormulaText(fileText(file), carried, operators, findings);
}

std::optional<EctlForm> checkFormulaText(std::string text, const std::set<uint>* carried,
                                         TemporalOperators operators, Diagnostics& findings) {
    checkCarriageReturns(text, findings);
    std::istringstream in(std::move(text));
    Lines lines(in);
    if (!lines.next()) {
        findings.error(std::max(lines.number, 1L), "formula: end of file before the formula");
        return {};
    }
    std::optional<FormulaFault> fault;
    EctlForm form(lines.text, fault);
    const long line = lines.number;
    if (fault) {
        findings.error(line, "formula, column " + std::to_string(fault->column) + ": " +
                                 fault->text +
                                 (looksLikeExpression(lines.text, *fault)
                                      ? ", looks like an expression: tervoxal-formula"
                                      : ""));
    } else if (const std::string why = valueFault(form.onp); !why.empty()) {
        findings.error(line, why);
    }
    checkOperators(lines.text, fault ? fault->column : lines.text.size() + 1, line, operators,
                   findings);
    if (carried != nullptr) {
        for (const std::string& warning : uncarried(propsOf(form), *carried)) {
            findings.warn(line, warning);
        }
    }
    if (lines.next()) {
        findings.warn(lines.number,
                      "only the first line counts, the formula is line " + std::to_string(line));
    }
    if (findings.refused()) return {};
    return form;
}

} // namespace tervoxal
