// A stroll through a network: a run that takes at each state one of the possible actions without
// looking ahead.

#pragma once

#include "tables.h"

/// The number of steps of a stroll, up to `most`: it is less where it has come to a state without a
/// possible action. The same for the same tables. Linear in the tables and, for each step, in the
/// actions that have to do with what moves.
[[nodiscard]] int strollLength(const Tables& tables, int most);
