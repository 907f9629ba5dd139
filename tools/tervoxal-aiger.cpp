// The command tervoxal-aiger: whether a formula can be met at any length, as a circuit for model
// checkers.

#include "boolean/aiger.h"
#include "model/names.h"
#include "query/grammar.h"
#include "query/question.h"
#include "system/command.h"
#include "system/filenames.h"
#include "translation/reachability.h"

#include <iostream>

using namespace tervoxal;

int main(int argc, char* argv[]) {
    const Command command{
        "tervoxal-aiger",
        "NetworkFile [FormulaFile]",
        "Writes the question whether the network NetworkFile.in can reach a state in which the\n"
        "formula of FormulaFile.in holds, in any number of steps, as an AIGER 1.0 circuit to\n"
        "standard output. A model checker answers it for all lengths:\n"
        "\n"
        "  tervoxal-aiger NetworkFile FormulaFile >question.aig\n"
        "  berkeley-abc -c \"read_aiger question.aig; pdr\"\n",
        {{"ask", "EXPRESSION", "the question with names, in place of FormulaFile"},
         {"ascii", "", "write the text form of the format (.aag), not the binary one"}},
        1,
        2,
        "EXPRESSION:\n" + grammarHelp(Grammar::whole)};
    const CommandLine line(command, argc, argv);
    expectOneQuestion(line);
    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, inputName(line.operands[0]));
    Circuit circuit = reachability(model, askedStateQuestion(model, names, line).condition);
    nameSymbols(circuit, model, names);
    showAIGER(std::cout, circuit, line.has("ascii"));
    return finished(0);
}
