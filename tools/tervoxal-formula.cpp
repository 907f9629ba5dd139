// The command tervoxal-formula: an expression with names as a formula line.

#include "model/names.h"
#include "query/expression.h"
#include "query/grammar.h"
#include "query/sum.h"
#include "query/vocabulary.h"
#include "system/command.h"
#include "system/filenames.h"
#include "system/filetext.h"
#include "text/fatal.h"
#include "text/lines.h"

#include <cstddef>
#include <iostream>
#include <optional>
#include <string>

using namespace tervoxal;

namespace {

/// What a formula may hold in place of sums; a line of that is read in 0.1 s.
constexpr std::size_t mostTokens = 1000000;

} // namespace

int main(int argc, char* argv[]) {
    std::ios::sync_with_stdio(false); // synchronised, std::cin takes a read error for the end
    const Command command{
        "tervoxal-formula",
        "NetworkFile EXPRESSION",
        "Prints the line of a formula file that means the same as EXPRESSION in the network\n"
        "NetworkFile.in. With - for EXPRESSION it is read from standard input.\n"
        "\n" +
            grammarHelp(Grammar::ofFormulas),
        {},
        2,
        2};
    const CommandLine line(command, argc, argv);
    std::string expression = line.operands[1];
    if (expression == "-") {
        expression = wholeText(std::cin);
        refuseUnread(std::cin, "standard input");
    }

    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, inputName(line.operands[0]));
    const Expression asked = expressionOf(expression, vocabularyOf(model, names));
    for (const std::string& warning : asked.warnings) {
        std::cerr << "warning: " << warning << '\n';
    }
    if (!asked.beyondFormula.empty()) error(asked.beyondFormula + ", tervoxal-solve --ask has");
    const std::optional<Condition> plain = writtenOut(asked.condition, mostTokens);
    if (!plain) {
        error("without count(...), which formula files do not have, this takes more than " +
              std::to_string(mostTokens) +
              " propositions and operators; tervoxal-solve --ask counts");
    }
    std::cout << postfixOf(*plain) << '\n';
    return finished(0);
}
