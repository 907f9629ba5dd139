// Random networks and formulas: what SAT solvers say about the clause file has to agree with a
// search of the network's states, and tervoxal-path has to show what they find, as far as it is a
// run of the network that meets the formula.

#include "plain.h"
#include "replay/property.h"
#include "support.h"

#include <cctype>
#include <iterator>
#include <regex>
#include <set>

namespace tervoxal {

namespace {

/// Whether some run of exactly k steps from the initial state meets the formula.
bool search(const NetTimedModel& model, std::size_t k) {
    const Condition condition = conditionOf(*model.form);
    const State initial = initialState(model);
    std::set<std::pair<bool, State>> layer = {{holds(model, condition, initial), initial}};
    for (; k > 0; --k) {
        std::set<std::pair<bool, State>> next;
        for (const auto& [met, state] : layer) {
            for (const State& s : successors(model, state))
                next.emplace(met || holds(model, condition, s), s);
        }
        layer.swap(next);
    }
    return !layer.empty() && layer.rbegin()->first;
}

/// The variables that a model makes true.
std::set<uint> trueVariables(const std::string& solution) {
    std::istringstream words(solution);
    std::set<uint> variables;
    for (std::string word; words >> word;) {
        if (std::isdigit(word.front()) != 0) variables.insert(static_cast<uint>(std::stoul(word)));
    }
    variables.erase(0); // ends the literals
    return variables;
}

/// The states that the variables tell, read with nothing but the side file.
std::vector<State> decoded(const std::vector<uint>& sideFile, const std::set<uint>& variables) {
    const uint automata = sideFile.at(0);
    std::vector<State> path(sideFile.at(automata + 1) + 1, State(automata + 1));
    uint variable = 0;
    for (State& state : path) {
        for (uint a = 1; a <= automata; ++a) {
            for (uint i = 0; i < sideFile.at(a); ++i) {
                if (variables.contains(++variable)) state[a] |= 1U << i;
            }
        }
    }
    EXPECT_EQ(sideFile.at(automata + 2), variable) << "a step leaves bits of its states open";
    return path;
}

/// The states of a path that is shown as JSON.
std::vector<State> shownStates(const std::string& text) {
    std::vector<State> path;
    const std::string key = "\"locations\":[";
    std::size_t at = text.find("\"positions\"");
    while ((at = text.find(key, at)) != std::string::npos) {
        at += key.size();
        std::istringstream numbers(text.substr(at, text.find(']', at) - at));
        State& state = path.emplace_back(1);
        for (uint l = 0; numbers >> l; numbers.ignore()) state.push_back(l);
    }
    return path;
}

/// Whether the witness w is shown as a run that meets the formula, and a damaged one is as well or
/// is refused.
bool witnessIsShown(const Scratch& scratch, const NetTimedModel& model, const std::string& formula,
                    Random& random) {
    const char* const show = "$D/tervoxal-path --format=json --witness=w net form";
    const auto isRun = [&] {
        const std::string positions = shown(model, shownStates(scratch.read("stdout")), formula);
        return !positions.empty() && scratch.read("stdout").ends_with(positions);
    };
    const std::string witness = scratch.read("w");
    if (scratch.run(show) != 10 || !isRun()) return false;
    for (int i = 0; i < 5; ++i) {
        std::string damaged = witness;
        const std::size_t at = random() % damaged.size();
        switch (random() % 3) {
        case 0: damaged.resize(at); break;
        case 1: damaged.erase(at, 1 + random() % 3); break;
        default: damaged[at] = damaged[at] == '0' ? '1' : '0';
        }
        scratch.write("w", damaged);
        const int status = scratch.run(show);
        if (status == 1 ? !scratch.read("stdout").empty() : status != 10 || !isRun()) return false;
    }
    return true;
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
        State state = initialState(model); // the formula is about one that some run may meet
        for (auto i = random() % 6; i > 0; --i) {
            const std::set<State> next = successors(model, state);
            if (!next.empty()) state = random() % 2 == 0 ? *next.begin() : *next.rbegin();
        }
        const std::string formula = randomFormula(random, state);
        scratch.write("form.in", formula);
        model.readFormula(scratch.path / "form");
        const std::size_t k = 1 + random() % 6;
        const std::string arguments = " net form " + std::to_string(k);
        const std::string showPath = "$D/tervoxal-path --format=json" + arguments + " model";
        SCOPED_TRACE(testing::Message() << "seed " << seed << arguments << ' ' << formula << '\n'
                                        << network);
        ASSERT_EQ(scratch.run("$T" + arguments), 0);
        const bool reachable = search(model, k);
        satisfiable += reachable ? 1 : 0;
        const bool temporal = formula.find('E') != std::string::npos;
        ASSERT_EQ(scratch.run("$D/tervoxal-aiger net form >question.aig"), temporal ? 1 : 0);
        if (!temporal && scratch.run("which berkeley-abc || which yosys-abc") == 0) {
            const std::string abc =
                scratch.read("stdout").substr(0, scratch.read("stdout").find('\n'));
            const Condition condition = conditionOf(*model.form);
            const bool met = least(distances(model),
                                   [&](const State& s) { return holds(model, condition, s); }) >= 0;
            ASSERT_EQ(scratch.run(abc + " -c 'read_aiger question.aig; pdr; write_cex -a w'"), 0);
            const std::regex answer(met ? "asserted in frame"
                                        : "Property proved|All outputs solved");
            EXPECT_TRUE(std::regex_search(scratch.read("stdout"), answer)) << met;
            EXPECT_TRUE(!met || witnessIsShown(scratch, model, formula, random));
        }
        // One solver prefers true variables, the other one false ones.
        for (const char* solve :
             {"cadical -q --strict netk*.cnf >model", "minisat netk*.cnf model"}) {
            ASSERT_EQ(scratch.run(solve), reachable ? 10 : 20) << solve;
            ASSERT_EQ(scratch.run(showPath), reachable ? 10 : 20) << scratch.read("stderr");
            if (!reachable) continue;
            std::set<uint> variables = trueVariables(scratch.read("model"));
            std::istringstream numbers(scratch.read("netk" + std::to_string(k) + ".lck"));
            const std::vector<uint> sideFile{std::istream_iterator<uint>(numbers), {}};
            std::string positions = shown(model, decoded(sideFile, variables), formula);
            EXPECT_TRUE(!positions.empty() && scratch.read("stdout").ends_with(positions));

            // A flipped variable is refused, unless what is left is such a run again.
            const auto flipped = static_cast<uint>(1 + random() % (sideFile.back() + 1));
            if (variables.erase(flipped) == 0) variables.insert(flipped);
            std::ostringstream literals;
            for (const uint variable : variables) literals << variable << '\n';
            scratch.write("model", literals.str() + "0");
            positions = shown(model, decoded(sideFile, variables), formula);
            EXPECT_EQ(scratch.run(showPath), positions.empty() ? 1 : 10);
            EXPECT_EQ(scratch.read("stdout").empty(), positions.empty());
            EXPECT_TRUE(scratch.read("stdout").ends_with(positions));
        }
    }
    EXPECT_NEAR(satisfiable, 0.5 * networks, 0.25 * networks);
}

} // namespace tervoxal
