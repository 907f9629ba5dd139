#include "petrinet.h"

#include "message.h"
#include "networkwriter.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <tuple>
#include <utility>

namespace {

constexpr uint nowhere = ~0U;
constexpr std::size_t longestRepeated = 100; // bytes

/// The numbers of the places, unit by unit, each with its places in ascending order.
std::vector<uint> placesByUnit(const PetriNet& net) {
    std::vector<uint> next(net.units.size() + 1);
    for (const PetriNet::Place& place : net.places) ++next[place.unit + 1];
    for (std::size_t u = 1; u < next.size(); ++u) next[u] += next[u - 1];
    std::vector<uint> places(net.places.size());
    for (uint p = 0; p < places.size(); ++p) places[next[net.places[p].unit]++] = p;
    return places;
}

void layOutLocations(const PetriNet& net, NetAutomata& automata) {
    // One location of each unit is 0 and known ahead. The others are counted from 1.
    std::vector<uint>& none = automata.noneOf;
    none.assign(net.units.size(), 0);
    for (const PetriNet::Place& place : net.places) {
        if (place.marked) none[place.unit] = nowhere;
    }
    std::vector<uint> next(net.units.size(), 1);
    for (const PetriNet::Place& place : net.places) {
        automata.locationOf.push_back(place.marked ? 0 : next[place.unit]++);
    }
    for (std::size_t u = 0; u < none.size(); ++u) {
        if (none[u] == nowhere) none[u] = next[u];
    }
}

/// Appends the moves of one transition, whose arcs come unit by unit. Gives the reason if there are
/// none.
std::string addMoves(const PetriNet& net, NetAutomata& automata,
                     std::span<const PetriNet::Arc> arcs) {
    if (arcs.empty()) return "it has no place";
    const std::size_t before = automata.moves.size();
    for (std::size_t i = 0; i < arcs.size();) {
        const uint unit = net.places[arcs[i].place].unit;
        NetAutomata::Move move{unit, nowhere, nowhere, arcs[i].transition};
        const char* twice = nullptr;
        for (; i < arcs.size() && net.places[arcs[i].place].unit == unit; ++i) {
            const uint location = automata.locationOf[arcs[i].place];
            if (arcs[i].takes && std::exchange(move.source, location) != nowhere) {
                twice = "it takes from two places of unit ";
            }
            if (arcs[i].puts && std::exchange(move.target, location) != nowhere) {
                twice = "it puts on two places of unit ";
            }
        }
        if (twice != nullptr) {
            automata.moves.resize(before);
            return twice + shown(net.units[unit]);
        }
        if (move.source == nowhere) move.source = automata.noneOf[unit];
        if (move.target == nowhere) move.target = automata.noneOf[unit];
        automata.moves.push_back(move);
    }
    return {};
}

} // namespace

NetAutomata automataOf(const PetriNet& net) {
    NetAutomata automata;
    layOutLocations(net, automata);

    std::vector<PetriNet::Arc> arcs = net.arcs;
    std::sort(arcs.begin(), arcs.end(), [&](const PetriNet::Arc& x, const PetriNet::Arc& y) {
        return std::tuple(x.transition, net.places[x.place].unit, x.place) <
               std::tuple(y.transition, net.places[y.place].unit, y.place);
    });
    auto first = arcs.cbegin();
    for (uint t = 0; t < net.transitions.size(); ++t) {
        const auto last = std::find_if(
            first, arcs.cend(), [t](const PetriNet::Arc& arc) { return arc.transition != t; });
        std::string reason = addMoves(net, automata, {first, last});
        if (!reason.empty()) automata.leftOut.push_back({t, std::move(reason)});
        first = last;
    }
    std::stable_sort(automata.moves.begin(), automata.moves.end(),
                     [](const auto& x, const auto& y) { return x.unit < y.unit; });
    return automata;
}

void writeNetwork(const PetriNet& net, const NetAutomata& automata, std::ostream& out) {
    NetworkWriter writer(out, net.name);
    const std::vector<uint> places = placesByUnit(net);
    std::vector<bool> named(net.transitions.size());
    auto place = places.begin();
    auto move = automata.moves.begin();
    for (uint u = 0; u < net.units.size(); ++u) {
        writer.automaton(net.units[u]);
        const auto isHere = [&](uint p) { return net.places[p].unit == u; };
        const auto end = std::find_if_not(place, places.end(), isHere);
        const uint none = automata.noneOf[u];
        if (none == 0) writer.location(none, "none");
        for (auto p = place; p != end; ++p) {
            writer.location(automata.locationOf[*p], net.places[*p].name);
        }
        if (none != 0) writer.location(none, "none");
        for (; move != automata.moves.end() && move->unit == u; ++move) {
            const std::string& name = net.transitions[move->action].name;
            const bool repeats = named[move->action] && name.size() > longestRepeated;
            named[move->action] = true;
            writer.transition(move->source, move->target, move->action, repeats ? "" : name);
        }
        writer.valuation();
        for (; place != end; ++place) {
            writer.value(automata.locationOf[*place], *place + 1, net.places[*place].name);
        }
        writer.endAutomaton();
    }
    writer.end();
}
