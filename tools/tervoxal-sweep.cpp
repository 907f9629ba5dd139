// The command tervoxal-sweep: the least path length with a path, and that path.

#include "model/names.h"
#include "programs/children.h"
#include "programs/directories.h"
#include "query/askedformula.h"
#include "report/report.h"
#include "sweep/sweep.h"
#include "system/command.h"
#include "system/filenames.h"
#include "system/filetext.h"
#include "system/pathlength.h"
#include "text/fatal.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>

using namespace tervoxal;

namespace {

namespace fs = std::filesystem;

// The first one is the fastest on most lengths of a sweep; docs/sweep.md has the figures.
constexpr std::array<const char*, 3> knownSolvers = {"minisat", "cadical", "kissat"};

const Command command{
    "tervoxal-sweep",
    "NetworkFile FormulaFile PathLen",
    "Looks for the shortest path of 1 to PathLen steps on which the formula holds somewhere, and\n"
    "prints it. Both files are named without their \".in\".\n"
    "\n"
    "Exit status: 10 a path, replayed on the network; 20 no path of these lengths; 1 an error.\n",
    {{"solver", "COMMAND",
      "what to run on a .cnf file, in the words of a shell: a solver that\n"
      "writes the competition format, or MiniSat; by default the first of minisat, cadical, "
      "kissat"},
     {"from", "K", "begin with paths of K steps (1)"},
     {"jobs", "N", "work on N lengths at a time (1)"},
     {"format", "FORMAT", "text, json, vcd, dot or html, as tervoxal-path writes them (text)"},
     {"keep", "DIRECTORY",
      "keep the clauses, the side file, the solver's output and the time\n"
      "file there; by default they are temporary"}},
    3,
    3};

/// The texts of the two input files.
struct Input {
    std::string network;
    std::string formula;
};

/// Tells of a broken file before it is one of a run, which does not tell in which line.
void refuseBroken(const Input& input, const std::string& network, const std::string& formula) {
    NetTimedModel model;
    Names names;
    std::istringstream in(input.network);
    readNamedNetwork(model, names, in, network);
    (void)runFormula(formula + inputSuffix, input.formula);
}

/// The name of an input in the directory of the sweep, where files have it and some letters more.
std::string nameThere(const std::string& name) {
    const std::string part = lastPart(name);
    return part.size() > 200 ? "network" : part;
}

std::string defaultSolver() {
    for (const char* solver : knownSolvers) {
        if (!onPath(solver).empty()) return solver;
    }
    error("no solver on the path: install the package minisat or cadical, or name a solver with "
          "--solver");
}

/// The sweep in a directory of its own, which is gone when it comes back.
Result swept(const Task& task, const Input& input) {
    Children children;
    const fs::path parent = task.keep.empty() ? temporaryPlace() : task.keep;
    const TemporaryDirectory directory(parent, command.name);
    for (const auto& [name, text] :
         {std::pair(task.network, input.network), std::pair(task.formula, input.formula)}) {
        const std::string problem = writeFile(directory.path / (name + inputSuffix), text);
        if (!problem.empty()) return {LengthVerdict::refused, {}, problem, 0, {}};
    }
    if (!task.keep.empty()) {
        // Each run adds its line to the file that the link leads to.
        std::error_code ignored;
        fs::create_symlink(task.keep / timeFileName, directory.path / timeFileName, ignored);
    }
    return sweep(task, children, directory.path);
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine call(command, argc, argv);
    Task task;
    Input input;
    task.to = call.numberIn(call.operands[2], "PathLen", 1, greatestPathLength);
    task.from = call.number("from", 1, task.to, 1);
    task.jobs = static_cast<std::size_t>(call.number("jobs", 1, 1024, 1));
    task.format = askedFormat(call).name;
    task.tervoxal = companion("tervoxal");
    task.tervoxalPath = companion("tervoxal-path");
    task.solver = call.has("solver") ? call.value("solver", "") : defaultSolver();
    const std::string network = inputName(call.operands[0]);
    const std::string formula = inputName(call.operands[1]);
    task.network = nameThere(network);
    task.formula = nameThere(formula);
    if (task.formula == task.network) task.formula += "-formula";
    // Both are read once: they may be pipes, and all lengths speak of the same network.
    input.network = fileText(network + inputSuffix);
    input.formula = fileText(formula + inputSuffix);
    refuseBroken(input, network, formula);
    if (call.has("keep")) {
        std::error_code problem;
        task.keep = fs::absolute(call.value("keep", ""), problem);
        fs::create_directories(task.keep, problem);
        if (problem) error("cannot make " + task.keep.string() + ": " + problem.message());
        const fs::path timeFile = task.keep / timeFileName;
        errno = 0;
        if (!std::ofstream(timeFile, std::ios::app)) {
            error("cannot write " + timeFile.string() + ": " + std::strerror(errno));
        }
    }

    const Result result = swept(task, input);
    if (result.signal != 0) dieBy(result.signal);
    switch (result.verdict) {
    case LengthVerdict::none: std::cerr << result.text + '\n'; return finished(20);
    case LengthVerdict::path: std::cout << result.text; return finished(10);
    case LengthVerdict::refused: break;
    }
    error(result.text);
}
