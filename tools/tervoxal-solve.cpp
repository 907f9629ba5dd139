// The command tervoxal-solve: the least path length with a path, and that path.

#include "children.h"
#include "command.h"
#include "directories.h"
#include "fatal.h"
#include "lines.h"
#include "outputfile.h"
#include "proof.h"
#include "sweep.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr long greatestLength = 2147483647;
constexpr std::array<const char*, 3> knownSolvers = {"cadical", "kissat", "minisat"};

const Command command{
    "tervoxal-solve",
    "NetworkFile FormulaFile PathLen",
    "Looks for the shortest path of 1 to PathLen steps on which the formula holds somewhere, and\n"
    "prints it. Both files are named without their \".in\".\n"
    "\n"
    "Exit status: 10 a path, replayed on the network; 20 no path of these lengths, or proved that\n"
    "there is none of any length; 1 an error.\n",
    {{"solver", "COMMAND",
      "what to run on a .cnf file, in the words of a shell: a solver that\n"
      "writes the competition format, or MiniSat; by default the first of cadical, kissat, "
      "minisat"},
     {"from", "K", "begin with paths of K steps (1)"},
     {"jobs", "N", "work on N lengths at a time (1)"},
     {"format", "FORMAT", "text, json, vcd or dot, as tervoxal-path writes them (text)"},
     {"keep", "DIRECTORY",
      "keep the clauses, the side file, the solver's output and the time\n"
      "file there; by default they are temporary"},
     {"prove", "", "first ask berkeley-abc for a proof that there is no path of any length"},
     {"prove-time", "SECONDS", "the same, for SECONDS at most (60)"}},
    3,
    3};

/// What the sweep of a task needs beside it.
struct Setting {
    std::string network; // the text of the network file
    std::string formula; // the text of the formula file
    std::string tervoxalAiger;
    std::chrono::seconds proofLimit{0}; // 0: no proof is asked for
};

/// What stands behind the last slash. Files of a sweep have that name and some letters more.
std::string baseName(const std::string& name) {
    std::string base = name.substr(name.rfind('/') + 1);
    return base.empty() || base.size() > 200 ? "network" : base;
}

std::string inputOf(const std::string& name) {
    std::ostringstream text;
    text << openInput(name + ".in").rdbuf();
    return text.str();
}

std::string defaultSolver() {
    for (const char* solver : knownSolvers) {
        if (!onPath(solver).empty()) return solver;
    }
    error("no solver on the path: install the package cadical or minisat, or name a solver with "
          "--solver");
}

bool writeFile(const fs::path& file, const std::string& text) {
    OutputFile out(file);
    out.write(text);
    return out.close();
}

/// Moves the question and the answer of a proof to where files are kept.
void keepProof(const Task& task, const fs::path& directory) {
    for (const char* suffix : {".aig", ".proof"}) {
        std::error_code ignored;
        fs::rename(directory / ("question" + std::string(suffix)),
                   task.keep / (task.network + suffix), ignored);
    }
}

/// The proof and the sweep in a directory of their own, which is gone when it comes back.
Result solved(const Task& task, const Setting& setting) {
    Children children;
    const char* const place = std::getenv("TMPDIR");
    const fs::path temporary = place == nullptr || *place == '\0' ? "/tmp" : place;
    const fs::path parent = task.keep.empty() ? temporary : task.keep;
    const TemporaryDirectory directory(parent, command.name);
    if (!writeFile(directory.path / (task.network + ".in"), setting.network) ||
        !writeFile(directory.path / (task.formula + ".in"), setting.formula)) {
        return {Verdict::refused, {}, "cannot write in " + parent.string(), 0};
    }
    if (setting.proofLimit.count() > 0) {
        const Proof proof = prove(setting.tervoxalAiger, task.network, task.formula,
                                  setting.proofLimit, children, directory.path);
        if (proof.signal != 0) return {Verdict::none, {}, "", proof.signal};
        if (!task.keep.empty()) keepProof(task, directory.path);
        if (proof.proved) return {Verdict::none, {}, "never, at any length: " + proof.text, 0};
        std::cerr << "proof: " + proof.text + '\n';
    }
    if (!task.keep.empty()) {
        // Each run adds its line to the file that the link leads to.
        const char* const timeFile = "tervoxaltime.out";
        std::error_code ignored;
        fs::create_symlink(task.keep / timeFile, directory.path / timeFile, ignored);
    }
    return sweep(task, children, directory.path);
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine call(command, argc, argv);
    Task task;
    Setting setting;
    task.to = call.numberIn(call.operands[2], "PathLen", 1, greatestLength);
    task.from = call.number("from", 1, task.to, 1);
    task.jobs = static_cast<std::size_t>(call.number("jobs", 1, 1024, 1));
    task.format = call.value("format", "text");
    if (!std::set<std::string_view>{"text", "json", "vcd", "dot"}.contains(task.format)) {
        call.misused("--format needs text, json, vcd or dot, not '" + task.format + "'");
    }
    task.tervoxal = companion("tervoxal");
    task.tervoxalPath = companion("tervoxal-path");
    if (call.has("prove") || call.has("prove-time")) {
        setting.proofLimit = std::chrono::seconds(call.number("prove-time", 1, greatestLength, 60));
        setting.tervoxalAiger = companion("tervoxal-aiger");
    }
    task.solver = call.has("solver") ? call.value("solver", "") : defaultSolver();
    task.network = baseName(call.operands[0]);
    task.formula = baseName(call.operands[1]);
    if (task.formula == task.network) task.formula += "-formula";
    // Both are read once: they may be pipes, and all lengths speak of the same network.
    setting.network = inputOf(call.operands[0]);
    setting.formula = inputOf(call.operands[1]);
    if (call.has("keep")) {
        std::error_code problem;
        task.keep = fs::absolute(call.value("keep", ""), problem);
        fs::create_directories(task.keep, problem);
        if (problem) error("cannot make " + task.keep.string() + ": " + problem.message());
    }

    const Result result = solved(task, setting);
    if (result.signal != 0) dieBy(result.signal);
    switch (result.verdict) {
    case Verdict::none: std::cerr << result.text + '\n'; return finished(20);
    case Verdict::path: std::cout << result.text; return finished(10);
    case Verdict::refused: break;
    }
    error(result.text);
}
