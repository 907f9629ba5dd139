// Labelled transition systems in the Aldebaran format, and the network that they become.
//
//     des (INITIAL, TRANSITIONS, STATES)
//     (FROM, LABEL, TO)                      one line for each transition
//
// White space is free, and lines of white space are skipped. States are 0 to STATES - 1. A label
// stands bare or in double quotes, after the first comma and before the last. Inside quotes a
// backslash may stand before a quote or a backslash, and means it.
//
// Each system becomes an automaton, in the order given. Location s is state s, but for the initial
// state, which changes places with state 0. Equal labels are one action, of all systems that have
// it. The labels i and tau are internal: together they are an action of the system alone. Actions
// are numbered from 0 in order of first appearance. The states of all systems, in their order, are
// propositions, numbered from 1.

#pragma once

#include "text/uint.h"

#include <ostream>
#include <string>
#include <vector>

namespace tervoxal {

struct LabelledSystem {
    struct Transition {
        uint source;
        uint target;
        uint action;
    };

    std::string title; // no two systems have the same
    uint initial;
    uint states;                         // 1 or more; of all systems 2147483647 at most
    std::vector<Transition> transitions; // in the order of the file
};

struct LabelledSystems {
    std::vector<LabelledSystem> systems;
    std::vector<std::string> labels; // of the actions
};

/// Reads the files. Ends the process with status 1 and one line on standard error, with file and
/// line, at the first that is missing or malformed. A system has its file's name without directory
/// and suffix as its title; of equal ones, those after the first get "_2", "_3" and so on.
[[nodiscard]] LabelledSystems readAut(const std::vector<std::string>& files);

/// Writes the network. State s of a system is named by the system's title, a dot and s.
void writeNetwork(const LabelledSystems& systems, std::ostream& out);

} // namespace tervoxal
