// The command tervoxal-lint: what a run would refuse, and what hardly can be meant.

#include "lint/networkcheck.h"
#include "query/formulacheck.h"
#include "system/command.h"
#include "system/filenames.h"

#include <algorithm>
#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <utility>

using namespace tervoxal;

namespace {

std::string kindsText() {
    std::string text;
    for (const std::string_view kind : noteKinds) {
        text += text.empty() ? "" : kind == noteKinds.back() ? " or " : ", ";
        text += kind;
    }
    return text;
}

} // namespace

int main(int argc, char* argv[]) {
    const Command command{
        "tervoxal-lint",
        "NetworkFile [FormulaFile]",
        "Tells what is wrong with the network NetworkFile.in and the formula FormulaFile.in, one\n"
        "line each:\n"
        "\n"
        "  FILE:LINE: error: ...    a run refuses the file\n"
        "  FILE:LINE: warning: ...  a run takes it, but it hardly can be meant; a kind in\n"
        "                           brackets after it can be left out\n"
        "\n"
        "Without FormulaFile it looks at the network only. The exit status is 0 if there is "
        "nothing\n"
        "to tell, else 1.\n",
        {{"without", "KIND",
          "leave out the warnings of this kind, as often as needed:\n" + kindsText()}},
        1,
        2};
    const CommandLine line(command, argc, argv);
    std::set<std::string> without;
    for (const std::string& kind : line.all("without")) {
        if (std::ranges::find(noteKinds, kind) == noteKinds.end()) {
            line.misused("--without needs " + kindsText() + ", not '" + kind + "'");
        }
        without.insert(kind);
    }
    const std::string networkFile = inputName(line.operands[0]) + inputSuffix;
    Diagnostics inNetwork(std::move(without));
    const CheckedNetwork network = checkNetwork(networkFile, inNetwork);
    inNetwork.show(std::cout, networkFile);
    Diagnostics inFormula;
    if (line.operands.size() > 1) {
        const std::string formulaFile = inputName(line.operands[1]) + inputSuffix;
        checkFormula(formulaFile, network.taken ? &network.props : nullptr,
                     TemporalOperators::falsify, inFormula);
        inFormula.show(std::cout, formulaFile);
    }
    return finished(inNetwork.empty() && inFormula.empty() ? 0 : 1);
}
