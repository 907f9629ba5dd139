// A sweep over path lengths: the least length for which a network has a path that meets a formula.
//
// For each length three commands run one after the other: tervoxal writes the clauses, a solver
// looks for a model, tervoxal-path says what the solver's answer means and replays a model on the
// network. A length is settled by an answer that holds, or by the first thing that goes wrong.
//
// The lengths go in ascending order, up to the first one that decides: that has a path, or an
// error. Several may run side by side; then those above a length that decides are cancelled, and
// those below it are waited for. So the result does not depend on their number.

#pragma once

#include "programs/children.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tervoxal {

/// What is asked, and with what.
struct Task {
    std::string tervoxal;     // the command's file
    std::string tervoxalPath; // likewise
    std::string solver;       // the words of a command, as a shell reads them
    std::string format;       // of the path, as tervoxal-path takes it
    std::string network;      // the input's names in the directory of the sweep, without ".in"
    std::string formula;
    std::filesystem::path keep; // where the files of settled lengths go; empty: they are removed
    long from = 1;              // the lengths, from 1 to 2147483647
    long to = 1;                // not below from
    std::size_t jobs = 1;       // lengths at a time, 1 or more
};

enum class LengthVerdict { none, path, refused };

/// What came out for one length, or for all.
struct Result {
    LengthVerdict verdict = LengthVerdict::none;
    std::chrono::duration<double> time{0};
    std::string text;                  // the path, or why there is none
    int signal = 0;                    // not 0: ended by it, before any verdict
    std::vector<std::string> warnings; // of tervoxal and tervoxal-path
};

/// Sweeps in a directory that holds the network and the formula. A line of progress for each length
/// goes to standard error, and each warning once. All children have ended when it comes back.
[[nodiscard]] Result sweep(const Task& task, Children& children,
                           const std::filesystem::path& directory);

} // namespace tervoxal
