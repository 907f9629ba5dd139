// One state on the symbolic path: the variables that encode the location of every automaton.
//
// Invariant: loc has len bits, and bit i is the variable start + i.

#pragma once

#include "boolformvect.h"

class SymState {
public:
    /// A state of len bits on the variables from start upward. The position on the path does not
    /// enter the state.
    SymState(int len, int start, int pos);

    int len;
    BoolFormVect loc;
};
