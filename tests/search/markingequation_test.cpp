// The marking equation against an explicit search of the states of random networks, and weights
// that do not fit.

#include "search/markingequation.h"

#include "certificate/weightscheck.h"
#include "plain.h"
#include "search/pdr.h"
#include "search/portfolio.h"
#include "search/weightfinder.h"

#include <algorithm>
#include <array>
#include <limits>
#include <set>

namespace tervoxal {

namespace {

struct Network {
    explicit Network(const std::string& text) {
        scratch.write("net.in", text);
        read(model, scratch.path / "net");
        flat.emplace(model);
    }
    Scratch scratch;
    NetTimedModel model;
    std::optional<FlatNetwork> flat;
};

/// Automata that go round, each step by one of a few actions, most of which are shared; now and
/// then back as well. So not all of their states are reached.
std::string coupled(Random& random) {
    const std::size_t automata = 2 + random() % 4;
    std::ostringstream text;
    NetworkWriter net(text, "coupled");
    for (std::size_t a = 0; a < automata; ++a) {
        net.automaton("a" + std::to_string(a));
        const auto locations = static_cast<uint>(2 + random() % 3);
        for (uint l = locations; l-- > 0;) net.location(l);
        for (uint l = 0; l < locations; ++l) {
            const uint next = (l + 1) % locations;
            net.transition(l, next, static_cast<uint>(random() % (2 * automata)));
            if (random() % 4 == 0) {
                net.transition(next, l, static_cast<uint>(random() % (2 * automata)));
            }
        }
        net.valuation();
        net.endAutomaton();
    }
    net.end();
    return text.str();
}

bool isIn(const Certificate::Set& set, const State& state) {
    return std::ranges::all_of(set, [&](const Certificate::Places& places) {
        return places.has(state[places.automaton]);
    });
}

/// Whether no state that is reached is in any of the sets.
bool avoids(const std::map<State, int>& reached, const std::vector<Certificate::Set>& sets) {
    return std::ranges::none_of(reached, [&](const auto& entry) {
        return std::ranges::any_of(sets, [&](const auto& set) { return isIn(set, entry.first); });
    });
}

/// That the automata are in these locations, by automaton from 1 on.
Condition allAt(const State& state) {
    using Term = Condition::Term;
    Condition condition;
    for (uint a = 1; a < state.size(); ++a) {
        condition.tokens.push_back({Term::at, a, state[a]});
        if (a > 1) condition.tokens.push_back({Term::conjunction});
    }
    if (state.size() < 2) condition.tokens.push_back({Term::truth});
    return condition;
}

/// Automata of two locations, all of which take part in one action.
std::string handshake(uint automata) {
    std::ostringstream text;
    NetworkWriter net(text, "handshake");
    for (uint a = 0; a < automata; ++a) {
        net.automaton("a" + std::to_string(a));
        net.location(1);
        net.location(0);
        net.transition(0, 1, 0);
        net.valuation();
        net.endAutomaton();
    }
    net.end();
    return text.str();
}

} // namespace

// What it excludes is never reached, and a weight more or less is noticed where it matters.
TEST(MarkingEquation, agreesWithTheStates) {
    if (!LinearProgram::available) GTEST_SKIP() << "built without it";
    Random random(1);
    int excluded = 0;
    int damaged = 0;
    for (int i = 0; i < 300; ++i) {
        const Network network(coupled(random));
        const FlatNetwork& flat = *network.flat;
        const std::map<State, int> reached = distances(network.model);
        WeightFinder finder(flat);
        for (int n = 0; n < 10; ++n) {
            std::vector<uint> cube;
            for (uint a = 0; a < flat.automata.size(); ++a) {
                if (random() % 3 == 0) continue;
                const uint begin = flat.locationsBegin(a);
                const uint count = flat.automata[a].locationsEnd - begin;
                cube.push_back(begin + static_cast<uint>(random() % count));
            }
            auto weighed = finder.exclude(cube, {});
            if (!weighed) continue;
            ++excluded;
            EXPECT_EQ(weightsFault(flat, *weighed), "");
            EXPECT_TRUE(avoids(reached, weighed->sets));
            Certificate::Set whole;
            for (const uint l : cube) {
                whole.push_back({flat.automata[flat.locations[l].automaton].number,
                                 {flat.locations[l].number}});
            }
            weighed->sets.push_back(whole); // which was to be excluded, so it is as well
            EXPECT_EQ(weightsFault(flat, *weighed), "");
            uint& weight = weighed->weights[random() % weighed->weights.size()].weight;
            weight = random() % 2 == 0 ? weight - 1 : weight + 1;
            if (weightsFault(flat, *weighed).empty()) {
                EXPECT_TRUE(avoids(reached, weighed->sets));
            } else {
                ++damaged;
            }
        }
    }
    EXPECT_GT(excluded, 200);
    EXPECT_GT(damaged, 200);
}

// Facts of the equation serve the frames, and the certificate has weights and sets.
TEST(MarkingEquation, isAnEngineAmongOthers) {
    if (!LinearProgram::available) GTEST_SKIP() << "built without it";
    Random random(2);
    std::array<int, 4> seen = {0, 0, 0, 0}; // unreachable by weights, by sets, by both, not
    Board::Listener listener;
    listener.proving = [] { return true; };
    for (int i = 0; i < 300; ++i) {
        const Network network(coupled(random));
        const std::map<State, int> reached = distances(network.model);
        std::vector<Condition> conditions = {{{{Condition::Term::deadlock}}}};
        for (int n = 0; n < 6; ++n) {
            conditions.push_back(allAt(randomState(network.model, random)));
            if (random() % 2 == 0) {
                conditions.back().tokens.push_back(
                    {Condition::Term::enabled, static_cast<uint>(random() % 7)});
                conditions.back().tokens.push_back({random() % 2 == 0
                                                        ? Condition::Term::conjunction
                                                        : Condition::Term::disjunction});
            }
        }
        for (const bool alone : {true, false}) {
            Board board(*network.flat, conditions, {});
            Portfolio::Engines engines;
            engines.push_back(std::make_unique<MarkingEquation>());
            if (!alone) engines.push_back(std::make_unique<PropertyDirectedReachability>(board));
            Portfolio(board, std::move(engines), {}, {}).run(listener);
            for (const Board::Fact& fact : board.facts()) {
                EXPECT_TRUE(avoids(reached, fact.proof.sets));
            }
            for (std::size_t q = 0; q < board.size(); ++q) {
                const bool ever = least(reached, [&](const State& state) {
                                      return holds(network.model, conditions[q], state);
                                  }) >= 0;
                EXPECT_TRUE(!ever || !board[q].unreachable);
                EXPECT_TRUE(alone || ever != board[q].unreachable);
                const auto& certificate = board[q].certificate;
                const bool weights = certificate && !certificate->weighed.empty();
                const bool sets = certificate && !certificate->sets.empty();
                ++seen.at(weights ? sets ? 2 : 0 : sets ? 1 : 3);
            }
        }
    }
    EXPECT_GT(std::ranges::min(seen), 20) << list(seen);
}

// Weights and a set of an automaton of locations 0 to 3, one action up, one down by 2.
TEST(MarkingEquation, refusesWeightsThatDoNotFit) {
    std::ostringstream text;
    NetworkWriter net(text, "steps");
    for (const char* const name : {"a", "b"}) {
        net.automaton(name);
        for (uint l = 4; l-- > 0;) net.location(l);
        const bool first = name[0] == 'a';
        for (uint l = 0; l < 3; ++l) net.transition(first ? l : 3 - l, first ? l + 1 : 2 - l, 0);
        for (uint l = 0; l < 3; ++l) net.transition(l, l + 1, 1);
        net.valuation();
        net.endAutomaton();
    }
    net.end();
    const Network network(text.str());
    constexpr uint most = std::numeric_limits<uint>::max();
    const Certificate::Weighed good{{{1, 1, 1}, {1, 2, 2}, {1, 3, 3}}, {}};
    const char* const grows = "an action increases a sum of weights";
    const char* const reached = "a set has a state whose sum of weights may be reached";
    const std::array<std::pair<Certificate::Weighed, const char*>, 7> table = {{
        {{{}, {}}, ""},
        {{{{1, 0, 1}}, {}}, ""},
        {{{{1, 0, 1}}, {{{1, {0}}}}}, reached},
        {{{{1, 3, 1}}, {{{1, {3}}}}}, grows},
        {{{{1, 0, most}, {1, 1, most}, {1, 2, most}, {1, 3, most}}, {{}}}, reached},
        {{{{1, 3, most}, {2, 3, most}}, {}}, grows},
        {{{{9, 0, 1}, {1, 9, 1}}, {{{1, {}}}}}, ""},
    }};
    for (const auto& [weighed, fault] : table)
        EXPECT_EQ(weightsFault(*network.flat, weighed), fault);
}

TEST(MarkingEquation, hasNoLimitsOfItsOwn) {
    if (!LinearProgram::available) GTEST_SKIP() << "built without it";
    for (const uint automata : {0U, 2U, 1000U}) {
        const Network network(handshake(automata));
        State mixed(automata + 1);
        if (automata > 0) mixed[automata] = 1;
        Board board(*network.flat, {allAt(mixed), {{{Condition::Term::falsity}}}}, {});
        Portfolio::Engines engines;
        engines.push_back(std::make_unique<MarkingEquation>());
        Portfolio(board, std::move(engines), {}, {}).run({});
        EXPECT_EQ(board[0].unreachable, automata > 0) << automata;
        EXPECT_TRUE(board[1].unreachable);
    }
}

} // namespace tervoxal
