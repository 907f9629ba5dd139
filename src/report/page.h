// A page for a browser: the network, and the path on it, in one file that needs nothing from
// outside. What the page does is in page.js, what it looks like in page.css, its frame is
// page.html; CMake puts the three into one text. The page's last element is the data: one JSON
// object without a "<", so that no name can end it.
//
//     network, question   what the command was called with; question is empty where nothing is
//                         asked
//     automata            as in the JSON report
//     actionNames         likewise
//     actions             [number, [automaton, source, target, source, target, ...], ...] for each
//                         action, by ascending number
//     props               an object from the numbers of the propositions of the condition to
//                         [name, automaton, location, automaton, location, ...]
//     condition           in postfix notation: "false", "true", ["prop", p], ["at", a, l],
//                         ["enabled", x], "deadlock", "!", "&", "|", ["sum", least, weight, atom,
//                         weight, atom, ...]
//     shown               the automata that are shown at first
//     holds               the positions where the condition holds
//     steps               [[action, ...], automaton, source, target, automaton, ...] for each step
//     loop                of a path that shows a formula about paths: the position that the last
//                         one goes on as, or null
//     ends                likewise, whether nothing is possible after the last one
//
// Numbers are those of the network.

#pragma once

#include <string_view>

namespace tervoxal {

/// The page up to its data.
extern const std::string_view pageHead;

} // namespace tervoxal
