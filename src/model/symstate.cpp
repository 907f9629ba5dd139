#include "model/symstate.h"

#include "text/fatal.h"

using namespace tervoxal;

void tervoxal::refuseVariables(const std::string& what, long needed) {
    if (needed <= mostVariables) return;
    error(what + " needs " + std::to_string(needed) + " variables, the limit is " +
          std::to_string(mostVariables));
}

SymState::SymState(int len, int start, int /*pos*/) : len(len), loc(len, start) {}
