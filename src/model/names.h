// What people call the automata, locations, actions and propositions of a network.
//
// A run ignores the title of an automaton and the text after the numbers of a line. By convention
// they are names:
//
//     title of an automaton                 the automaton's name
//     location 2 critical                   the name of location 2 of that automaton
//     transition 1 2 13 enter               the name of action 13
//     2 11 1 in the critical section        in a valuation: the name of proposition 1, the last one
//
// Blanks at both ends of a name go. A text is no name where the number is missing that it would
// name. The first name given to a thing wins. Two things may have the same name. What has no name
// shows its number.

#pragma once

#include "model/ntamodel.h"

#include <istream>
#include <map>
#include <string>

namespace tervoxal {

/// The names of a network; the keys are those of the model's tables. Holds no empty name.
struct Names {
    std::map<uint, std::string> automata;
    std::map<NetTimedModel::Location, std::string> locations;
    std::map<uint, std::string> actions;
    std::map<uint, std::string> props;

    /// The name, or the number where there is none.
    [[nodiscard]] std::string automaton(uint a) const;
    [[nodiscard]] std::string location(uint a, uint l) const;
    [[nodiscard]] std::string action(uint x) const;
    [[nodiscard]] std::string prop(uint p) const;
};

/// Reads name + ".in" into the model and its names, and computes the layout of a state. Refuses
/// what NetTimedModel::readNetwork refuses, with a line that tells the file and its line. Prints no
/// progress.
void readNamedNetwork(NetTimedModel& model, Names& names, const std::string& name);
/// The same from a stream with what that file holds.
void readNamedNetwork(NetTimedModel& model, Names& names, std::istream& in,
                      const std::string& name);

} // namespace tervoxal
