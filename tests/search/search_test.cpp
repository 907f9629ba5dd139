// The search against an explicit search of the states, on random networks.

#include "search/search.h"

#include "plain.h"
#include "replay/property.h"
#include "replay/transitions.h"
#include "replay/walk.h"
#include "search/conditionliterals.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

namespace tervoxal {

namespace {

constexpr int deepest = 9;

/// What states say of a condition: for each length whether there are paths, and whether one of
/// them meets it.
struct Expected {
    std::vector<bool> path;
    std::vector<bool> met;
    bool ever = false; // some state that is reached meets it

    Expected(const Transitions& transitions, const Condition& condition) {
        const NetTimedModel& model = transitions.model;
        const auto here = [&](const State& state) { return holds(model, condition, state); };
        const State initial = initialState(model);
        std::set<std::pair<bool, State>> level = {{here(initial), initial}};
        for (int k = 0; k <= deepest + 1; ++k) {
            path.push_back(!level.empty());
            met.push_back(!level.empty() && level.rbegin()->first);
            std::set<std::pair<bool, State>> next;
            for (const auto& [before, state] : level) {
                for (const State& s : successors(model, state)) {
                    next.emplace(before || here(s), s);
                }
            }
            level.swap(next);
        }
        std::set<State> seen = {initial};
        for (std::vector<State> open = {initial}; !open.empty() && !ever;) {
            const State state = open.back();
            open.pop_back();
            ever = here(state);
            for (const State& s : successors(model, state)) {
                if (seen.insert(s).second) open.push_back(s);
            }
        }
    }
    /// The least length in the range with a path that meets it.
    [[nodiscard]] std::optional<int> least(int from, int to) const {
        for (int k = from; k <= to; ++k) {
            if (met[static_cast<std::size_t>(k)]) return k;
        }
        return {};
    }
    [[nodiscard]] int longest() const {
        int k = 0;
        while (k <= deepest && path[static_cast<std::size_t>(k) + 1]) ++k;
        return k;
    }
};

/// Whether a run is a path that meets the condition.
bool meets(const Transitions& transitions, const FlatNetwork& network, const Run& run,
           const Condition& condition) {
    const Path path = pathOf(network, run);
    Walk walk(transitions, path, condition);
    bool met = walk.holds();
    while (walk.step()) {
        if (walk.actions().empty()) return false;
        met = met || walk.holds();
    }
    return met;
}

/// Calls use with random networks, and random conditions for each.
template <class Use>
void forEachNetwork(unsigned int seed, int networks, Use&& use) {
    Random random(seed);
    for (int i = 0; i < networks; ++i) {
        const Scratch scratch;
        scratch.write("net.in", randomNetwork(random, random() % 5));
        NetTimedModel model;
        read(model, scratch.path / "net");
        std::vector<Condition> conditions;
        for (int n = 0; n < 3; ++n) {
            State state = initialState(model);
            for (uint a = 1; a < state.size(); ++a) {
                state[a] = static_cast<uint>(random() % (1U << uint(model.nrOfBits[a])));
            }
            scratch.write("form.in", randomFormula(random, state));
            model.readFormula(scratch.path / "form");
            conditions.push_back(conditionOf(*model.form));
        }
        use(random, model, conditions);
    }
}

/// Whether each automaton is in exactly one location of a state that no run has to come to.
bool isSomewhereOnce(const FlatNetwork& network, Steps steps, Says without) {
    Solver solver;
    const Unrolling unrolling(network, solver, {steps, false}, without);
    const auto possible = [&](std::initializer_list<int> literals) {
        for (const int literal : literals) solver.assume(literal);
        return solver.solve(-1) == Solver::Verdict::satisfiable;
    };
    for (uint a = 0; a < network.automata.size(); ++a) {
        const uint begin = network.locationsBegin(a);
        const uint end = network.automata[a].locationsEnd;
        for (uint l = begin; l < end; ++l) solver.assume(-unrolling.location(0, l));
        if (possible({})) return false;
        for (uint l = begin + 1; l < end && steps != Steps::ordered; ++l) {
            if (possible({unrolling.location(0, l - 1), unrolling.location(0, l)})) return false;
        }
    }
    return true;
}

/// What is wrong with an unrolling, if one kind of its clauses is left out.
std::string wrong(const Transitions& transitions, const Condition& condition, Steps steps,
                  Says without) {
    const Expected expected(transitions, condition);
    const FlatNetwork network(transitions.model);
    if (!isSomewhereOnce(network, steps, without)) return "nowhere or twice";
    Solver solver;
    Unrolling unrolling(network, solver, {steps}, without);
    ConditionLiterals literals(unrolling, solver);
    for (int k = 0; k < 6; ++k) {
        for (const bool busy : {false, true}) {
            if (busy) solver.assume(unrolling.busy(k));
            solver.assume(literals.literal(condition, k));
            const bool some = solver.solve(-1) == Solver::Verdict::satisfiable;
            if (some && !meets(transitions, network, unrolling.run(k), condition)) return "no path";
            const auto least = expected.least(0, k);
            if (!busy && steps == Steps::serial && some != least.has_value()) return "serial";
            if (!busy && least && !some) return "missed";
            if (busy && some && static_cast<int>(unrolling.run(k).size()) < k) return "idle";
        }
        unrolling.step();
    }
    return "";
}

} // namespace

TEST(Search, agreesWithTheStates) {
    forEachNetwork(1, 400, [](Random& random, const NetTimedModel& model, const auto& conditions) {
        const Transitions transitions(model);
        Search::Range range;
        range.to = static_cast<int>(random() % deepest);
        range.from = random() % 3 == 0 ? static_cast<int>(random() % 4) : 0;
        range.to = std::max(range.from, range.to);
        range.any = random() % 4 == 0;
        Search search(model, conditions, range, {});
        search.run();
        for (const Finding& finding : search.findings()) {
            const Expected expected(transitions, finding.condition);
            const auto least = expected.least(range.from, range.to);
            if (finding.found) {
                EXPECT_TRUE(meets(transitions, search.network(), finding.path, finding.condition));
                EXPECT_GE(finding.length(), range.from);
            }
            if (least) {
                ASSERT_TRUE(finding.found);
                if (range.any) {
                    EXPECT_LE(finding.length(), range.to);
                } else {
                    EXPECT_EQ(finding.length(), *least);
                    EXPECT_TRUE(finding.least());
                }
            } else if (finding.certificate) {
                EXPECT_FALSE(expected.ever);
            } else if (expected.longest() < range.to || finding.never) {
                EXPECT_TRUE(finding.never);
                EXPECT_EQ(search.longest(), expected.longest());
            } else {
                EXPECT_EQ(finding.refuted, range.to);
            }
        }
    });
}

TEST(Search, provesWhatIsNeverMet) {
    std::array<int, 2> seen = {0, 0};
    forEachNetwork(3, 200, [&](Random&, const NetTimedModel& model, const auto& conditions) {
        const Transitions transitions(model);
        Search::Listener listener;
        listener.proving = [] { return true; };
        Search search(model, conditions, {}, listener);
        search.run();
        for (const Finding& finding : search.findings()) {
            const bool ever = Expected(transitions, finding.condition).ever;
            EXPECT_EQ(finding.found, ever);
            EXPECT_EQ(finding.never, !ever);
            EXPECT_TRUE(!ever ||
                        meets(transitions, search.network(), finding.path, finding.condition));
            ++seen.at(ever ? 0 : 1);
        }
    });
    EXPECT_GT(std::min(seen[0], seen[1]), 100);
}

TEST(Unrolling, missesEachKindOfClauses) {
    for (const Steps steps : {Steps::serial, Steps::parallel, Steps::ordered}) {
        std::set<Says> noticed;
        forEachNetwork(2, 150, [&](Random&, const NetTimedModel& model, const auto& conditions) {
            const Transitions transitions(model);
            for (int says = 0; says <= static_cast<int>(Says::nothing); ++says) {
                const auto without = static_cast<Says>(says);
                if (without != Says::nothing && noticed.contains(without)) continue;
                const std::string found = wrong(transitions, conditions[0], steps, without);
                if (!found.empty()) noticed.insert(without);
            }
        });
        EXPECT_FALSE(noticed.contains(Says::nothing)) << static_cast<int>(steps);
        for (int says = 0; says < static_cast<int>(Says::nothing); ++says) {
            // Ordered actions say where an automaton is from one to the next.
            if (steps == Steps::ordered && static_cast<Says>(says) == Says::once) continue;
            EXPECT_TRUE(noticed.contains(static_cast<Says>(says)))
                << static_cast<int>(steps) << ' ' << says;
        }
    }
}

} // namespace tervoxal
