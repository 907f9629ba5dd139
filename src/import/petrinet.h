// A safe place/transition net, and the network of automata that it becomes.
//
// Places and transitions are numbered from 0 in the order of their file. Each place belongs to one
// unit: a set of places of which at most one is marked in any reachable marking. A net that tells
// no units has each place in a unit of its own. Units are numbered from 0 and have a place at
// least.
//
// A unit becomes an automaton with a location for each of its places and one, "none", for the case
// that none is marked. Location 0 is what holds in the initial marking. Behind it stand the other
// places in the order of the file, and then none, unless it is location 0. Transition t is action t
// in each unit that it touches, with one move there:
//
//     takes from p, puts on q     p to q; a place that it takes from and puts on stays
//     takes from p alone          p to none
//     puts on q alone             none to q
//
// So a transition that would put a second token into a unit is not possible. Place i is proposition
// i + 1, carried by its location.

#pragma once

#include "uint.h"

#include <ostream>
#include <string>
#include <vector>

struct PetriNet {
    struct Place {
        std::string name;
        uint unit;
        bool marked; // initially; at most one place of a unit is
    };
    struct Transition {
        std::string name;
        unsigned long line; // of the file
    };
    /// What a transition does with a place. It takes from it, or puts on it, or both.
    struct Arc {
        uint transition;
        uint place;
        bool takes;
        bool puts;
    };

    std::string name;
    std::vector<Place> places;
    std::vector<Transition> transitions;
    std::vector<Arc> arcs; // ascending by transition, then by place; no two of the same pair
    std::vector<std::string> units;
};

/// The automata of a net, which are its units.
struct NetAutomata {
    /// The share of a unit in an action.
    struct Move {
        uint unit;
        uint source;
        uint target;
        uint action;
    };
    /// A transition that the network lacks, and the reason in words.
    struct LeftOut {
        uint transition;
        std::string reason;
    };

    std::vector<uint> locationOf; // of a place, in the automaton of its unit
    std::vector<uint> noneOf;     // of a unit: its location without a marked place
    std::vector<Move> moves;      // ascending by unit, then by action
    std::vector<LeftOut> leftOut; // ascending
};

/// Lays out the automata. Leaves out a transition that has no place, and one that can never fire
/// since no two places of a unit are marked together: it takes from two of them, or puts on two.
[[nodiscard]] NetAutomata automataOf(const PetriNet& net);

/// Writes the network; the automata are those of the net. A name of an action that is longer than
/// 100 bytes stands at the first transition alone, so the text is linear in the net.
void writeNetwork(const PetriNet& net, const NetAutomata& automata, std::ostream& out);
