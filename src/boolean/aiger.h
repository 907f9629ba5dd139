// Sequential circuits whose gates are formulas of the store, and their files in the AIGER 1.0
// format.
//
// The variables of the store that stand in a circuit are its inputs and the states of its latches.
// The writer renumbers: with I inputs and L latches, input i (from 0) is variable 1 + i of the
// file, latch i is variable 1 + I + i, and the gates follow, the operands of each before it. A
// conjunction is one gate, an equivalence three. Only what outputs and latches reach is written.
// A literal of the file is twice its variable, plus 1 for a negation; 0 is false and 1 true.

#pragma once

#include "boolean/boolform.h"

#include <ostream>
#include <string>
#include <vector>

namespace tervoxal {

/// A circuit with one state, in which all latches are 0 at the start. Names are one line each, an
/// empty one is none.
///
/// Invariants: the variables of inputs and latches are all different, and no formula holds another
/// variable.
struct Circuit {
    struct Input {
        int variable;
        std::string name;
    };
    struct Latch {
        int variable;
        BoolForm next; // its value in the next state
        std::string name;
    };
    struct Output {
        BoolForm value;
        std::string name;
    };

    std::vector<Input> inputs;
    std::vector<Latch> latches;
    std::vector<Output> outputs;
    std::string comment; // lines, or empty
};

/// Writes the circuit in the binary form or, if ascii, in the text form; both have the same numbers
/// and symbols. Linear in the circuit and in the number of nodes of the store. Precondition,
/// asserted: the file's literals fit into an int, as its readers hold them.
void showAIGER(std::ostream& out, const Circuit& circuit, bool ascii);

} // namespace tervoxal
