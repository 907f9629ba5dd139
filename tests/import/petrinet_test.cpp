#include "import/petrinet.h"
#include "import/pnml.h"
#include "import/safety.h"
#include "model/names.h"
#include "model/netids.h"
#include "plain.h"
#include "query/vocabulary.h"
#include "support.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

using Marking = std::vector<uint>; // the tokens of each place

/// A net, and the token game on it.
struct Net {
    explicit Net(std::mt19937& random)
        : bound(random() % 2 == 0 ? 0 : static_cast<uint>(1 + random() % 3)),
          hasUnits(random() % 2 == 0), firstName(random() % 2 == 0 ? 10 : -1) {
        const auto places = static_cast<uint>(1 + random() % (bound == 0 ? 9 : 5));
        const auto below = [&](uint n) { return static_cast<uint>(random() % n); };
        std::set<uint> full; // units
        for (uint p = 0; p < places; ++p) {
            unit.push_back(hasUnits ? below(std::min(places, 4U)) : p);
            const bool may = random() % 4 != 0 && full.insert(unit[p]).second;
            initial.push_back(bound > 0 ? below(bound + 1) : may ? 1 : 0);
        }
        for (auto& [takes, puts] : transitions) {
            for (Marking* const of : {&takes, &puts}) {
                of->resize(places);
                for (auto n = random() % 4; n > 1; --n)
                    (*of)[below(places)] = 1 + (bound == 0 ? 0 : below(bound));
            }
        }
    }

    /// The marking that the transition leads to; none where it lacks a token.
    [[nodiscard]] std::optional<Marking> fired(Marking marking, std::size_t t) const {
        const auto& [takes, puts] = transitions[t];
        for (uint p = 0; p < unit.size(); ++p) {
            if (marking[p] < takes[p]) return std::nullopt;
            marking[p] += puts[p] - takes[p];
        }
        return marking;
    }
    /// Whether the tokens of a place, or of a unit where there is no bound, are too many.
    [[nodiscard]] bool exceeds(const Marking& marking) const {
        Marking tokens(unit.size());
        for (uint p = 0; p < unit.size(); ++p) tokens[bound > 0 ? p : unit[p]] += marking[p];
        return std::ranges::any_of(tokens, [&](uint n) { return n > std::max(bound, 1U); });
    }
    [[nodiscard]] std::string nameOf(uint p) const {
        return (firstName < 0 ? "x" : "p") +
               std::to_string(firstName < 0 ? p : static_cast<uint>(firstName) - p);
    }
    /// The propositions of a marking by their names, and the numbers of those of the places.
    [[nodiscard]] std::set<std::string> propsOf(const Marking& marking) const {
        std::set<std::string> props;
        for (uint p = 0; p < unit.size(); ++p) {
            const uint number = firstName < 0 ? p + 1 : static_cast<uint>(firstName) - p;
            if (marking[p] > 0) props.insert(nameOf(p) + ' ' + std::to_string(number));
            for (uint n = 1; n <= marking[p] && bound > 0; ++n)
                props.insert(nameOf(p) + ">=" + std::to_string(n));
        }
        return props;
    }

    /// Nodes keep their order. Arcs, references and units stand anywhere among them.
    [[nodiscard]] std::string pnml(std::mt19937& random) const {
        const auto arc = [&](const std::string& source, const std::string& target, uint weight) {
            const uint part = bound > 0 ? static_cast<uint>(random() % weight) : 0; // in two arcs
            std::string text;
            for (const uint w : {part, weight - part}) {
                const std::string inscription =
                    "<inscription><text>" + std::to_string(w) + "</text></inscription>";
                if (w > 0)
                    text.append("<arc source='")
                        .append(source)
                        .append("' target='")
                        .append(target)
                        .append("'>")
                        .append(w > 1 ? inscription : "")
                        .append("</arc>");
            }
            return text;
        };
        const auto reference = [](const std::string& id) {
            return "<page><referencePlace id='r" + id + "' ref='p" + id + "'/></page>";
        };
        std::vector<std::string> nodes;
        std::vector<std::string> others;
        std::ostringstream units;
        for (uint p = 0; p < unit.size(); ++p) {
            const std::string id = std::to_string(p);
            nodes.push_back("<place id='p" + id + "'><name><text>" + nameOf(p) +
                            "</text></name><initialMarking><text>" + std::to_string(initial[p]) +
                            "</text></initialMarking></place>");
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
            for (uint p = 0; p < unit.size(); ++p) {
                const auto& [takes, puts] = transitions[t];
                if (takes[p] > 0) others.push_back(arc("p" + std::to_string(p), id, takes[p]));
                if (puts[p] > 0) others.push_back(arc(id, "r" + std::to_string(p), puts[p]));
            }
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

    uint bound;
    bool hasUnits;
    int firstName;          // places are called p and a number from it down; negative: x and theirs
    std::vector<uint> unit; // of each place
    Marking initial;
    std::array<std::pair<Marking, Marking>, 8> transitions;
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

/// The propositions of a state like those of a marking.
std::set<std::string> propsOf(const NetTimedModel& model, const Names& names, const State& state) {
    std::set<std::string> props;
    for (const auto& [location, prop] : model.valuation) {
        if (state[location.first] != location.second) continue;
        const std::string name = names.prop(prop);
        const bool counts = name.find('=') != std::string::npos;
        props.insert(name + (counts ? "" : ' ' + std::to_string(prop)));
    }
    return props;
}

/// The tokens of each place and the transitions that there are, by their ids.
Marking tokensById(const NetTimedModel& model, const NetIds& ids, const State& state,
                   std::size_t places) {
    std::set<uint> props;
    for (const auto& [location, prop] : model.valuation) {
        if (state[location.first] == location.second) props.insert(prop);
    }
    Marking marking;
    for (std::size_t p = 0; p < places; ++p) {
        const auto [first, last] = ids.places.at("p" + std::to_string(p));
        marking.push_back(
            static_cast<uint>(std::distance(props.lower_bound(first), props.upper_bound(last))));
    }
    return marking;
}

TEST(PetriNet, takesTheStepsOfTheTokenGame) {
    std::mt19937 random(1);
    std::size_t states = 0;
    std::size_t unsafe = 0;
    for (int i = 0; i < 500; ++i) {
        const Net net(random);
        const Scratch dir;
        dir.write("net.pnml", net.pnml(random));
        SCOPED_TRACE(dir.read("net.pnml"));
        const PetriNet read = readPnml(dir.path / "net.pnml", net.bound);
        const NetAutomata automata = automataOf(read);
        std::ostringstream text;
        writeNetwork(read, automata, text);
        dir.write("net.in", text.str());
        NetTimedModel model;
        Names names;
        readNamedNetwork(model, names, dir.path / "net");
        const NetIds ids = readNetIds(model, names, dir.path / "net");
        for (uint t = 0; t < net.transitions.size(); ++t)
            ASSERT_EQ(ids.transitions.at("t" + std::to_string(t)), t);
        const Condition second = net.bound > 0 ? Condition{{{Condition::Term::falsity}}}
                                               : expressionOf(secondTokenExpression(read, automata),
                                                              vocabularyOf(model, names))
                                                     .condition;
        std::map<State, std::vector<uint>> ways; // the actions to each state

        const State initial(static_cast<std::size_t>(model.nrOfAutomata) + 1);
        ASSERT_EQ(propsOf(model, names, initial), net.propsOf(net.initial));
        std::map<State, Marking> seen{{initial, net.initial}};
        for (std::vector<State> open{initial}; !open.empty();) {
            const State state = open.back();
            open.pop_back();
            ASSERT_EQ(tokensById(model, ids, state, net.unit.size()), seen[state]);
            bool isSecond = false;
            for (uint t = 0; t < net.transitions.size(); ++t) {
                const auto next = fired(model, state, t);
                auto expected = net.fired(seen[state], t);
                if (expected && net.exceeds(*expected)) {
                    isSecond = true;
                    expected.reset();
                }
                ASSERT_EQ(next.has_value(), expected.has_value()) << t;
                if (!next) continue;
                if (!seen.contains(*next)) {
                    ways[*next] = ways[state];
                    ways[*next].push_back(t);
                }
                ASSERT_EQ(propsOf(model, names, *next), net.propsOf(*expected)) << t;
                if (seen.emplace(*next, *expected).second) open.push_back(*next);
                ASSERT_EQ(seen[*next], *expected) << t;
            }
            if (net.bound > 0) continue;
            ASSERT_EQ(holds(model, second, state), isSecond);
            if (!isSecond) continue;
            ++unsafe;
            const std::string path = toSecondToken(read, ways[state]);
            ASSERT_EQ(std::ranges::count(path, '\n'), std::ssize(ways[state]));
            ASSERT_NE(path.find(" a second token "), std::string::npos);
        }
        states += seen.size();
    }
    EXPECT_GT(states, 2000);
    EXPECT_GT(unsafe, 500);
}

} // namespace

} // namespace tervoxal
