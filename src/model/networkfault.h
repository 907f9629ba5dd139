// What a network file is refused for, and the words for it.

#pragma once

#include "text/uint.h"

#include <string>

namespace tervoxal {

/// A fault of a network file.
struct NetworkFault {
    enum class Kind {
        // The file ends
        noHeading,     // before its heading
        noClosingLine, // before the closing line
        cutOff,        // inside of an automaton
        // The line is not the one that is due
        noDeclaration,  // before a valuation: it is neither a declaration nor `valuation`
        openLocation,   // after a location: it does not begin with `end`
        openTransition, // after a transition: it is not exactly `end`
        openAutomaton,  // after the `end` of a valuation: it does not begin with `end`
        // A number in the line
        missing,
        negative,
        tooLarge,
        // The automaton as a whole
        noLocation, // declares none
        undeclared, // lacks the declaration of a location
    };
    /// What a number in a line is.
    enum class Field { location, source, target, action, prop };

    Kind kind;
    long line;                     // where it is told, from 1
    int automaton;                 // the one that is read; 0 before the first
    Field field = Field::location; // of a number
    uint location = 0;             // that lacks its declaration
};

/// Whether another line is due in place of the one that is there.
[[nodiscard]] bool anotherLineIsDue(NetworkFault::Kind kind);
/// What is wrong, without the line.
[[nodiscard]] std::string text(const NetworkFault& fault);
/// The line with which a run refuses the file. It names no line where another one is due.
[[nodiscard]] std::string refusal(const NetworkFault& fault);

} // namespace tervoxal
