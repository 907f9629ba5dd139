// What a command is asked about the states of a network, and about its paths.

#pragma once

#include "model/names.h"
#include "query/condition.h"
#include "query/temporalformula.h"
#include "system/command.h"

#include <optional>
#include <string>
#include <vector>

namespace tervoxal {

struct Question {
    std::string name;                          // not empty; in a list, that of no other question
    std::string text;                          // the expression, or the name of the formula file
    Condition condition;                       // what is asked of a state; false if it is temporal
    std::optional<TemporalFormula> temporal{}; // what is asked otherwise
    Fairness fairness{};                       // of the paths that a temporal one speaks of
    bool claim = false;    // the condition is what a claim about all reachable states excludes
    std::string unasked{}; // why it cannot be asked, and the condition is false
};

/// The question that an expression asks; the expression is its name. What can hardly be meant is
/// told on standard error, and a proposition that no location carries as checkFormula tells it.
/// Ends the process like expressionOf.
[[nodiscard]] Question expressionQuestion(const NetTimedModel& model, const Names& names,
                                          const std::string& text);
/// Likewise the questions of several expressions. Where there is more than one, what is told of one
/// begins with it. Ends the process with status 1 and one line on standard error where one is asked
/// twice.
[[nodiscard]] std::vector<Question> expressionQuestions(const NetTimedModel& model,
                                                        const Names& names,
                                                        const std::vector<std::string>& texts);

/// The fairness that the options --fair and --weakly-fair of a call ask for. Ends the process like
/// expressionOf, and where an expression has a temporal operator.
[[nodiscard]] Fairness askedFairness(const NetTimedModel& model, const Names& names,
                                     const CommandLine& line);

/// Ends the process like a bad call unless it asks one question about the network that its first
/// operand names: with --ask, or else with a formula file as its second operand.
void expectOneQuestion(const CommandLine& line);
/// The question of such a call: the expression, or the formula as readAskedFormula reads it.
[[nodiscard]] Question askedQuestion(const NetTimedModel& model, const Names& names,
                                     const CommandLine& line);
/// The same for those who answer no more than whether a state can be reached: a temporal question
/// ends the process with status 1 and one line on standard error.
[[nodiscard]] Question askedStateQuestion(const NetTimedModel& model, const Names& names,
                                          const CommandLine& line);

/// The questions of a file, or of standard input for "-": `NAME: EXPRESSION` in each significant
/// line that is not blank. A line `fair: EXPRESSION` is none: it adds to the fairness of all that
/// follow. What can hardly be meant is told likewise, with the line. Ends the process with status 1
/// and one line on standard error, where the file cannot be read or holds no question, at a line
/// that is none, at the second question of a name, and like expressionOf.
[[nodiscard]] std::vector<Question> readQuestions(const NetTimedModel& model, const Names& names,
                                                  const std::string& file);

/// For each action whether it is ever possible. The question is called "7" after action 7, or "7
/// enter" if that has a name.
[[nodiscard]] std::vector<Question> actionQuestions(const NetTimedModel& model, const Names& names);

} // namespace tervoxal
