// A SAT solver on a file of clauses.
//
// A solver is a command as a user writes it: what could stand in a shell before the name of the
// file. It runs where the user is, so that the command may name files there. MiniSat prints no
// model: it writes one to the file that is its second argument.

#pragma once

#include "programs/children.h"

#include <filesystem>
#include <string>

namespace tervoxal {

/// Whether the command runs a program whose name begins so.
[[nodiscard]] bool runsProgram(const std::string& command, const std::string& program);

/// The call of a solver on a file of clauses. The answer, as readAnswer takes it, and what else it
/// prints go to two other files.
[[nodiscard]] Launch solverLaunch(const std::string& command, const std::string& clauses,
                                  const std::string& answer, const std::string& log);

/// What came out of a run.
struct SolverRun {
    std::string command;
    std::string answer{};  // as readAnswer takes it
    int status = 0;        // 10, 20 or 0
    bool checked = false;  // drat-trim has verified the proof that there is no model
    std::string problem{}; // why there is no answer, or none that counts
    int signal = 0;        // not 0: ended by it, before any answer
};

/// Runs a solver to its end, with files of its own in the directory. CaDiCaL writes a proof (DRAT;
/// Wetzler, Heule and Hunt, DRAT-trim: Efficient Checking and Trimming Using Expressive Clausal
/// Proofs, 2014) where drat-trim is on the path, which checks it then.
[[nodiscard]] SolverRun runSolver(Children& children, const std::string& command,
                                  const std::filesystem::path& clauses,
                                  const std::filesystem::path& directory);

} // namespace tervoxal
