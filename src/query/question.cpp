#include "query/question.h"

#include "query/askedformula.h"
#include "query/formulacheck.h"
#include "query/vocabulary.h"
#include "system/filenames.h"
#include "text/diagnostics.h"
#include "text/fatal.h"
#include "text/lines.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <utility>

namespace tervoxal {

namespace {

/// Asks expressions about one network.
class Asker {
public:
    Asker(const NetTimedModel& model, const Names& names) : vocabulary(vocabularyOf(model, names)) {
        for (const auto& [location, prop] : model.valuation) carried.insert(prop);
    }

    /// The question, and its warnings.
    [[nodiscard]] std::pair<Condition, std::vector<std::string>>
    ask(const std::string& text, const std::string& where) const {
        Expression expression = expressionOf(text, vocabulary, where);
        std::set<uint> asked;
        for (const Condition::Token& token : expression.condition.tokens) {
            if (token.term == Condition::Term::prop) asked.insert(token.number);
        }
        for (std::string& warning : uncarried(asked, carried)) {
            expression.warnings.push_back(std::move(warning));
        }
        return {std::move(expression.condition), std::move(expression.warnings)};
    }

private:
    Vocabulary vocabulary;
    std::set<uint> carried;
};

} // namespace

Question expressionQuestion(const NetTimedModel& model, const Names& names,
                            const std::string& text) {
    return expressionQuestions(model, names, {text}).front();
}

std::vector<Question> expressionQuestions(const NetTimedModel& model, const Names& names,
                                          const std::vector<std::string>& texts) {
    const Asker asker(model, names);
    std::vector<Question> questions;
    std::set<std::string> asked;
    for (const std::string& text : texts) {
        const std::string where = texts.size() > 1 ? inQuotes(text) + ": " : "";
        if (!asked.insert(text).second) error(where + "asked twice");
        auto [condition, warnings] = asker.ask(text, where);
        for (const std::string& warning : warnings)
            std::cerr << where << "warning: " << warning << '\n';
        questions.push_back({text, text, std::move(condition)});
    }
    return questions;
}

void expectOneQuestion(const CommandLine& line) {
    if (line.all("ask").size() > 1) line.misused("one --ask at a time");
    if (!line.has("ask") && line.operands.size() == 1) {
        line.misused("the question is missing: FormulaFile or --ask");
    }
    line.expect(line.has("ask") ? 1 : 2);
}

Question askedQuestion(const NetTimedModel& model, const Names& names, const CommandLine& line) {
    if (line.has("ask")) return expressionQuestion(model, names, line.value("ask", ""));
    const std::string formula = inputName(line.operands[1]);
    return {formula, formula, readAskedFormula(model, formula)};
}

std::vector<Question> readQuestions(const NetTimedModel& model, const Names& names,
                                    const std::string& file) {
    const Asker asker(model, names);
    const bool standard = file == "-";
    const std::string shown = standard ? "standard input" : file;
    std::ifstream opened;
    if (!standard) opened = openInput(file);
    std::vector<Question> questions;
    std::map<std::string, long> known; // the lines of the names
    Diagnostics findings;
    for (Lines lines(standard ? std::cin : opened, shown); lines.next();) {
        if (trimmed(lines.text).empty()) continue;
        const std::string where = shown + ':' + std::to_string(lines.number) + ": error: ";
        const std::size_t colon = lines.text.find(':');
        std::string name(trimmed(std::string_view(lines.text).substr(0, colon)));
        if (colon == std::string::npos || name.empty()) error(where + "NAME: EXPRESSION expected");
        const auto [first, isNew] = known.try_emplace(name, lines.number);
        if (!isNew) {
            error(where + inQuotes(name) + " is the question of line " +
                  std::to_string(first->second) + " as well");
        }
        // Blanks in place of the name keep the columns.
        const std::string text = lines.text.substr(colon + 1);
        auto [condition, warnings] = asker.ask(std::string(colon + 1, ' ') + text, where);
        for (const std::string& warning : warnings) findings.warn(lines.number, warning);
        questions.push_back({std::move(name), std::string(trimmed(text)), std::move(condition)});
    }
    if (questions.empty()) error(shown + ": there is no question");
    findings.show(std::cerr, shown);
    return questions;
}

std::vector<Question> actionQuestions(const NetTimedModel& model, const Names& names) {
    std::vector<Question> questions;
    for (const auto& [action, automata] : model.actionAutomata) {
        const std::string number = std::to_string(action);
        const auto name = names.actions.find(action);
        questions.push_back(
            {number + (name == names.actions.end() ? "" : ' ' + readable(name->second)),
             "enabled(" + number + ')',
             {{{Condition::Term::enabled, action}}}});
    }
    return questions;
}

} // namespace tervoxal
