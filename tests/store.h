// An empty store for tests that know node numbers.

#pragma once

#include "boolform.h"

inline void emptyStore() {
    BoolForm::tv.clear();
    BoolForm::mti.clear();
    BoolForm::maxNr = BoolForm::maxVariable;
}
