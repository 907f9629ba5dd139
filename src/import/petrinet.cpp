#include "import/petrinet.h"

#include "model/netids.h"
#include "model/networkwriter.h"
#include "text/message.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <numeric>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

namespace tervoxal {

namespace {

constexpr uint nowhere = ~0U;
constexpr std::size_t longestRepeated = 100; // bytes

/// The numbers of the places, unit by unit, each with its places in ascending order.
std::vector<uint> placesByUnit(const PetriNet& net) {
    std::vector<uint> places(net.places.size());
    std::iota(places.begin(), places.end(), 0U);
    std::ranges::stable_sort(places, {}, [&](uint p) { return net.places[p].unit; });
    return places;
}

/// The location of a place that has so many tokens, and the tokens that it has there.
uint swapped(const PetriNet::Place& place, uint n) {
    return n == place.tokens ? 0 : n == 0 ? place.tokens : n;
}

void layOutLocations(const PetriNet& net, NetAutomata& automata) {
    // One location of each unit is 0 and known before. The others are counted from 1.
    std::vector<uint>& none = automata.noneOf;
    none.assign(net.units.size(), 0);
    for (const PetriNet::Place& place : net.places) {
        if (place.tokens > 0) none[place.unit] = nowhere;
    }
    std::vector<uint> next(net.units.size(), 1);
    for (const PetriNet::Place& place : net.places) {
        automata.locationOf.push_back(place.tokens > 0 ? 0 : next[place.unit]++);
    }
    for (std::size_t u = 0; u < none.size(); ++u) {
        if (none[u] == nowhere) none[u] = next[u];
    }
}

/// Appends the moves of an arc of a bounded net.
void addCounts(const PetriNet& net, NetAutomata& automata, const PetriNet::Arc& arc) {
    const PetriNet::Place& place = net.places[arc.place];
    for (uint n = arc.takes; n <= net.bound && n - arc.takes + arc.puts <= net.bound; ++n) {
        automata.moves.push_back({place.unit, swapped(place, n),
                                  swapped(place, n - arc.takes + arc.puts), arc.transition});
    }
}

/// Appends the moves of one transition, whose arcs come unit by unit. Gives the reason if it can
/// have none.
std::string addMoves(const PetriNet& net, NetAutomata& automata,
                     std::span<const PetriNet::Arc> arcs) {
    if (net.bound > 0) {
        for (const PetriNet::Arc& arc : arcs) addCounts(net, automata, arc);
        return {};
    }
    const std::size_t before = automata.moves.size();
    for (std::size_t i = 0; i < arcs.size();) {
        const uint unit = net.places[arcs[i].place].unit;
        NetAutomata::Move move{unit, nowhere, nowhere, arcs[i].transition};
        const char* twice = nullptr;
        for (; i < arcs.size() && net.places[arcs[i].place].unit == unit; ++i) {
            const uint location = automata.locationOf[arcs[i].place];
            if (arcs[i].takes > 0 && std::exchange(move.source, location) != nowhere) {
                twice = "takes from two places of unit ";
            }
            if (arcs[i].puts > 0 && std::exchange(move.target, location) != nowhere) {
                twice = "puts on two places of unit ";
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
    if (net.bound == 0) layOutLocations(net, automata);

    std::vector<PetriNet::Arc> arcs = net.arcs;
    std::sort(arcs.begin(), arcs.end(), [&](const PetriNet::Arc& x, const PetriNet::Arc& y) {
        return std::tuple(x.transition, net.places[x.place].unit, x.place) <
               std::tuple(y.transition, net.places[y.place].unit, y.place);
    });
    auto first = arcs.cbegin();
    for (uint t = 0; t < net.transitions.size(); ++t) {
        const auto last = std::find_if(
            first, arcs.cend(), [t](const PetriNet::Arc& arc) { return arc.transition != t; });
        const bool always = first == last;
        std::string reason = always ? "has no place" : addMoves(net, automata, {first, last});
        if (!reason.empty()) automata.apart.push_back({t, always, std::move(reason)});
        first = last;
    }
    std::stable_sort(automata.moves.begin(), automata.moves.end(),
                     [](const auto& x, const auto& y) { return x.unit < y.unit; });
    return automata;
}

namespace {

/// Writes a net automaton by automaton.
class Writer {
public:
    Writer(const PetriNet& net, const NetAutomata& automata, std::ostream& out)
        : net(net), automata(automata), writer(out, net.name), places(placesByUnit(net)),
          named(net.transitions.size()) {
        for (const PetriNet::Place& place : net.places) {
            firstCount = std::max(firstCount, place.prop + 1);
        }
    }

    void write() {
        auto move = automata.moves.begin();
        auto first = places.cbegin();
        for (uint u = 0; u < net.units.size(); ++u) {
            const auto last = std::find_if_not(first, places.cend(),
                                               [&](uint p) { return net.places[p].unit == u; });
            const std::span<const uint> own(first, last);
            first = last;
            writer.automaton(net.units[u]);
            if (net.bound == 0) {
                writeLocations(u, own);
            } else {
                writeCounts(own.front());
            }
            for (; move != automata.moves.end() && move->unit == u; ++move) writeMove(*move);
            writer.valuation();
            if (net.bound == 0) {
                writeProps(own);
            } else {
                writeCountProps(own.front());
            }
            writer.endAutomaton();
        }
        if (!automata.apart.empty()) writeApart();
        writeIds();
        writer.end();
    }

private:
    void writeLocations(uint unit, std::span<const uint> own) {
        const uint none = automata.noneOf[unit];
        if (none == 0) writer.location(none, "none");
        for (const uint p : own) writer.location(automata.locationOf[p], net.places[p].name);
        if (none != 0) writer.location(none, "none");
    }
    void writeCounts(uint p) {
        for (uint l = 0; l <= net.bound; ++l) {
            writer.location(l, std::to_string(swapped(net.places[p], l)));
        }
    }
    void writeMove(const NetAutomata::Move& move) {
        const std::string& name = net.transitions[move.action].name;
        const bool repeats = named[move.action] && name.size() > longestRepeated;
        named[move.action] = true;
        writer.transition(move.source, move.target, move.action, repeats ? "" : name);
    }
    void writeApart() {
        writer.automaton("always or never");
        writer.location(0, "always");
        if (!std::ranges::all_of(automata.apart, &NetAutomata::Apart::always)) {
            writer.location(1, "never");
        }
        for (const auto& [transition, always, reason] : automata.apart) {
            const uint location = always ? 0 : 1;
            writer.transition(location, location, transition, net.transitions[transition].name);
        }
        writer.valuation();
        writer.endAutomaton();
    }
    void writeProps(std::span<const uint> own) {
        for (const uint p : own) {
            writer.value(automata.locationOf[p], net.places[p].prop, net.places[p].name);
        }
    }
    void writeCountProps(uint p) {
        const PetriNet::Place& place = net.places[p];
        std::vector<uint> props;
        for (uint n = 1; n <= net.bound; ++n) {
            const uint l = swapped(place, n);
            writer.value(l, place.prop, n == 1 ? place.name : "");
            props.push_back(countOf(p) + n - 1);
            writer.value(l, props, place.name + ">=" + std::to_string(n));
        }
    }
    /// The number of the proposition ">=1" of a place of a bounded net.
    [[nodiscard]] uint countOf(uint p) const { return firstCount + p * net.bound; }
    void writeIds() {
        std::map<std::string_view, uint> places;
        for (const PetriNet::Place& place : net.places) ++places[place.name];
        for (uint p = 0; p < net.places.size(); ++p) {
            const auto& [id, name, unit, tokens, prop] = net.places[p];
            if (places[name] == 1 && tellsId(name, id)) continue;
            const uint first = net.bound == 0 ? prop : countOf(p);
            writer.comment(placeId(id, first, first + std::max(net.bound, 1U) - 1));
        }
        std::map<std::string_view, uint> transitions;
        for (const PetriNet::Transition& t : net.transitions) ++transitions[t.name];
        for (uint t = 0; t < net.transitions.size(); ++t) {
            const auto& [id, name, line] = net.transitions[t];
            if (transitions[name] > 1 || !tellsId(name, id)) {
                writer.comment(transitionId(id, t));
            }
        }
    }

    const PetriNet& net;
    const NetAutomata& automata;
    NetworkWriter writer;
    std::vector<uint> places; // by unit
    std::vector<bool> named;  // of each transition: its name has been written
    uint firstCount = 0;      // the proposition ">=1" of the first place
};

} // namespace

void writeNetwork(const PetriNet& net, const NetAutomata& automata, std::ostream& out) {
    Writer(net, automata, out).write();
}

} // namespace tervoxal
