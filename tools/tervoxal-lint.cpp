// The command tervoxal-lint: what a run would refuse, and what hardly can be meant.

#include "lint/networkcheck.h"
#include "query/formulacheck.h"
#include "system/command.h"
#include "system/filenames.h"

#include <iostream>
#include <string>

using namespace tervoxal;

int main(int argc, char* argv[]) {
    const Command command{
        "tervoxal-lint",
        "NetworkFile [FormulaFile]",
        "Tells what is wrong with the network NetworkFile.in and the formula FormulaFile.in, one\n"
        "line each:\n"
        "\n"
        "  FILE:LINE: error: ...    a run refuses the file\n"
        "  FILE:LINE: warning: ...  a run takes it, but it hardly can be meant\n"
        "\n"
        "Without FormulaFile it looks at the network only. The exit status is 0 if there is "
        "nothing\n"
        "to tell, else 1.\n",
        {},
        1,
        2};
    const CommandLine line(command, argc, argv);
    const std::string networkFile = inputName(line.operands[0]) + inputSuffix;
    Diagnostics inNetwork;
    const CheckedNetwork network = checkNetwork(networkFile, inNetwork);
    inNetwork.show(std::cout, networkFile);
    Diagnostics inFormula;
    if (line.operands.size() > 1) {
        const std::string formulaFile = inputName(line.operands[1]) + inputSuffix;
        checkFormula(formulaFile, network.taken ? &network.props : nullptr, inFormula);
        inFormula.show(std::cout, formulaFile);
    }
    return finished(inNetwork.empty() && inFormula.empty() ? 0 : 1);
}
