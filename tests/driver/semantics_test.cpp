// Random networks and formulas: what SAT solvers say about the clause file has to agree with an
// explicit search of the network's states, and what they find has to be a run of the network.

#include "network.h"
#include "support.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace {

/// One action, all its automata together, every other automaton stays.
std::set<State> successors(const NetTimedModel& model, const State& state) {
    std::set<State> all;
    for (const auto& [action, automata] : model.actionAutomata) {
        std::vector<State> next = {state};
        for (const uint a : automata) {
            std::vector<State> moved;
            for (const auto& [source, target] : model.actionEdges.at({a, action})) {
                if (source != state[a]) continue;
                for (State& s : next) {
                    s[a] = target;
                    moved.push_back(s);
                }
            }
            next.swap(moved);
        }
        all.insert(next.begin(), next.end());
    }
    return all;
}

/// Whether the model's formula holds in the state. A temporal operator makes it false as a whole.
bool holds(const NetTimedModel& model, const State& state) {
    std::vector<bool> values;
    for (const auto& [op, prop] : model.form->onp) {
        if (op > OpDis) return false;
        if (op > OpNegVar) {
            const bool right = values.back();
            values.pop_back();
            values.back() = op == OpCon ? values.back() && right : values.back() || right;
            continue;
        }
        bool on = op == OpTrue;
        for (uint a = 1; a < state.size(); ++a)
            on = on || model.valuation.contains({{a, state[a]}, static_cast<uint>(prop)});
        values.push_back(on != (op == OpNegVar));
    }
    return values.back();
}

/// Whether some run of exactly k steps from the initial state meets the formula.
bool search(const NetTimedModel& model, std::size_t k) {
    const State initial(model.nrOfBits.size());
    std::set<std::pair<bool, State>> layer = {{holds(model, initial), initial}};
    for (; k > 0; --k) {
        std::set<std::pair<bool, State>> next;
        for (const auto& [met, state] : layer) {
            for (const State& s : successors(model, state)) next.emplace(met || holds(model, s), s);
        }
        layer.swap(next);
    }
    return !layer.empty() && layer.rbegin()->first;
}

/// Whether a run of any length meets the formula.
bool searchAll(const NetTimedModel& model) {
    std::set<State> seen = {State(model.nrOfBits.size())};
    for (std::vector<State> open = {*seen.begin()}; !open.empty();) {
        const State state = open.back();
        open.pop_back();
        if (holds(model, state)) return true;
        for (const State& s : successors(model, state)) {
            if (seen.insert(s).second) open.push_back(s);
        }
    }
    return false;
}

/// The run that a solver found, read with nothing but the side file.
std::vector<State> decoded(const std::string& sideFile, std::string solution) {
    std::istringstream numbers(sideFile);
    const std::vector<uint> layout{std::istream_iterator<uint>(numbers), {}};
    const uint automata = layout.at(0);
    std::ranges::replace(solution, '\n', ' ');
    std::vector<State> run(layout.at(automata + 1) + 1, State(automata + 1));
    uint variable = 0;
    for (State& state : run) {
        for (uint a = 1; a <= automata; ++a) {
            for (uint i = 0; i < layout.at(a); ++i) {
                const std::string literal = ' ' + std::to_string(++variable) + ' ';
                if (solution.find(literal) != std::string::npos) state[a] |= 1U << i;
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
        const Scratch scratch;
        const std::string network = randomNetwork(random, 1 + random() % 4);
        scratch.write("net.in", network);
        NetTimedModel model;
        read(model, scratch.path / "net");
        const State initial(model.nrOfBits.size());
        State state = initial; // the formula is about one that some run may meet
        for (auto i = random() % 6; i > 0; --i) {
            const std::set<State> next = successors(model, state);
            if (!next.empty()) state = random() % 2 == 0 ? *next.begin() : *next.rbegin();
        }
        const std::string formula = randomFormula(random, state);
        scratch.write("form.in", formula);
        model.readFormula(scratch.path / "form");
        const std::size_t k = 1 + random() % 6;
        const std::string base = "netk" + std::to_string(k);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + base + ", " + formula + '\n' +
                     network);
        ASSERT_EQ(scratch.run("\"$T\" net form " + std::to_string(k)), 0);
        const bool reachable = search(model, k);
        satisfiable += reachable ? 1 : 0;
        ASSERT_EQ(scratch.run("\"$D\"/tervoxal-aiger net form >question.aig && "
                              "berkeley-abc -c 'read_aiger question.aig; pdr'"),
                  0);
        const char* const answer = searchAll(model) ? "asserted in frame" : "Property proved";
        EXPECT_NE(scratch.read("stdout").find(answer), std::string::npos) << answer;
        // One solver prefers true variables, the other one false ones.
        for (const char* solve :
             {"cadical -q --strict netk*.cnf >model", "minisat netk*.cnf model"}) {
            ASSERT_EQ(scratch.run(solve), reachable ? 10 : 20) << solve;
            if (!reachable) continue;
            const auto run = decoded(scratch.read(base + ".lck"), scratch.read("model"));
            ASSERT_EQ(run.size(), k + 1);
            ASSERT_EQ(run[0], initial);
            for (std::size_t i = 1; i <= k; ++i)
                ASSERT_TRUE(successors(model, run[i - 1]).contains(run[i])) << "step " << i;
            EXPECT_TRUE(std::ranges::any_of(run, [&](auto& s) { return holds(model, s); }));
        }
    }
    EXPECT_NEAR(satisfiable, 0.5 * networks, 0.25 * networks);
}
