#include "symstate.h"

#include "fatal.h"

void refuseVariables(const std::string& what, long needed) {
    if (needed <= mostVariables) return;
    error(what + " needs " + std::to_string(needed) + " variables, the limit is " +
          std::to_string(mostVariables));
}

SymState::SymState(int len, int start, int /*pos*/) : len(len), loc(len, start) {}
