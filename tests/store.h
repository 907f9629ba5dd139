// An empty store, for those who know node numbers or fill it again and again.

#pragma once

#include "boolform.h"

inline void emptyStore() { BoolForm::clear(); }
