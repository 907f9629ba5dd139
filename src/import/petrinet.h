// A place/transition net, and the network of automata that it becomes.
//
// Places and transitions are numbered from 0 in the order of their file. Each place belongs to one
// unit: a set of places of which at most one is marked in any reachable marking. A net that tells
// no units has each place in a unit of its own. Units are numbered from 0 and have a place at
// least. Place i is proposition i + 1; where all places are called "p" and a number, all different,
// it is the proposition of that number.
//
// A net without a bound is meant to be safe. A unit becomes an automaton with a location for each
// of its places and one, "none", for the case that none is marked. Location 0 is what holds in the
// initial marking. After it stand the other places in the order of the file, and then none, unless
// it is location 0. Transition t is action t in each unit that it touches, with one move there:
//
//     takes from p, puts on q     p to q; a place that it takes from and puts on stays
//     takes from p alone          p to none
//     puts on q alone             none to q
//
// So a transition that would put a second token into a unit is not possible. The proposition of a
// place is carried by its location.
//
// An automaton more, after the units, has the actions that no unit can have, if there are any. At
// its location 0 a transition without a place is possible, always. Its location 1, which nothing
// leads to, has those that never are: they take from two places of a unit, or put on two.
//
// In a net of bound N a place has up to N tokens, and each place is a unit of its own. It becomes
// an automaton with a location for each number of tokens. Location n is that of n tokens, but for
// the initial number, which changes places with 0. A transition that takes w and puts v is a move
// from n to n - w + v for each n for which both are in 0 to N, so one that would put more is not
// possible. Locations of a token and more carry the place's proposition, and those of j tokens and
// more "PLACE>=j", for j from 1 to N. These are numbered after all places, place by place.
//
// Where the name that a node has in the network does not tell its id, a comment does (netids.h).

#pragma once

#include "text/uint.h"

#include <ostream>
#include <string>
#include <vector>

namespace tervoxal {

struct PetriNet {
    struct Place {
        std::string id;
        std::string name;
        uint unit;
        uint tokens; // initially; without a bound 1 at most, and in one place of a unit at most
        uint prop;   // no two places have the same; with those of its bound at most 2147483647
    };
    struct Transition {
        std::string id;
        std::string name;
        unsigned long line; // of the file
    };
    /// What a transition does with a place: it takes and puts that many tokens, not both 0. Neither
    /// is above the bound; without one both are 1 at most.
    struct Arc {
        uint transition;
        uint place;
        uint takes;
        uint puts;
    };

    std::string name;
    uint bound;        // 0: none
    bool safe = false; // its file says so
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
    /// A transition that no unit has: it is possible always or never, and the reason in words.
    struct Apart {
        uint transition;
        bool always;
        std::string reason;
    };

    std::vector<uint> locationOf; // of a marked place, without a bound
    std::vector<uint> noneOf;     // of a unit without a marked place, without a bound
    std::vector<Move> moves;      // ascending by unit, then by action
    std::vector<Apart> apart;     // ascending
};

/// Lays out the automata. There are at most as many moves as arcs, times the bound.
[[nodiscard]] NetAutomata automataOf(const PetriNet& net);

/// Writes the network; the automata are those of the net. A name of an action that is longer than
/// 100 bytes stands at the first transition alone, so the text is linear in the net.
void writeNetwork(const PetriNet& net, const NetAutomata& automata, std::ostream& out);

} // namespace tervoxal
