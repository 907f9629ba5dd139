#include "programs/solverrun.h"

#include "programs/directories.h"
#include "system/filetext.h"

#include <fstream>
#include <sstream>
#include <sys/types.h>

namespace tervoxal {

namespace {

namespace fs = std::filesystem;

std::string textOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return wholeText(in);
}

/// Runs a program to its end. Gives what went wrong, or an empty text.
std::string runToEnd(Children& children, const Launch& launch, SolverRun& run) {
    const pid_t child = children.start(launch);
    if (child == 0) return notStarted(launch);
    ChildEvent event;
    while (event.child != child && event.signal == 0) event = children.wait();
    run.signal = event.signal;
    if (event.signal != 0) children.end({child});
    run.status = event.status;
    return "";
}

} // namespace

bool runsProgram(const std::string& command, const std::string& program) {
    std::istringstream words(command);
    for (std::string word; words >> word;) {
        if (fs::path(word).filename().string().starts_with(program)) return true;
    }
    return false;
}

Launch solverLaunch(const std::string& command, const std::string& clauses,
                    const std::string& answer, const std::string& log) {
    Launch solver{{"/bin/sh", "-c", "exec " + command + " \"$@\"", "sh", clauses}, "", answer, log};
    if (runsProgram(command, "minisat")) {
        solver.words.push_back(solver.out);
        solver.out = "/dev/null";
    }
    return solver;
}

SolverRun runSolver(Children& children, const std::string& command, const fs::path& clauses,
                    const fs::path& directory) {
    SolverRun run{command};
    const fs::path answer = directory / "answer";
    const fs::path proof = directory / "proof";
    const fs::path log = directory / "log";
    std::error_code ignored;
    fs::remove(answer, ignored); // of another solver
    Launch solver = solverLaunch(command, fs::absolute(clauses), answer, log);
    const std::string checker = runsProgram(command, "cadical") ? onPath("drat-trim") : "";
    if (!checker.empty()) solver.words.push_back(proof);
    run.problem = runToEnd(children, solver, run);
    if (run.signal != 0 || !run.problem.empty()) return run;
    if (run.status != 0 && run.status != 10 && run.status != 20) {
        run.problem = howEnded(command, run.status, log);
        return run;
    }
    run.answer = textOf(answer);
    if (checker.empty() || run.status != 20) return run;
    const fs::path verdict = directory / "verdict";
    SolverRun check{checker};
    run.problem = runToEnd(
        children, {{checker, fs::absolute(clauses), proof}, directory, verdict, log}, check);
    run.signal = check.signal;
    run.checked = textOf(verdict).find("s VERIFIED") != std::string::npos;
    if (run.signal == 0 && run.problem.empty() && !run.checked) {
        run.problem = "drat-trim does not verify the proof of " + command;
    }
    return run;
}

} // namespace tervoxal
