// Random networks and formulas: what SAT solvers say about the clause file has to agree with an
// explicit search of the network's states, and what they find has to be a run of the network.

#include "support.h"

#include <array>
#include <iterator>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

using Random = std::mt19937;              // % n: unlike the distributions the same everywhere
using State = std::vector<std::size_t>;   // the location of each automaton
using Formula = std::vector<std::string>; // its tokens
using Moves = std::vector<std::pair<std::size_t, std::size_t>>;

struct Network {
    std::map<std::size_t, std::map<std::size_t, Moves>> actions; // by number and owner
    std::vector<std::vector<std::set<int>>> props;               // of each automaton's locations
    std::string text;
};

constexpr std::array propositions = {0, 1, 2, 3, 17, 2147483647};

Network randomNetwork(Random& random) {
    Network network;
    std::ostringstream text;
    text << "network\n";
    network.props.resize(1 + random() % 4);
    for (std::size_t a = 0; a < network.props.size(); ++a) {
        const std::size_t locations = 1 + random() % 6;
        network.props[a].resize(locations);
        text << "automaton\n";
        for (std::size_t l = locations; l-- > 0;) text << "location " << l << "\nend\n";
        for (auto i = 1 + random() % (2 * locations + 1); i > 0; --i) {
            // Each automaton has an action of its own, numbered between the shared ones.
            const std::size_t action = random() % 2 == 0 ? 4 * a + 1 : 4 * (random() % 4);
            const std::size_t source = random() % locations;
            const std::size_t target = random() % locations;
            network.actions[action][a].emplace_back(source, target);
            text << "transition " << source << ' ' << target;
            if (action != 0) text << ' ' << action;
            text << "\nend\n";
        }
        text << "valuation";
        for (std::size_t l = 0; l < locations; ++l) {
            text << '\n' << l;
            for (const int prop : propositions) {
                if (random() % 6 != 0) continue;
                network.props[a][l].insert(prop);
                text << ' ' << prop;
            }
        }
        text << "\nend\nend\n";
    }
    network.text = text.str() + "end\n";
    return network;
}

Formula randomFormula(Random& random) {
    const auto oneOf = [&](const auto& choice) { return choice.at(random() % choice.size()); };
    Formula formula;
    auto leaves = 1 + random() % 5;
    for (int open = 0; leaves > 0 || open > 1;) {
        if (open > 0 && random() % 80 == 0) {
            formula.emplace_back(oneOf(std::array{"EG", "EX", "EF", "EK"}));
        } else if (open > 1 && (leaves == 0 || random() % 2 == 0)) {
            const std::string op = oneOf(std::array{"&", "&", "+"});
            formula.push_back(random() % 40 == 0 ? "EU" : op);
            --open;
        } else {
            const std::string prop = std::to_string(oneOf(propositions));
            const std::string sign = oneOf(std::array{"p", "p", "p-"});
            formula.push_back(random() % 12 == 0 ? "T" : sign + prop);
            --leaves;
            ++open;
        }
    }
    return formula;
}

bool holds(const Formula& formula, const Network& network, const State& state) {
    std::vector<bool> values;
    for (const std::string& token : formula) {
        if (token[0] == 'E') return false; // the formula as a whole
        if (token == "&" || token == "+") {
            const bool right = values.back();
            values.pop_back();
            values.back() = token == "&" ? values.back() && right : values.back() || right;
        } else {
            const bool negated = token[1] == '-';
            bool carried = token == "T";
            for (std::size_t a = 0; a < state.size() && !carried; ++a) {
                carried = network.props[a][state[a]].contains(std::stoi(&token[negated ? 2 : 1]));
            }
            values.push_back(carried != negated);
        }
    }
    return values.back();
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
            next = std::move(moved);
        }
        all.insert(next.begin(), next.end());
    }
    return all;
}

/// Whether some run of exactly k steps from the initial state meets the formula.
bool search(const Network& network, const Formula& formula, std::size_t k) {
    const State initial(network.props.size());
    std::set<std::pair<bool, State>> layer = {{holds(formula, network, initial), initial}};
    for (; k > 0; --k) {
        std::set<std::pair<bool, State>> next;
        for (const auto& [met, state] : layer) {
            for (const State& s : successors(network, state)) {
                next.emplace(met || holds(formula, network, s), s);
            }
        }
        layer = std::move(next);
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
    const int networks = wanted == nullptr ? 150 : std::atoi(wanted);
    int satisfiable = 0;
    for (int seed = 1; seed <= networks; ++seed) {
        Random random(static_cast<unsigned>(seed));
        const Network network = randomNetwork(random);
        const Formula formula = randomFormula(random);
        const std::string text = std::accumulate(formula.begin(), formula.end(), std::string());
        const std::size_t k = 1 + random() % 6;
        const std::string length = std::to_string(k);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", k " + length + ", " + text + "\n" +
                     network.text);

        const Scratch scratch;
        scratch.write("net.in", network.text);
        scratch.write("form.in", text);
        const Outcome solved = scratch.run(
            "\"$T\" net form " + length + " >report 2>&1;" +
            "minisat netk*.cnf >report; echo minisat=$?; cadical -q --strict netk*.cnf");
        const int answer = search(network, formula, k) ? 10 : 20;
        ASSERT_EQ(solved.status, answer) << solved.err;
        EXPECT_TRUE(solved.out.starts_with("minisat=" + std::to_string(answer))) << solved.out;
        if (answer == 20) continue;

        ++satisfiable;
        const std::vector<State> run = decoded(scratch.read("netk" + length + ".lck"), solved.out);
        ASSERT_EQ(run.size(), k + 1);
        ASSERT_EQ(run[0], State(network.props.size()));
        bool met = holds(formula, network, run[0]);
        for (std::size_t i = 1; i <= k; ++i) {
            ASSERT_TRUE(successors(network, run[i - 1]).contains(run[i])) << "step " << i;
            met = met || holds(formula, network, run[i]);
        }
        EXPECT_TRUE(met);
    }
    EXPECT_GE(satisfiable, networks / 4);
    EXPECT_LE(satisfiable, networks - networks / 4);
}
