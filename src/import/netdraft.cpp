#include "import/netdraft.h"

#include "text/fatal.h"
#include "text/message.h"
#include "text/scanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <set>
#include <tuple>
#include <utility>

namespace tervoxal {

namespace {

/// Puts the parts of a draft together.
class Resolver {
public:
    Resolver(const std::string& file, NetDraft& draft)
        : file(&file), draft(&draft), net(&draft.net) {}

    /// Ends the process where references, arcs or units do not fit the nodes.
    void resolve() {
        resolveReferences();
        addArcs();
        numberPlaces();
        if (draft->hasUnits) {
            addUnits();
        } else {
            addPlacesAsUnits();
        }
    }

private:
    void resolveReferences();
    void addArcs();
    void numberPlaces();
    void addUnits();
    void addPlacesAsUnits();
    /// The place or transition that an arc leads to.
    [[nodiscard]] const NetDraft::Node& endOf(uint node, const NetDraft::Arc& arc) const;

    [[noreturn]] void refuse(unsigned long line, const std::string& what) const {
        error(message(*file, line, what));
    }

    const std::string* file;
    NetDraft* draft;
    PetriNet* net;
};

bool isReference(const NetDraft::Node& node) {
    return node.kind == NetNodeKind::placeReference ||
           node.kind == NetNodeKind::transitionReference;
}

/// Each reference becomes what it stands for. Chains are followed once, from their end back.
void Resolver::resolveReferences() {
    std::vector<NetDraft::Node>& nodes = draft->nodes;
    std::vector<bool> passed(nodes.size());
    std::vector<uint> chain;
    for (uint n = 0; n < nodes.size(); ++n) {
        uint at = n;
        for (; isReference(nodes[at]) && !passed[at]; at = nodes[at].number) {
            passed[at] = true;
            chain.push_back(at);
        }
        for (; !chain.empty(); chain.pop_back()) {
            NetDraft::Node& node = nodes[chain.back()];
            const NetDraft::Node& target = nodes[at];
            const NetNodeKind kind = node.kind == NetNodeKind::placeReference
                                         ? NetNodeKind::place
                                         : NetNodeKind::transition;
            if (target.kind != kind) {
                refuse(node.line, "reference " + shown(*node.id) + " stands for no " +
                                      (kind == NetNodeKind::place ? "place" : "transition"));
            }
            node.kind = target.kind;
            node.number = target.number;
            at = chain.back();
        }
    }
}

const NetDraft::Node& Resolver::endOf(uint node, const NetDraft::Arc& arc) const {
    const NetDraft::Node& end = draft->nodes[node];
    if (end.kind == NetNodeKind::nothing) {
        refuse(arc.line, "there is no node " + shown(*end.id) + " for the arc");
    }
    return end;
}

void Resolver::addArcs() {
    struct Sorted {
        uint transition;
        uint place;
        bool puts;
        uint weight;
        unsigned long line;
    };
    std::vector<Sorted> sorted;
    sorted.reserve(draft->arcs.size());
    for (const NetDraft::Arc& arc : draft->arcs) {
        const NetDraft::Node& source = endOf(arc.source, arc);
        const NetDraft::Node& target = endOf(arc.target, arc);
        if (source.kind == target.kind) {
            refuse(arc.line, "the arc leads from " + shown(*source.id) + " to " +
                                 shown(*target.id) + ", which are both " +
                                 (source.kind == NetNodeKind::place ? "places" : "transitions"));
        }
        const bool puts = source.kind == NetNodeKind::transition;
        sorted.push_back({puts ? source.number : target.number,
                          puts ? target.number : source.number, puts, arc.weight, arc.line});
    }
    draft->arcs = {};
    std::sort(sorted.begin(), sorted.end(), [](const Sorted& x, const Sorted& y) {
        return std::tie(x.transition, x.place, x.puts, x.line) <
               std::tie(y.transition, y.place, y.puts, y.line);
    });
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        const Sorted& arc = sorted[i];
        const bool goesOn =
            i > 0 && arc.transition == sorted[i - 1].transition && arc.place == sorted[i - 1].place;
        if (!goesOn) net->arcs.push_back({arc.transition, arc.place, 0, 0});
        uint& weight = arc.puts ? net->arcs.back().puts : net->arcs.back().takes;
        weight += arc.weight;
        if (weight > std::max(net->bound, 1U)) {
            refuse(arc.line, "a second arc between " + shown(net->places[arc.place].name) +
                                 " and " + shown(net->transitions[arc.transition].name) +
                                 (net->bound == 0 ? ", where a safe net has weight 1; for others "
                                                    "there is --bound"
                                                  : ", and together they weigh more than the "
                                                    "bound of " +
                                                        std::to_string(net->bound)));
        }
    }
}

void Resolver::numberPlaces() {
    constexpr std::uint64_t largest = std::numeric_limits<int>::max();
    std::vector<PetriNet::Place>& places = net->places;
    std::vector<uint> numbers;
    for (const PetriNet::Place& place : places) {
        const std::string_view name = place.name;
        uint number = 0;
        if (name.starts_with('p') && wholeNumber(name.substr(1), number) == Found::number &&
            number <= largest) {
            numbers.push_back(number);
        }
    }
    const std::set<uint> different(numbers.begin(), numbers.end());
    const bool named = different.size() == places.size();
    for (uint p = 0; p < places.size(); ++p) places[p].prop = named ? numbers[p] : p + 1;
    const std::uint64_t last = named && !places.empty() ? *different.rbegin() : places.size();
    if (last + std::uint64_t{net->bound} * places.size() > largest) {
        error(*file + ": propositions above " + std::to_string(largest));
    }
}

void Resolver::addUnits() {
    constexpr uint none = ~0U;
    net->safe = true;
    for (PetriNet::Place& place : net->places) place.unit = none;
    uint latest = none;
    bool marked = false; // a place of the latest unit
    for (const NetDraft::Member& member : draft->members) {
        const auto refuseMember = [&](const std::string& what) {
            refuse(member.line, "unit " + shown(draft->units[member.unit]) + what);
        };
        const NetDraft::Node& node = draft->nodes[member.node];
        if (node.kind != NetNodeKind::place) refuseMember(" names no place: " + shown(*node.id));
        PetriNet::Place& place = net->places[node.number];
        if (place.unit != none) {
            refuseMember(" has place " + shown(*node.id) + ", which is that of unit " +
                         shown(net->units[place.unit]));
        }
        if (member.unit != latest) {
            latest = member.unit;
            marked = false;
            net->units.push_back(draft->units[latest]);
        }
        place.unit = static_cast<uint>(net->units.size() - 1);
        if (place.tokens > 0 && std::exchange(marked, true)) refuseMember(" has two places marked");
    }
    for (const NetDraft::Node& node : draft->nodes) {
        if (node.kind == NetNodeKind::place && net->places[node.number].unit == none) {
            refuse(node.line, "place " + shown(*node.id) + " is in no unit");
        }
    }
}

void Resolver::addPlacesAsUnits() {
    for (PetriNet::Place& place : net->places) {
        place.unit = static_cast<uint>(net->units.size());
        net->units.push_back(place.name);
    }
}

} // namespace

uint NetDraft::nodeOf(std::string_view id) {
    const auto known = ids.find(id);
    if (known != ids.end()) return known->second;
    const auto number = static_cast<uint>(nodes.size());
    const auto entry = ids.emplace(id, number).first;
    nodes.push_back({&entry->first, 0, 0, NetNodeKind::nothing});
    return number;
}

PetriNet netOf(NetDraft&& draft, const std::string& file) {
    Resolver(file, draft).resolve();
    return std::move(draft.net);
}

} // namespace tervoxal
