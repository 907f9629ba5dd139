// One state on the symbolic path: the variables that encode the location of every automaton.
//
// Invariant: loc has len bits, and bit i is the variable start + i.

#pragma once

#include "boolean/boolformvect.h"

#include <string>

namespace tervoxal {

/// The most variables of a question about states. 1000000 itself is read as no variable.
constexpr int mostVariables = BoolForm::maxVariable - 1;

/// Ends the process with status 1 and one line on standard error if that many variables, which what
/// needs, are more than mostVariables.
void refuseVariables(const std::string& what, long needed);

} // namespace tervoxal

class SymState {
public:
    /// A state of len bits on the variables from start upward. The position on the path does not
    /// enter the state.
    SymState(int len, int start, int pos);

    int len;
    BoolFormVect loc;
};
