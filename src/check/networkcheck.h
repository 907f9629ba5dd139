// What can be said of a network file ahead of a run: the errors, for which a run refuses it, and
// the warnings, for what a run takes although it hardly can be meant.
//
// A run ends at its first error. The check goes on behind it as far as the file can be understood:
// it takes an indented or misspelt keyword for the keyword, and leaves out what it cannot read.

#pragma once

#include "findings.h"

#include <set>
#include <string>

/// What is known of a network whose file was checked.
struct CheckedNetwork {
    /// Whether a run takes the file. If it does not, props may lack some.
    bool taken = false;
    /// The propositions that some location carries.
    std::set<unsigned int> props;
};

/// Checks a network file, named with its suffix. It is kept in memory; the time is linear but for
/// sorting. A file that cannot be opened ends the process with status 1 and one line on standard
/// error.
CheckedNetwork checkNetwork(const std::string& file, Findings& findings);
