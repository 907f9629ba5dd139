// A path as people and programs read it: as text, as JSON, as a waveform. Each report starts at
// position 0, writes as it goes and stops early if the stream fails. None of them judges the path:
// replay has to come first.

#pragma once

#include "names.h"
#include "walk.h"

#include <ostream>
#include <string>

/// What the run was called with, for the headings.
struct Subject {
    std::string network;
    std::string formula;
};

/// One block for each step, with the states before the first and after the last. UTF-8, whatever
/// bytes the names have, and so are the others.
void showText(std::ostream& out, const Walk& start, const Names& names, const Subject& subject);
/// One JSON object (RFC 8259), a line for each automaton and each position.
void showJson(std::ostream& out, const Walk& start, const Names& names, const Subject& subject);
/// A value change dump (IEEE 1364) with strings as GTKWave has them. Time is the position.
void showVcd(std::ostream& out, const Walk& start, const Names& names, const Subject& subject);
