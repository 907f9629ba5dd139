#include "import/safety.h"

#include "text/fatal.h"
#include "text/message.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace tervoxal {

namespace {

using Arcs = std::span<const PetriNet::Arc>;

/// The arcs of each transition.
std::vector<Arcs> arcsByTransition(const PetriNet& net) {
    std::vector<Arcs> arcs;
    auto first = net.arcs.begin();
    for (uint t = 0; t < net.transitions.size(); ++t) {
        const auto last = std::find_if(
            first, net.arcs.end(), [t](const PetriNet::Arc& arc) { return arc.transition != t; });
        arcs.emplace_back(first, last);
        first = last;
    }
    return arcs;
}

/// The conjunction or disjunction of expressions that bind as strongly.
void add(std::string& all, std::string_view oper, std::string_view more) {
    if (!all.empty()) all += oper;
    all += more;
}

/// What has to hold for a transition to put a second token into a unit; empty if it never does.
std::string secondToken(const PetriNet& net, const NetAutomata& automata, Arcs arcs) {
    std::string tokens;
    std::set<uint> takes;
    for (const PetriNet::Arc& arc : arcs) {
        const PetriNet::Place& place = net.places[arc.place];
        if (arc.takes == 0) continue;
        if (!takes.insert(place.unit).second) return {}; // there are never both
        add(tokens, " & ", 'p' + std::to_string(place.prop));
    }
    if (tokens.empty()) tokens = "true";
    std::string marked; // one of the units that only get a token
    std::set<uint> puts;
    for (const PetriNet::Arc& arc : arcs) {
        const uint unit = net.places[arc.place].unit;
        if (arc.puts == 0) continue;
        if (!puts.insert(unit).second) return tokens;
        if (takes.contains(unit)) continue;
        add(marked, " | ",
            "!at(" + std::to_string(unit + 1) + ',' + std::to_string(automata.noneOf[unit]) + ')');
    }
    return marked.empty() ? marked : tokens + " & (" + marked + ')';
}

/// The tokens of a safe net.
class TokenGame {
public:
    explicit TokenGame(const PetriNet& net) : net(net), units(net.units.size()) {
        for (const PetriNet::Place& place : net.places) {
            tokens.push_back(place.tokens);
            units[place.unit] += place.tokens;
        }
    }

    [[nodiscard]] bool possible(Arcs arcs) const {
        return std::ranges::all_of(
            arcs, [&](const PetriNet::Arc& arc) { return tokens[arc.place] >= arc.takes; });
    }
    void fire(Arcs arcs) {
        for (const PetriNet::Arc& arc : arcs) move(arc.place, arc.puts - arc.takes);
    }
    void takeBack(Arcs arcs) {
        for (const PetriNet::Arc& arc : arcs) move(arc.place, arc.takes - arc.puts);
    }
    /// Where a transition that fires has put a second token.
    [[nodiscard]] std::optional<std::string> second(Arcs arcs) const {
        for (const PetriNet::Arc& arc : arcs) {
            const PetriNet::Place& place = net.places[arc.place];
            if (tokens[arc.place] > 1) return "on " + shown(place.name);
            if (units[place.unit] > 1) return "into unit " + shown(net.units[place.unit]);
        }
        return {};
    }

private:
    void move(uint place, uint more) {
        tokens[place] += more;
        units[net.places[place].unit] += more;
    }

    const PetriNet& net;
    std::vector<uint> tokens; // by place
    std::vector<uint> units;
};

} // namespace

std::string secondTokenExpression(const PetriNet& net, const NetAutomata& automata) {
    std::string any;
    for (const Arcs arcs : arcsByTransition(net)) {
        const std::string own = secondToken(net, automata, arcs);
        if (!own.empty()) add(any, " | ", own);
    }
    return any.empty() ? "false" : any;
}

std::string toSecondToken(const PetriNet& net, std::span<const uint> transitions) {
    const std::vector<Arcs> arcs = arcsByTransition(net);
    TokenGame game(net);
    std::string lines;
    for (const uint t : transitions) {
        if (t >= arcs.size() || !game.possible(arcs[t])) {
            error("the path is none of the net, at step " + std::to_string(t));
        }
        game.fire(arcs[t]);
        lines += "  " + normalised(net.transitions[t].name) + '\n';
    }
    for (uint t = 0; t < arcs.size(); ++t) {
        if (!game.possible(arcs[t])) continue;
        game.fire(arcs[t]);
        if (const auto where = game.second(arcs[t])) {
            return lines + "  " + normalised(net.transitions[t].name) +
                   ", which puts a second token " + *where;
        }
        game.takeBack(arcs[t]);
    }
    error("the path is none to a second token");
}

} // namespace tervoxal
