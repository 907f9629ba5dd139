// What a SAT solver wrote: its verdict, and the model where it found one.
//
// Three formats are read, without being told which one it is:
//
//     s SATISFIABLE       the competition format: comments after "c", the verdict after "s",
//     v 1 -2              literals after "v", ended by 0; the verdict may come last
//     v 3 0
//
//     SAT                 MiniSat's result file
//     1 -2 3 0
//
//     1 -2 3              a bare list of literals, the 0 at its end may be missing
//
// Blanks at both ends of a line and carriage returns do not count. The other verdicts are
// "s UNSATISFIABLE", "s UNKNOWN", "UNSAT" and "INDET". What MiniSat prints on standard output is
// read as well: "SATISFIABLE" (it holds no model then), "UNSATISFIABLE" and "INDETERMINATE". A
// comment "c UNKNOWN" is a verdict if there is no other one: that is how CaDiCaL gives up.

#pragma once

#include <istream>
#include <string>
#include <vector>

namespace tervoxal {

struct SolverAnswer {
    enum class Verdict { satisfiable, unsatisfiable, unknown };

    Verdict verdict;
    /// The model: literals by ascending variable, each variable once. Variables that the solver
    /// left out are missing. Empty unless satisfiable.
    std::vector<int> literals;
};

/// Reads an answer to the end of the stream. One that is cut off, that contradicts itself or that
/// has words of no format ends the process with status 1 and one line on standard error, which
/// begins with the name. Linear in the stream, but for the sorting of literals that do not ascend.
[[nodiscard]] SolverAnswer readAnswer(std::istream& in, const std::string& name);

} // namespace tervoxal
