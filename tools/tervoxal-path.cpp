// The command tervoxal-path: from what a solver wrote about a run's clauses to a path that is
// replayed on the network.

#include "model/choices.h"
#include "model/names.h"
#include "programs/aigerwitness.h"
#include "programs/solveranswer.h"
#include "query/askedformula.h"
#include "query/grammar.h"
#include "query/question.h"
#include "replay/path.h"
#include "replay/sidefile.h"
#include "replay/transitions.h"
#include "replay/walk.h"
#include "replay/walkfile.h"
#include "report/report.h"
#include "system/command.h"
#include "system/filenames.h"
#include "system/filetext.h"
#include "system/pathlength.h"
#include "text/amounts.h"
#include "text/fatal.h"
#include "text/lines.h"

#include <fstream>
#include <iostream>
#include <string>

using namespace tervoxal;

namespace {

const Command command{
    "tervoxal-path",
    "NetworkFile [FormulaFile] [PathLen [SolverOutput]]",
    "Tells the path that a SAT solver found in the clauses of\n"
    "'tervoxal NetworkFile FormulaFile PathLen', replayed on the network. SolverOutput is what "
    "the\n"
    "solver printed, MiniSat's result file, or a list of literals; without it, or with -, it is\n"
    "read from standard input. The side file of the run has to be beside the network.\n"
    "\n"
    "With --witness, PathLen and SolverOutput are left out: it tells the path that a model "
    "checker\n"
    "found in the circuit of 'tervoxal-aiger NetworkFile FormulaFile', and needs no side file.\n"
    "With --walk it replays the steps that were taken by hand in a page and saved there; a "
    "question\n"
    "may be left out then.\n"
    "\n"
    "The exit status is 10 for a path, 20 if the solver says that there is none, 0 if the solver\n"
    "gave no answer, and 1 if anything is refused.\n",
    {{"witness", "FILE", "the AIGER witness of a model checker; - is standard input"},
     {"walk", "FILE", "the steps that a page has saved; - is standard input"},
     {"ask", "EXPRESSION", "with one of these, the question in place of FormulaFile"},
     {"format", "FORMAT",
      "text (the default): a block for each step;\n"
      "json: an object for other programs;\n"
      "vcd: a waveform for GTKWave;\n"
      "dot: the network with the path on it, for Graphviz;\n"
      "html: a page for a browser, to look at and to go on by hand"},
     {"all", "",
      "show all automata; by default text and dot leave out those that do not move and\n"
      "that the formula does not speak of"}},
    1,
    4,
    "EXPRESSION:\n" + grammarHelp(Grammar::whole)};

/// A path of a solver, or the status where it tells none.
struct Found {
    Path path;
    int status = 10;
};

/// Reads what a command wrote into the file of that name, or into standard input.
template <class Read>
auto answerIn(const std::string& file, const Read& read) {
    if (file == "-") return read(std::cin, "standard input");
    std::ifstream in = openInput(file);
    return read(in, file);
}

/// What is told where there is no path, and the status.
int withoutPath(SolverAnswer::Verdict verdict, const std::string& who, const std::string& steps) {
    if (verdict == SolverAnswer::Verdict::unknown) {
        std::cerr << "the " + who + " gave no answer\n";
        return 0;
    }
    std::cerr << "no path of " + steps + " meets the formula: the " + who + "'s word, unchecked\n";
    return 20;
}

/// What a run asks, which takes a temporal operator.
Question runQuestion(const std::string& formula) {
    const std::string file = formula + inputSuffix;
    const EctlForm form = runFormula(file, fileText(file));
    if (form.temporalLength() > 0) {
        std::cerr << "warning: a formula with a temporal operator is false as a whole\n";
    }
    return {formula, formula, conditionOf(form)};
}

Found solverPath(const CommandLine& line, const NetTimedModel& model) {
    const std::string& pathLen = line.operands[2];
    const int k = pathLength(pathLen);
    if (k <= 0) error("Length of path should be > 0");
    const int maxVar = readSideFile(model, k, runName(inputName(line.operands[0]), pathLen));
    const SolverAnswer answer =
        answerIn(line.operands.size() < 4 ? "-" : line.operands[3], readAnswer);
    if (answer.verdict != SolverAnswer::Verdict::satisfiable) {
        return {{}, withoutPath(answer.verdict, "solver", steps(k))};
    }
    return {decodePath(model, k, maxVar, answer.literals)};
}

Found witnessPath(const CommandLine& line, const NetTimedModel& model) {
    const CircuitShape shape{Choices(model).bits, static_cast<std::size_t>(model.totalNrVertBits)};
    const AigerWitness witness =
        answerIn(line.value("witness", ""), [&](std::istream& in, const std::string& name) {
            return readAigerWitness(in, name, shape);
        });
    if (witness.verdict != SolverAnswer::Verdict::satisfiable) {
        return {{}, withoutPath(witness.verdict, "model checker", "any length")};
    }
    return {decodeChoices(model, witness.steps)};
}

Path walkPath(const CommandLine& line, const Transitions& transitions) {
    return answerIn(line.value("walk", ""), [&](std::istream& in, const std::string& name) {
        return readWalk(in, name, transitions);
    });
}

/// The question of a call with --witness or --walk.
Question otherQuestion(NetTimedModel& model, const Names& names, const CommandLine& line) {
    if (line.has("ask") || line.operands.size() > 1) return askedStateQuestion(model, names, line);
    return {"none", "", {{{Condition::Term::falsity}}}};
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine line(command, argc, argv);
    std::ios::sync_with_stdio(false);
    const Show show = askedFormat(line).show;
    const bool witness = line.has("witness");
    const bool taken = line.has("walk");
    if (witness && taken) line.misused("one of --witness and --walk at a time");
    if (line.has("ask") && !witness && !taken) line.misused("--ask needs --witness or --walk");
    if (witness || line.has("ask") || (taken && line.operands.size() > 1)) expectOneQuestion(line);
    if (!witness && !taken && line.operands.size() < 3) line.expect(3);
    const std::string network = inputName(line.operands[0]);

    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, network);
    const Question asked = witness || taken ? otherQuestion(model, names, line)
                                            : runQuestion(inputName(line.operands[1]));
    const Transitions transitions(model);
    const Found found = taken     ? Found{walkPath(line, transitions)}
                        : witness ? witnessPath(line, model)
                                  : solverPath(line, model);
    if (found.status != 10) return finished(found.status);

    const Walk walk(transitions, found.path, asked.condition);
    if (!asked.text.empty()) replay(walk, names);
    show(std::cout, {walk, asked.condition, names, network, asked.text, line.has("all")});
    return finished(10);
}
