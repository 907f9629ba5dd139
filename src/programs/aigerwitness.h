// What a model checker wrote about the output of a circuit: a witness in the form of AIGER.
//
//     1             the output can become 1; 0: it can not; 2: unknown
//     b0            the property: output 0
//     000000        the latches at the start
//     110           the inputs of each step, and those at the end, where the output is 1
//     001
//     .             the end
//
// The first two lines and the last one may be missing, and the end may be "# DONE" after the last
// inputs instead: so ABC writes it. A value x may be either. Lines that begin with "c" are
// comments. Blanks at both ends of a line and carriage returns do not count, and neither do empty
// lines, which a circuit without latches or inputs has.

#pragma once

#include "programs/solveranswer.h"

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace tervoxal {

/// What a witness is about: a circuit with one output, in which all latches are 0 at the start.
struct CircuitShape {
    std::size_t inputs;
    std::size_t latches;
};

struct AigerWitness {
    SolverAnswer::Verdict verdict;
    /// The inputs of each step: a 0, 1 or x for each. Empty unless satisfiable.
    std::vector<std::string> steps;
};

/// Reads a witness to the end of the stream. One that is cut off or is not about such a circuit
/// ends the process with status 1 and one line on standard error, which begins with the name.
/// Linear in the stream.
[[nodiscard]] AigerWitness readAigerWitness(std::istream& in, const std::string& name,
                                            const CircuitShape& shape);

} // namespace tervoxal
