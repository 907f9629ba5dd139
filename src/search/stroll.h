// A stroll through a network: a run that takes at each state one of the possible actions without
// looking ahead. Where there is none it goes some steps back and on from there, further each time.

#pragma once

#include "tables.h"

/// The length of the longest run that a stroll of 8 times `most` steps, in both directions, has
/// come upon, up to `most`. The same for the same tables. Linear in the tables and, for each step,
/// in the actions that have to do with what moves.
[[nodiscard]] int strollLength(const Tables& tables, int most);
