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

    /// The question, with its warnings.
    [[nodiscard]] Expression ask(const std::string& text, const std::string& where) const {
        Expression expression = expressionOf(text, vocabulary, where);
        std::set<uint> asked;
        const auto collect = [&](const Condition& condition) {
            for (const Condition::Token& token : condition.tokens) {
                forEachAtom(token, [&](const Condition::Token& atom) {
                    if (atom.term == Condition::Term::prop) asked.insert(atom.number);
                });
            }
        };
        collect(expression.condition);
        if (expression.temporal) {
            for (const auto& node : expression.temporal->nodes) collect(node.condition);
        }
        for (std::string& warning : uncarried(asked, carried)) {
            expression.warnings.push_back(std::move(warning));
        }
        return expression;
    }

    /// The same of what holds again and again, which has no temporal operator.
    [[nodiscard]] Expression askFair(const std::string& text, const std::string& where) const {
        Expression expression = ask(text, where);
        if (!expression.temporal) return expression;
        const TemporalFormula::Node& root = expression.temporal->nodes.back();
        if (root.term != TemporalFormula::Term::condition) {
            error(where + "column " + std::to_string(root.column) +
                  ": fairness has no temporal operator: write the condition that holds again and "
                  "again");
        }
        expression.condition = root.condition;
        return expression;
    }

private:
    Vocabulary vocabulary;
    std::set<uint> carried;
};

void show(const std::vector<std::string>& warnings, const std::string& where) {
    for (const std::string& warning : warnings) {
        std::cerr << where << "warning: " << warning << '\n';
    }
}

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
        Expression expression = asker.ask(text, where);
        show(expression.warnings, where);
        questions.push_back(
            {text, text, std::move(expression.condition), std::move(expression.temporal)});
    }
    return questions;
}

Fairness askedFairness(const NetTimedModel& model, const Names& names, const CommandLine& line) {
    Fairness fairness{{}, line.has("weakly-fair")};
    if (!line.has("fair")) return fairness;
    const Asker asker(model, names);
    for (const std::string& text : line.all("fair")) {
        Expression expression = asker.askFair(text, "");
        show(expression.warnings, "");
        fairness.conditions.push_back(std::move(expression.condition));
    }
    return fairness;
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
    return readAskedFormula(model, inputName(line.operands[1]));
}

Question askedStateQuestion(const NetTimedModel& model, const Names& names,
                            const CommandLine& line) {
    Question question = askedQuestion(model, names, line);
    if (question.temporal) {
        error("what is asked here is whether a state can be reached, without temporal operators, "
              "after(...) and initial: tervoxal-solve answers " +
              excerpt(question.text));
    }
    return question;
}

std::vector<Question> readQuestions(const NetTimedModel& model, const Names& names,
                                    const std::string& file) {
    const Asker asker(model, names);
    const bool standard = file == "-";
    const std::string shown = standard ? "standard input" : file;
    std::ifstream opened;
    if (!standard) opened = openInput(file);
    std::vector<Question> questions;
    Fairness fairness;                 // of those to come
    std::map<std::string, long> known; // the lines of the names
    Diagnostics findings;
    for (Lines lines(standard ? std::cin : opened, shown); lines.next();) {
        if (trimmed(lines.text).empty()) continue;
        const std::string where = shown + ':' + std::to_string(lines.number) + ": error: ";
        const std::size_t colon = lines.text.find(':');
        std::string name(trimmed(std::string_view(lines.text).substr(0, colon)));
        if (colon == std::string::npos || name.empty()) error(where + "NAME: EXPRESSION expected");
        // Blanks in place of the name keep the columns.
        const std::string text = lines.text.substr(colon + 1);
        const std::string expression = std::string(colon + 1, ' ') + text;
        if (name == "fair") {
            Expression asked = asker.askFair(expression, where);
            for (const std::string& warning : asked.warnings) findings.warn(lines.number, warning);
            fairness.conditions.push_back(std::move(asked.condition));
            continue;
        }
        const auto [first, isNew] = known.try_emplace(name, lines.number);
        if (!isNew) {
            error(where + inQuotes(name) + " is the question of line " +
                  std::to_string(first->second) + " as well");
        }
        Expression asked = asker.ask(expression, where);
        for (const std::string& warning : asked.warnings) findings.warn(lines.number, warning);
        questions.push_back({std::move(name), std::string(trimmed(text)),
                             std::move(asked.condition), std::move(asked.temporal), fairness});
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
