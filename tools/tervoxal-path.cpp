// The command tervoxal-path: from what a solver wrote about a run's clauses to a path that is
// replayed on the network.

#include "amounts.h"
#include "answer.h"
#include "command.h"
#include "fatal.h"
#include "filenames.h"
#include "lines.h"
#include "names.h"
#include "path.h"
#include "pathlength.h"
#include "report.h"
#include "sidefile.h"
#include "transitions.h"
#include "walk.h"

#include <fstream>
#include <iostream>
#include <string>

namespace {

const Command command{
    "tervoxal-path",
    "NetworkFile FormulaFile PathLen [SolverOutput]",
    "Tells the path that a SAT solver found in the clauses of\n"
    "'tervoxal NetworkFile FormulaFile PathLen', replayed on the network. SolverOutput is what "
    "the\n"
    "solver printed, MiniSat's result file, or a list of literals; without it, or with -, it is\n"
    "read from standard input. The side file of the run has to be beside the network.\n"
    "\n"
    "The exit status is 10 for a path, 20 if the solver says that there is none, 0 if the solver\n"
    "gave no answer, and 1 if anything is refused.\n",
    {{"format", "FORMAT",
      "text (the default): a block for each step;\n"
      "json: an object for other programs;\n"
      "vcd: a waveform for GTKWave;\n"
      "dot: the network with the path on it, for Graphviz"}},
    3,
    4};

Answer answerOf(const CommandLine& line) {
    if (line.operands.size() < 4 || line.operands[3] == "-") {
        return readAnswer(std::cin, "standard input");
    }
    std::ifstream in = openInput(line.operands[3]);
    return readAnswer(in, line.operands[3]);
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine line(command, argc, argv);
    std::ios::sync_with_stdio(false);
    const std::string format = line.value("format", "text");
    const Show show = showOf(format);
    if (show == nullptr) line.misused("unknown format '" + format + "'");
    const std::string network = inputName(line.operands[0]);
    const std::string formula = inputName(line.operands[1]);
    const std::string& pathLen = line.operands[2];
    const int k = pathLength(pathLen);
    if (k <= 0) error("Length of path should be > 0");

    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, network);
    model.readFormula(formula);
    if (model.form->temporalLength() > 0) {
        std::cerr << "warning: a formula with a temporal operator is false as a whole\n";
    }
    const Condition condition = conditionOf(*model.form);
    const int maxVar = readSideFile(model, k, runName(network, pathLen));
    const Answer answer = answerOf(line);
    if (answer.verdict == Verdict::unknown) {
        std::cerr << "the solver gave no answer\n";
        return finished(0);
    }
    if (answer.verdict == Verdict::unsatisfiable) {
        std::cerr << "no path of " << steps(k)
                  << " meets the formula: the solver's word, unchecked\n";
        return finished(20);
    }

    const Path path = decodePath(model, k, maxVar, answer.literals);
    const Transitions transitions(model);
    const Walk walk(transitions, path, condition);
    replay(walk, names);
    show(std::cout, {walk, names, network, formula});
    return finished(10);
}
