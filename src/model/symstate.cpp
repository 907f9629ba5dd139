#include "symstate.h"

SymState::SymState(int len, int start, int /*pos*/) : len(len), loc(len, start) {}
