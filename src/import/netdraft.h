// A net as its file tells it, with nodes that are known by their ids. A node may be mentioned
// before its declaration, stand for another one, or never be declared. Nodes are numbered from 0 in
// the order in which the file mentions them first. Lines are those of the file, for messages.

#pragma once

#include "import/petrinet.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tervoxal {

/// What an id stands for; nothing, as long as it is only mentioned.
enum class NetNodeKind : unsigned char {
    nothing,
    place,
    transition,
    placeReference,
    transitionReference
};

struct NetDraft {
    struct Node {
        const std::string* id; // a key of ids
        unsigned long line;    // of the declaration
        uint number;           // of the place or transition; of the node that a reference names
        NetNodeKind kind;
    };
    struct Arc {
        uint source; // nodes of any kind
        uint target;
        unsigned long line;
        uint weight;
    };
    /// A unit names a node as one of its places.
    struct Member {
        uint unit;
        uint node;
        unsigned long line;
    };

    /// The node of an id, new if the id is.
    uint nodeOf(std::string_view id);

    PetriNet net; // its name, bound, places and transitions; no arc, unit or proposition
    std::map<std::string, uint, std::less<>> ids;
    std::vector<Node> nodes;
    std::vector<Arc> arcs;
    bool hasUnits = false;
    std::vector<std::string> units; // those without a place too
    std::vector<Member> members;    // by unit
};

/// The net: references are followed, arcs joined with their nodes, places with their units. Ends
/// the process with status 1 and one line on standard error where they do not fit together.
[[nodiscard]] PetriNet netOf(NetDraft&& draft, const std::string& file);

} // namespace tervoxal
