#include "names.h"
#include "petrinet.h"
#include "pnml.h"
#include "support.h"

#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

using Places = std::set<uint>;
using State = std::vector<uint>; // the location of each automaton, from index 1

/// A net, and the token game on it.
struct Net {
    explicit Net(std::mt19937& random) : hasUnits(random() % 2 == 0) {
        const auto places = static_cast<uint>(1 + random() % 9);
        const auto below = [&](uint n) { return static_cast<uint>(random() % n); };
        Places full; // units
        for (uint p = 0; p < places; ++p) {
            unit.push_back(hasUnits ? below(std::min(places, 4U)) : p);
            if (random() % 4 != 0 && full.insert(unit[p]).second) initial.insert(p);
        }
        for (auto& [takes, puts] : transitions) {
            for (auto n = random() % 4; n > 1; --n) takes.insert(below(places));
            for (auto n = random() % 4; n > 1; --n) puts.insert(below(places));
        }
    }

    /// The marking that the transition leads to; none where it is not possible.
    [[nodiscard]] std::optional<Places> fired(Places marking, std::size_t t) const {
        const auto& [takes, puts] = transitions[t];
        if (takes.empty() && puts.empty()) return std::nullopt;
        for (const uint p : takes) {
            if (marking.erase(p) == 0) return std::nullopt;
        }
        Places full; // units
        for (const uint p : marking) full.insert(unit[p]);
        for (const uint p : puts) {
            if (!full.insert(unit[p]).second) return std::nullopt;
            marking.insert(p);
        }
        return marking;
    }

    /// Nodes keep their order. Arcs, references and units stand anywhere among them.
    [[nodiscard]] std::string pnml(std::mt19937& random) const {
        const auto arc = [](const std::string& source, const std::string& target) {
            return "<arc source='" + source + "' target='" + target + "'/>";
        };
        const auto reference = [](const std::string& id) {
            return "<page><referencePlace id='r" + id + "' ref='p" + id + "'/></page>";
        };
        std::vector<std::string> nodes;
        std::vector<std::string> others;
        std::ostringstream units;
        for (uint p = 0; p < unit.size(); ++p) {
            const std::string id = std::to_string(p);
            nodes.push_back("<place id='p" + id + "'><initialMarking><text>" +
                            std::to_string(initial.count(p)) + "</text></initialMarking></place>");
            others.push_back(reference(id));
            units << "<unit id='u" << id << "'><places>";
            for (uint q = 0; q < unit.size(); ++q) {
                if (unit[q] == p) units << " p" << q;
            }
            units << "</places></unit>";
        }
        if (hasUnits) {
            others.push_back("<toolspecific tool='nupn'><structure safe='true'>" + units.str() +
                             "</structure></toolspecific>");
        }
        for (std::size_t t = 0; t < transitions.size(); ++t) {
            const std::string id = "t" + std::to_string(t);
            nodes.push_back("<transition id='" + id + "'/>");
            for (const uint p : transitions[t].first)
                others.push_back(arc("p" + std::to_string(p), id));
            for (const uint p : transitions[t].second)
                others.push_back(arc(id, "r" + std::to_string(p)));
        }
        std::shuffle(others.begin(), others.end(), random);
        std::string text = "<pnml><net>";
        for (const std::string& node : nodes) {
            text += node;
            for (; !others.empty() && random() % 3 != 0; others.pop_back()) text += others.back();
        }
        for (const std::string& other : others) text += other;
        return text + "</net></pnml>";
    }

    bool hasUnits;
    std::vector<uint> unit; // of each place
    Places initial;
    std::array<std::pair<Places, Places>, 8> transitions;
};

std::optional<State> fired(const NetTimedModel& model, State state, uint action) {
    const auto automata = model.actionAutomata.find(action);
    if (automata == model.actionAutomata.end()) return std::nullopt;
    for (const uint a : automata->second) {
        const auto& moves = model.actionEdges.at({a, action});
        const auto move = moves.lower_bound({state[a], 0});
        if (move == moves.end() || move->first != state[a]) return std::nullopt;
        state[a] = move->second;
    }
    return state;
}

Places marking(const NetTimedModel& model, const State& state) {
    Places places;
    for (const auto& [location, prop] : model.valuation) {
        if (state[location.first] == location.second) places.insert(prop - 1);
    }
    return places;
}

TEST(PetriNet, takesTheStepsOfTheTokenGame) {
    std::mt19937 random(1);
    std::size_t states = 0;
    for (int i = 0; i < 500; ++i) {
        const Net net(random);
        const Scratch dir;
        dir.write("net.pnml", net.pnml(random));
        SCOPED_TRACE(dir.read("net.pnml"));
        const PetriNet read = readPnml(dir.path / "net.pnml");
        std::ostringstream text;
        writeNetwork(read, automataOf(read), text);
        dir.write("net.in", text.str());
        NetTimedModel model;
        Names names;
        readNamedNetwork(model, names, dir.path / "net");

        const State initial(static_cast<std::size_t>(model.nrOfAutomata) + 1);
        ASSERT_EQ(marking(model, initial), net.initial);
        std::set<State> seen{initial};
        for (std::vector<State> open{initial}; !open.empty();) {
            const State state = open.back();
            open.pop_back();
            for (uint t = 0; t < net.transitions.size(); ++t) {
                const auto next = fired(model, state, t);
                const auto expected = net.fired(marking(model, state), t);
                ASSERT_EQ(next.has_value(), expected.has_value()) << t;
                if (!next) continue;
                ASSERT_EQ(marking(model, *next), *expected) << t;
                if (seen.insert(*next).second) open.push_back(*next);
            }
        }
        states += seen.size();
    }
    EXPECT_GT(states, 2000);
}

} // namespace
