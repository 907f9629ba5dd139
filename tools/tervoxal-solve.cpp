// The command tervoxal-solve: the least path length with a path, and that path. Each length is a
// run of tervoxal, of a solver and of tervoxal-path, which alone says what the solver's output
// means. Several lengths may run side by side; what is reported does not depend on their order.

#include "children.h"
#include "command.h"
#include "directories.h"
#include "error.h"
#include "lines.h"
#include "outputfile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <system_error>
#include <vector>

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

/// What a sweep runs, and on what.
struct Task {
    std::string tervoxal;
    std::string tervoxalPath;
    std::string tervoxalAiger; // where a proof is asked for
    std::string solver;        // the words of a command, as a shell reads them
    std::string format;
    std::string network; // the names in the working directory of the sweep
    std::string formula;
    fs::path keep; // empty: nothing is kept
    long from = 1;
    long to = 1;
    std::size_t jobs = 1;
    long proofTime = 0; // seconds; 0: no proof is asked for
};

enum class Verdict { none, never, path, refused };

/// What came out for one length, or for all.
struct Result {
    Verdict verdict = Verdict::none;
    std::chrono::duration<double> time{0};
    std::string text; // the path, or why there is no verdict
    int signal = 0;   // not 0: ended by it, ahead of any verdict
};

std::string contents(std::istream& in) {
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// The last line of a file that is not empty, of its last 4 KiB.
std::string lastLine(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    in.seekg(0, std::ios::end);
    in.seekg(std::max<std::streamoff>(0, in.tellg() - std::streamoff(4096)));
    std::string last;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) last = line;
    }
    return last;
}

std::string cannotStart(const Launch& launch) {
    return "cannot start " + launch.words.front() + ": " + std::strerror(errno);
}

/// Tells of a child that ended otherwise than it should.
std::string howEnded(const std::string& who, int status, const fs::path& log) {
    const std::string signal = signalIn(status);
    const std::string line = lastLine(log);
    return who + " ended with status " + std::to_string(status) +
           (signal.empty() ? "" : " (" + signal + ")") + (line.empty() ? "" : ": " + line);
}

/// A time in seconds.
std::string shown(std::chrono::duration<double> time) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << time.count() << " s";
    return text.str();
}

/// MiniSat prints no model: it writes one to the file that is its second argument.
bool isMinisat(const std::string& solver) {
    std::istringstream words(solver);
    for (std::string word; words >> word;) {
        if (fs::path(word).filename().string().starts_with("minisat")) return true;
    }
    return false;
}

/// The run of one length.
struct Length {
    enum class Stage { translation, solver, path };

    long k;
    Stage stage;
    int solverStatus;
    std::chrono::steady_clock::time_point begin;
};

/// The lengths of a task, in ascending order, up to the first one that decides: that has a path, or
/// an error. Those above it are cancelled, those below it are waited for.
class Sweep {
public:
    Sweep(const Task& task, Children& children, fs::path directory)
        : task(task), children(children), directory(std::move(directory)), next(task.from),
          last(task.to), unreported(task.from) {}

    /// All children have ended when it comes back.
    [[nodiscard]] Result run();

private:
    [[nodiscard]] std::string name(long k, const char* suffix) const {
        return task.network + "k" + std::to_string(k) + suffix;
    }
    [[nodiscard]] fs::path file(long k, const char* suffix) const {
        return directory / name(k, suffix);
    }
    void startStage(const Length& length);
    [[nodiscard]] Launch launch(const Length& length) const;
    void endStage(Length length, int status);
    void settle(const Length& length, Verdict verdict, const std::string& text);
    [[nodiscard]] std::string putAway(long k) const;
    void report();

    const Task& task;
    Children& children;
    fs::path directory;
    std::map<pid_t, Length> running;
    std::map<long, Result> results; // of the lengths from unreported on
    long next;
    long last;
    long unreported;
};

Result Sweep::run() {
    while (next <= last || !running.empty()) {
        if (next <= last && running.size() < task.jobs) {
            startStage({next++, Length::Stage::translation, 0, std::chrono::steady_clock::now()});
            continue;
        }
        const Event event = children.wait();
        if (event.signal != 0) {
            std::set<pid_t> all;
            for (const auto& [child, length] : running) all.insert(child);
            children.end(all);
            return {Verdict::none, {}, "", event.signal};
        }
        const Length length = running.at(event.child);
        running.erase(event.child);
        endStage(length, event.status);
        report();
    }
    return results.contains(last) ? results.at(last) : Result();
}

Launch Sweep::launch(const Length& length) const {
    const long k = length.k;
    switch (length.stage) {
    case Length::Stage::translation:
        return {{task.tervoxal, task.network, task.formula, std::to_string(k)},
                directory,
                "/dev/null",
                file(k, ".progress")};
    case Length::Stage::solver: {
        // It runs where the user is, so that the command may name files there.
        Launch solver{{"/bin/sh", "-c", "exec " + task.solver + " \"$@\"", "sh", file(k, ".cnf")},
                      "",
                      file(k, ".answer"),
                      file(k, ".log")};
        if (isMinisat(task.solver)) {
            solver.words.push_back(solver.out);
            solver.out = "/dev/null";
        }
        return solver;
    }
    case Length::Stage::path: break;
    }
    return {{task.tervoxalPath, "--format=" + task.format, "--", task.network, task.formula,
             std::to_string(k), name(k, ".answer")},
            directory,
            file(k, ".path"),
            file(k, ".refusal")};
}

void Sweep::startStage(const Length& length) {
    const Launch child = launch(length);
    if (const pid_t pid = children.start(child); pid != 0) {
        running.emplace(pid, length);
    } else {
        settle(length, Verdict::refused, cannotStart(child));
    }
}

void Sweep::endStage(Length length, int status) {
    const long k = length.k;
    const auto noVerdict = [&](const std::string& why) {
        settle(length, Verdict::refused, "k = " + std::to_string(k) + ": " + why);
    };

    switch (length.stage) {
    case Length::Stage::translation:
        if (const std::string line = lastLine(file(k, ".progress")); status == 1 && !line.empty()) {
            settle(length, Verdict::refused, line);
        } else if (status != 0) {
            noVerdict(howEnded("tervoxal", status, file(k, ".progress")));
        } else if (!fs::exists(file(k, ".cnf")) || !fs::exists(file(k, ".lck"))) {
            noVerdict("the clauses cannot be written in " + directory.parent_path().string());
        } else {
            length.stage = Length::Stage::solver;
            startStage(length);
        }
        return;
    case Length::Stage::solver:
        if (status != 0 && status != 10 && status != 20) {
            noVerdict(howEnded("the solver", status, file(k, ".log")));
        } else {
            length.solverStatus = status;
            length.stage = Length::Stage::path;
            startStage(length);
        }
        return;
    case Length::Stage::path: break;
    }
    if (status == 0) {
        noVerdict("the solver gives no answer");
    } else if (status == 1) {
        noVerdict("the solver's answer is refused: " + lastLine(file(k, ".refusal")));
    } else if (status != 10 && status != 20) {
        noVerdict(howEnded("tervoxal-path", status, file(k, ".refusal")));
    } else if (length.solverStatus != 0 && length.solverStatus != status) {
        noVerdict("the solver ended with status " + std::to_string(length.solverStatus) +
                  ", but its output says otherwise");
    } else if (status == 20) {
        settle(length, Verdict::none, "");
    } else {
        std::ifstream path(file(k, ".path"), std::ios::binary);
        settle(length, Verdict::path, contents(path));
    }
}

void Sweep::settle(const Length& length, Verdict verdict, const std::string& text) {
    Result& result = results[length.k];
    result = {verdict, std::chrono::steady_clock::now() - length.begin, text, 0};
    if (const std::string problem = putAway(length.k); !problem.empty()) {
        result.verdict = Verdict::refused;
        result.text = problem;
    }
    if (result.verdict == Verdict::none) return;
    last = length.k;
    std::set<pid_t> cancelled;
    for (const auto& [child, other] : running) {
        if (other.k > last) cancelled.insert(child);
    }
    children.end(cancelled);
    for (const pid_t child : cancelled) running.erase(child);
}

/// Keeps or removes the files of a length. Gives what went wrong, or an empty text.
std::string Sweep::putAway(long k) const {
    for (const char* suffix : {".cnf", ".lck", ".answer", ".log"}) {
        if (task.keep.empty() || !fs::exists(file(k, suffix))) continue;
        std::error_code problem;
        fs::rename(file(k, suffix), task.keep / name(k, suffix), problem);
        if (problem) {
            return "cannot keep " + (task.keep / name(k, suffix)).string() + ": " +
                   problem.message();
        }
    }
    for (const char* suffix :
         {".cnf", ".lck", ".answer", ".log", ".progress", ".path", ".refusal"}) {
        std::error_code ignored;
        fs::remove(file(k, suffix), ignored);
    }
    return "";
}

/// Tells of the lengths below which none is open.
void Sweep::report() {
    for (; results.contains(unreported) && unreported <= last; ++unreported) {
        const Result& result = results.at(unreported);
        if (result.verdict == Verdict::refused) return;
        const char* const verdict =
            result.verdict == Verdict::path ? "SATISFIABLE, " : "UNSATISFIABLE, ";
        std::cerr << "k = " + std::to_string(unreported) + ": " + verdict + shown(result.time) +
                         '\n';
        if (result.verdict == Verdict::path) return;
        results.erase(unreported);
    }
}

/// What stands behind the last slash. Files of a sweep have that name and some letters more.
std::string baseName(const std::string& name) {
    std::string base = name.substr(name.rfind('/') + 1);
    return base.empty() || base.size() > 200 ? "network" : base;
}

std::string inputOf(const std::string& name) {
    std::ifstream in = openInput(name + ".in");
    return contents(in);
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

bool hasLine(const fs::path& file, std::string_view part) {
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (line.find(part) != std::string::npos) return true;
    }
    return false;
}

/// What a model checker says of all lengths.
struct Proof {
    bool proved;
    std::string text; // how it went
    int signal;       // not 0: ended by it
};

/// Asks for a proof that no path of any length meets the formula, within the task's time.
Proof prove(const Task& task, Children& children, const fs::path& directory) {
    const std::string checker = onPath("berkeley-abc");
    if (checker.empty()) return {false, "the command and package berkeley-abc is missing", 0};
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    // The checker splits its commands at blanks, so the name of its file is ours.
    const fs::path question = directory / "question.aig";
    const fs::path result = directory / "proof";
    const fs::path log = directory / "proof.log";
    const std::vector<Launch> steps = {
        {{task.tervoxalAiger, "--", task.network, task.formula}, directory, question, log},
        {{checker, "-c", "read_aiger question.aig; pdr"}, directory, result, log}};
    for (const Launch& step : steps) {
        const pid_t child = children.start(step);
        if (child == 0) return {false, cannotStart(step), 0};
        const auto left = begin + std::chrono::seconds(task.proofTime) - Clock::now();
        const Event event =
            children.wait(std::chrono::duration_cast<std::chrono::milliseconds>(left));
        if (event.child == 0) {
            children.end({child});
            return {false, "none in " + std::to_string(task.proofTime) + " s", event.signal};
        }
        if (event.status != 0) {
            const std::string name = fs::path(step.words.front()).filename();
            return {false, howEnded(name, event.status, log), 0};
        }
    }
    if (!task.keep.empty()) {
        std::error_code ignored;
        fs::rename(question, task.keep / (task.network + ".aig"), ignored);
        fs::copy_file(result, task.keep / (task.network + ".proof"),
                      fs::copy_options::overwrite_existing, ignored);
    }
    const std::string time = " in " + shown(Clock::now() - begin);
    // It checks the invariant that it has found, and tells that apart from the verdict.
    if (hasLine(result, "Property proved.") && !hasLine(result, "erification failed")) {
        return {true, "proved" + time, 0};
    }
    if (hasLine(result, "was asserted in frame")) return {false, "refuted" + time, 0};
    return {false, "berkeley-abc does not tell", 0};
}

/// The sweep in a directory of its own, which is gone when it comes back.
Result solved(const Task& task, const std::string& network, const std::string& formula) {
    Children children;
    const char* const place = std::getenv("TMPDIR");
    const fs::path temporary = place == nullptr || *place == '\0' ? "/tmp" : place;
    const TemporaryDirectory directory(task.keep.empty() ? temporary : task.keep, command.name);
    if (!writeFile(directory.path / (task.network + ".in"), network) ||
        !writeFile(directory.path / (task.formula + ".in"), formula)) {
        return {
            Verdict::refused, {}, "cannot write in " + directory.path.parent_path().string(), 0};
    }
    if (!task.keep.empty()) {
        const char* const timeFile = "tervoxaltime.out";
        std::error_code ignored;
        fs::create_symlink(task.keep / timeFile, directory.path / timeFile, ignored);
    }
    if (task.proofTime > 0) {
        const Proof proof = prove(task, children, directory.path);
        if (proof.signal != 0) return {Verdict::none, {}, "", proof.signal};
        if (proof.proved) return {Verdict::never, {}, proof.text, 0};
        std::cerr << "proof: " + proof.text + '\n';
    }
    return Sweep(task, children, directory.path).run();
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine call(command, argc, argv);
    Task task;
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
        task.proofTime = call.number("prove-time", 1, greatestLength, 60);
        task.tervoxalAiger = companion("tervoxal-aiger");
    }
    task.solver = call.has("solver") ? call.value("solver", "") : defaultSolver();
    task.network = baseName(call.operands[0]);
    task.formula = baseName(call.operands[1]);
    if (task.formula == task.network) task.formula += "-formula";
    // Both are read once: they may be pipes, and all lengths speak of the same network.
    const std::string network = inputOf(call.operands[0]);
    const std::string formula = inputOf(call.operands[1]);
    if (call.has("keep")) {
        std::error_code problem;
        task.keep = fs::absolute(call.value("keep", ""), problem);
        fs::create_directories(task.keep, problem);
        if (problem) error("cannot make " + task.keep.string() + ": " + problem.message());
    }

    const Result result = solved(task, network, formula);
    if (result.signal != 0) dieBy(result.signal);
    switch (result.verdict) {
    case Verdict::refused: error(result.text);
    case Verdict::path: std::cout << result.text; return finished(10);
    case Verdict::never:
        std::cerr << "never, at any length: " + result.text + '\n';
        return finished(20);
    case Verdict::none: break;
    }
    std::cerr << "no path of "
              << (task.from < task.to ? std::to_string(task.from) + " to " : std::string())
              << task.to << " steps; this says nothing of longer ones\n";
    return finished(20);
}
