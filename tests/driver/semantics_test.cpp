// Random networks and formulas: what SAT solvers say about the clause file has to agree with an
// explicit search of the network's states, and what they find has to be a run of the network.

#include "support.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <vector>

namespace {

using Random = std::mt19937;            // % n: unlike the distributions the same everywhere
using State = std::vector<std::size_t>; // the location of each automaton
using Moves = std::vector<std::pair<std::size_t, std::size_t>>;

struct Network {
    State initial;
    std::map<std::size_t, std::map<std::size_t, Moves>> actions; // by number and owner
    std::vector<std::array<std::size_t, 3>> props;               // automaton, location, number
    std::string text;
};

struct Formula {
    std::string text;
    std::function<bool(const State&)> holds;
};

constexpr std::array<std::size_t, 4> commonProps = {0, 1, 17, 2147483647};
/// The proposition that marks one location alone.
const auto ownProp = [](auto a, auto l) { return std::to_string(100 * (a + 1) + l); };

Network randomNetwork(Random& random) {
    Network network;
    network.initial.resize(1 + random() % 4);
    const std::size_t factor = 1 + random() % 6; // orders the shared actions and the own ones
    std::ostringstream text("network\n", std::ios::ate);
    for (std::size_t a = 0; a < network.initial.size(); ++a) {
        text << "automaton\n";
        const std::size_t locations = 1 + random() % 6;
        for (std::size_t l = locations; l-- > 0;) text << "location " << l << "\nend\n";
        for (auto i = 2 * locations + random() % (locations + 1); i > 0; --i) {
            const std::size_t action = factor * (random() % 3 == 0 ? 3 + a : random() % 3) % 7;
            const std::size_t source = random() % locations;
            const std::size_t target = (source + 1 + random() % 2) % locations;
            network.actions[action][a].emplace_back(source, target);
            text << "transition " << source << ' ' << target
                 << (action == 0 ? "" : ' ' + std::to_string(action)) << "\nend\n";
        }
        text << "valuation";
        for (std::size_t l = 0; l < locations; ++l) {
            text << '\n' << l << ' ' << ownProp(a, l);
            for (const std::size_t prop : commonProps) {
                if (random() % 4 != 0) continue;
                network.props.push_back({a, l, prop});
                text << ' ' << prop;
            }
        }
        text << "\nend\nend\n";
    }
    network.text = text.str() + "end\n";
    return network;
}

/// A formula about one state and about common propositions.
Formula randomFormula(Random& random, const Network& network, const State& state, int depth) {
    const auto oneOf = [&](const auto& choice) { return choice.at(random() % choice.size()); };
    if (depth > 0 && random() % 3 != 0) {
        const Formula l = randomFormula(random, network, state, depth - 1);
        if (random() % 50 == 0)
            return {l.text + oneOf(std::array{"EG", "EX", "EF", "EK"}), l.holds};
        const Formula r = randomFormula(random, network, state, depth - 1);
        const std::string op = random() % 50 == 0 ? "EU" : oneOf(std::array{"&", "&", "+"});
        return {l.text + r.text + op, [=](const State& s) {
                    return op == "&" ? l.holds(s) && r.holds(s) : l.holds(s) || r.holds(s);
                }};
    }
    if (random() % 3 == 0) {
        const std::size_t prop = oneOf(commonProps);
        const std::string sign = oneOf(std::array{"p", "p-"});
        return {sign + std::to_string(prop), [=, &network](const State& s) {
                    const auto on = [&](const auto& p) { return s[p[0]] == p[1] && p[2] == prop; };
                    return std::ranges::any_of(network.props, on) == (sign == "p");
                }};
    }
    std::string text = "T";
    for (std::size_t a = 0; a < state.size(); ++a) text += 'p' + ownProp(a, state[a]) + '&';
    return {text, [=](const State& s) { return s == state; }};
}

/// One action, all its owners together, every other automaton stays.
std::set<State> successors(const Network& network, const State& state) {
    std::set<State> all;
    for (const auto& [action, owners] : network.actions) {
        std::vector<State> next = {state};
        for (const auto& [a, moves] : owners) {
            std::vector<State> moved;
            for (State& s : next) {
                for (const auto& [source, target] : moves) {
                    s[a] = target;
                    if (source == state[a]) moved.push_back(s);
                }
            }
            next.swap(moved);
        }
        all.insert(next.begin(), next.end());
    }
    return all;
}

/// Whether some run of exactly k steps from the initial state meets the formula.
bool search(const Network& network, const Formula& formula, std::size_t k) {
    std::set<std::pair<bool, State>> layer = {{formula.holds(network.initial), network.initial}};
    for (; k > 0; --k) {
        std::set<std::pair<bool, State>> next;
        for (const auto& [met, state] : layer) {
            for (const State& s : successors(network, state))
                next.emplace(met || formula.holds(s), s);
        }
        layer.swap(next);
    }
    return !layer.empty() && layer.rbegin()->first;
}

/// The run that a solver found, read with nothing but the side file.
std::vector<State> decoded(const std::string& sideFile, const std::string& solution) {
    std::istringstream words(solution);
    const std::set<std::string> literals{std::istream_iterator<std::string>(words), {}};
    std::istringstream numbers(sideFile);
    const State layout{std::istream_iterator<std::size_t>(numbers), {}};
    const std::size_t automata = layout.at(0);
    std::vector<State> run(layout.at(automata + 1) + 1, State(automata));
    std::size_t variable = 0;
    for (State& state : run) {
        for (std::size_t a = 0; a < automata; ++a) {
            for (std::size_t i = 0; i < layout.at(a + 1); ++i) {
                if (literals.contains(std::to_string(++variable))) state[a] |= 1UL << i;
            }
        }
    }
    EXPECT_EQ(layout.at(automata + 2), variable) << "a step leaves bits of its states open";
    return run;
}

} // namespace

TEST(Semantics, solversAgreeWithASearchOfTheStates) {
    const char* const wanted = std::getenv("TERVOXAL_NETWORKS");
    const int networks = wanted == nullptr ? 200 : std::atoi(wanted);
    int satisfiable = 0;
    for (int seed = 1; seed <= networks; ++seed) {
        Random random(static_cast<unsigned>(seed));
        const Network network = randomNetwork(random);
        State state = network.initial; // the formula is about one that some run may meet
        for (auto i = random() % 6; i > 0; --i) {
            const std::set<State> next = successors(network, state);
            if (!next.empty()) state = random() % 2 == 0 ? *next.begin() : *next.rbegin();
        }
        Formula formula = randomFormula(random, network, state, 3);
        if (formula.text.find('E') != std::string::npos)
            formula.holds = [](auto&) { return false; };
        const std::string k = std::to_string(1 + random() % 6);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", k " + k + ", " + formula.text + '\n' +
                     network.text);
        const Scratch scratch;
        scratch.write("net.in", network.text);
        scratch.write("form.in", formula.text);
        ASSERT_EQ(scratch.run("\"$T\" net form " + k).status, 0);
        const bool reachable = search(network, formula, std::stoul(k));
        satisfiable += reachable ? 1 : 0;
        // One solver prefers true variables, the other one false ones.
        for (const char* solve :
             {"cadical -q --strict netk*.cnf >model", "minisat netk*.cnf model"}) {
            ASSERT_EQ(scratch.run(solve).status, reachable ? 10 : 20) << solve;
            if (!reachable) continue;
            const auto run = decoded(scratch.read("netk" + k + ".lck"), scratch.read("model"));
            ASSERT_EQ(run.size(), std::stoul(k) + 1);
            ASSERT_EQ(run[0], network.initial);
            for (std::size_t i = 1; i < run.size(); ++i) {
                ASSERT_TRUE(successors(network, run[i - 1]).contains(run[i])) << "step " << i;
            }
            EXPECT_TRUE(std::ranges::any_of(run, formula.holds));
        }
    }
    EXPECT_NEAR(satisfiable, 0.5 * networks, 0.25 * networks);
}
