// What a command is asked about the states of a network.

#pragma once

#include "model/names.h"
#include "query/condition.h"
#include "system/command.h"

#include <string>
#include <vector>

namespace tervoxal {

struct Question {
    std::string name; // not empty; in a list, that of no other question
    std::string text; // the expression, or the name of the formula file
    Condition condition;
};

/// The question that an expression asks; the expression is its name. What can hardly be meant is
/// told on standard error, and a proposition that no location carries as checkFormula tells it.
/// Ends the process like expressionOf.
[[nodiscard]] Question expressionQuestion(const NetTimedModel& model, const Names& names,
                                          const std::string& text);

/// The one question of a call that has an option --ask: its expression, or else the formula file
/// that the second operand names, as readAskedFormula reads it.
[[nodiscard]] Question askedQuestion(const NetTimedModel& model, const Names& names,
                                     const CommandLine& line);

/// The questions of a file: `NAME: EXPRESSION` in each significant line that is not blank. What can
/// hardly be meant is told likewise, with the line. Ends the process with status 1 and one line on
/// standard error, where the file cannot be read or holds no question, at a line that is none, at
/// the second question of a name, and like expressionOf.
[[nodiscard]] std::vector<Question> readQuestions(const NetTimedModel& model, const Names& names,
                                                  const std::string& file);

/// For each action whether it is ever possible. The question is called "7" after action 7, or "7
/// enter" if that has a name.
[[nodiscard]] std::vector<Question> actionQuestions(const NetTimedModel& model, const Names& names);

} // namespace tervoxal
