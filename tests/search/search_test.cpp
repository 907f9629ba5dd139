// The engines of the search, each alone and all together, against an explicit search of the states
// of random networks.

#include "search/bmc.h"
#include "search/certificatecheck.h"
#include "search/conditionliterals.h"
#include "search/localization.h"
#include "search/pdr.h"
#include "search/portfolio.h"

#include "plain.h"
#include "replay/alone.h"
#include "replay/property.h"
#include "replay/transitions.h"
#include "replay/walk.h"
#include "statespace/labelling.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <set>
#include <span>

namespace tervoxal {

namespace {

using Distances = std::map<State, int>;

int leastLength(const NetTimedModel& model, const Distances& reached, const Condition& condition) {
    return least(reached, [&](const State& state) { return holds(model, condition, state); });
}

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

/// Calls use with random networks of fewer than `most` automata, and random conditions for each.
template <class Use>
void forEachNetwork(unsigned int seed, int networks, std::size_t most, Use&& use) {
    Random random(seed);
    for (int i = 0; i < networks; ++i) {
        const Scratch scratch;
        scratch.write("net.in", randomNetwork(random, random() % most));
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

/// Without those of the clauses that say something.
std::vector<int> others(std::span<const int> clauses, std::span<const Says> said, Says what) {
    std::vector<int> kept;
    for (std::size_t i = 0; const Says says : said) {
        const std::size_t begin = i;
        while (clauses[i] != 0) ++i;
        ++i;
        if (says != what) kept.insert(kept.end(), &clauses[begin], &clauses[i - 1] + 1);
    }
    return kept;
}

/// The clauses of a step, but for those that say something.
StepClauses clausesOf(const FlatNetwork& network, const Scope& scope, std::optional<Says> without) {
    StepClauses clauses(network, scope);
    if (!without) return clauses;
    std::vector<int> kept;
    const std::span<const Says> said(clauses.said);
    for (std::size_t begin = 0, first = 0; std::size_t & end : clauses.clausesEnd) {
        const std::span<const int> part = std::span(clauses.clauses).subspan(begin, end - begin);
        const auto count = static_cast<std::size_t>(std::ranges::count(part, 0));
        const std::vector<int> left = others(part, said.subspan(first, count), *without);
        kept.insert(kept.end(), left.begin(), left.end());
        begin = end;
        first += count;
        end = kept.size();
    }
    clauses.clauses = kept;
    clauses.stateClauses = others(clauses.stateClauses, clauses.saidOfStates, *without);
    return clauses;
}

/// Whether each automaton is in exactly one location of a state that no run has to come to.
bool isSomewhereOnce(const FlatNetwork& network, StepKind kind, std::optional<Says> without) {
    Solver solver;
    const Unrolling unrolling(network, solver, clausesOf(network, {kind, false}, without));
    const auto possible = [&](std::initializer_list<int> literals) {
        for (const int literal : literals) solver.assume(literal);
        return solver.solve(-1) == Solver::Verdict::satisfiable;
    };
    for (uint a = 0; a < network.automata.size(); ++a) {
        const uint begin = network.locationsBegin(a);
        const uint end = network.automata[a].locationsEnd;
        for (uint l = begin; l < end; ++l) solver.assume(-unrolling.location(0, l));
        if (possible({})) return false;
        for (uint l = begin + 1; l < end && kind != StepKind::relaxed; ++l) {
            if (possible({unrolling.location(0, l - 1), unrolling.location(0, l)})) return false;
        }
    }
    return true;
}

/// What is wrong with an unrolling, if one kind of its clauses is left out.
std::string wrong(const Transitions& transitions, const Condition& condition, StepKind kind,
                  std::optional<Says> without) {
    const FlatNetwork network(transitions.model);
    if (!isSomewhereOnce(network, kind, without)) return "nowhere or twice";
    const int due = leastLength(transitions.model, distances(transitions.model), condition);
    Solver solver;
    Unrolling unrolling(network, solver, clausesOf(network, {kind}, without));
    ConditionLiterals literals(unrolling, solver);
    for (int k = 0; k < 6; ++k) {
        solver.assume(literals.literal(condition, k));
        const bool some = solver.solve(-1) == Solver::Verdict::satisfiable;
        if (some && !meets(transitions, network, unrolling.run(k), condition)) return "no path";
        const bool expected = 0 <= due && due <= k;
        if (kind == StepKind::interleaving && some != expected) return "interleaving";
        if (expected && !some) return "missed";
        unrolling.step();
    }
    return "";
}

/// An engine alone, or with others.
struct Team {
    const char* name;
    std::function<Portfolio::Engines(const Board&)> members;
    bool decides; // every question about lengths
    bool shortest;
};

template <class... Made>
Portfolio::Engines team(Made... made) {
    Portfolio::Engines engines;
    (engines.push_back(std::move(made)), ...);
    return engines;
}

auto bmc(const BoundedModelChecking::Policy& policy) {
    return std::make_unique<BoundedModelChecking>(policy);
}

/// Frames whose solver is made anew all the time.
auto pdr(const Board& board) {
    return std::make_unique<PropertyDirectedReachability>(
        board, PropertyDirectedReachability::Parameters{.turn = 7, .rebuild = 2});
}

const std::array<Team, 7> teams = {{
    {"relaxed steps", [](const Board&) { return team(bmc(seekingPolicy)); }, true, false},
    {"independent steps", [](const Board&) { return team(bmc(refutingPolicy)); }, true, false},
    {"interleaving", [](const Board&) { return team(bmc(leastPolicy)); }, true, true},
    {"frames", [](const Board& board) { return team(pdr(board)); }, true, false},
    {"some automata and all",
     [](const Board& board) { return team(std::make_unique<Localization>(board)); }, true, true},
    {"some automata",
     [](const Board& board) {
         return team(std::make_unique<Localization>(
             board, Localization::Parameters{.lead = 1, .begin = -1000000000}));
     },
     true, true},
    {"frames and interleaving",
     [](const Board& board) { return team(bmc(leastPolicy), pdr(board)); }, true, true},
}};

} // namespace

TEST(Engines, agreeWithTheStates) {
    std::map<std::string, std::array<int, 3>> seen; // paths, refuted, unreachable
    forEachNetwork(1, 250, 6, [&](Random& random, const NetTimedModel& model, auto& conditions) {
        const Transitions transitions(model);
        const FlatNetwork network(model);
        const Distances reached = distances(model);
        const int to = static_cast<int>(random() % 9);
        const auto first = 1 + random() % 40;
        for (const Team& members : teams) {
            SCOPED_TRACE(members.name);
            Board board(network, conditions, {to});
            Portfolio portfolio(board, members.members(board), {},
                                {.together = 3000, .alone = 1000});
            const auto leastOf = [&](std::size_t q) {
                return leastLength(model, reached, board[q].condition);
            };
            Board::Listener listener;
            bool stopped = true;
            auto patience = first; // it is asked so often before it is stopped, then more often
            auto left = patience;
            listener.stop = [&] {
                stopped = stopped || --left == 0;
                return stopped;
            };
            listener.refuted = [&](std::span<const std::size_t> questions) {
                for (const std::size_t q : questions) {
                    EXPECT_TRUE(leastOf(q) < 0 || board[q].refuted < leastOf(q));
                }
            };
            while (stopped) {
                stopped = false;
                left = ++patience;
                portfolio.run(listener);
            }
            for (std::size_t q = 0; q < board.size(); ++q) {
                const Board::Entry& entry = board[q];
                const int due = leastOf(q);
                auto& counts = seen[members.name];
                ++counts.at(entry.unreachable ? 2 : entry.found ? 0 : 1);
                if (entry.found) {
                    EXPECT_TRUE(meets(transitions, network, entry.path, entry.condition));
                }
                EXPECT_TRUE(!entry.unreachable || due < 0);
                EXPECT_TRUE(board.settled(q) || (entry.found && !members.shortest));
                if (0 <= due && due <= to) {
                    ASSERT_TRUE(entry.found);
                    EXPECT_TRUE(!members.shortest || entry.length() == due);
                }
            }
        }
    });
    for (const auto& [name, counts] : seen) {
        EXPECT_GT(counts[0], 100) << name;
        EXPECT_GT(counts[1] + counts[2], 100) << name;
    }
}

TEST(Engines, proveWhatIsNeverMet) {
    std::array<int, 2> seen = {0, 0};
    forEachNetwork(3, 200, 7, [&](Random&, const NetTimedModel& model, const auto& conditions) {
        const Transitions transitions(model);
        const FlatNetwork network(model);
        const Distances reached = distances(model);
        Board::Listener listener;
        listener.proving = [] { return true; };
        for (const bool alone : {true, false}) {
            Board board(network, conditions, {});
            if (alone) {
                Portfolio(board, team(pdr(board)), {}, {}).run(listener);
            } else {
                Portfolio(board).run(listener);
            }
            for (std::size_t q = 0; q < board.size(); ++q) {
                const bool ever = leastLength(model, reached, board[q].condition) >= 0;
                EXPECT_EQ(board[q].found, ever);
                EXPECT_EQ(board[q].unreachable, !ever);
                EXPECT_TRUE(!ever ||
                            meets(transitions, network, board[q].path, board[q].condition));
                ++seen.at(ever ? 0 : 1);
            }
        }
    });
    EXPECT_GT(std::min(seen[0], seen[1]), 100);
}

namespace {

/// Automata that count to 3, each with actions of its own.
std::string counters(int automata) {
    std::ostringstream text;
    NetworkWriter net(text, "counters");
    for (int a = 0; a < automata; ++a) {
        net.automaton("counter");
        for (uint l = 4; l-- > 0;) net.location(l);
        for (uint l = 0; l < 3; ++l) net.transition(l, l + 1, static_cast<uint>(3 * a) + l);
        net.valuation();
        net.endAutomaton();
    }
    net.end();
    return text.str();
}

/// That all of the automata, from 1 on, are in the location.
Condition allAt(uint automata, uint location) {
    using Term = Condition::Term;
    Condition condition;
    for (uint a = 1; a <= automata; ++a) {
        condition.tokens.push_back({Term::at, a, location});
        if (a > 1) condition.tokens.push_back({Term::conjunction});
    }
    return condition;
}

struct Counters {
    explicit Counters(int automata) {
        scratch.write("net.in", counters(automata));
        read(model, scratch.path / "net");
    }
    Scratch scratch;
    NetTimedModel model;
};

} // namespace

// Four counters need 12 steps of one action, 3 of independent ones, 1 of ordered ones.
TEST(Engines, takeStepsOfTheirKind) {
    const Counters counters(4);
    const FlatNetwork network(counters.model);
    const std::array<std::pair<BoundedModelChecking::Policy, int>, 3> table = {
        {{seekingPolicy, 1}, {refutingPolicy, 3}, {leastPolicy, 12}}};
    for (auto [policy, depth] : table) {
        policy.leaps = false;
        Board board(network, {allAt(4, 3)}, {depth - 1});
        Portfolio(board, team(bmc(policy)), {}, {}).run({});
        EXPECT_FALSE(board[0].found) << depth;
        EXPECT_EQ(board[0].refuted, depth - 1);
        Board deeper(network, {allAt(4, 3)}, {depth});
        Portfolio(deeper, team(bmc(policy)), {}, {}).run({});
        EXPECT_EQ(deeper[0].length(), 12) << depth;
    }
}

// A constant that is false is never met, whatever the lengths.
TEST(Engines, tellNoLengthOfAConstant) {
    const Counters counters(4);
    const FlatNetwork network(counters.model);
    for (const int to : {0, 5, 11, 12, 13, 40}) {
        Board board(network, {{{{Condition::Term::falsity}}}}, {to});
        Portfolio(board).run({});
        EXPECT_FALSE(board[0].found);
        EXPECT_TRUE(board[0].unreachable || board[0].refuted == to);
    }
}

// A set of states for each line: by automaton the locations.
TEST(Certificates, areRefusedWithWhatFails) {
    const Counters counters(2);
    const FlatNetwork network(counters.model);
    using Sets = std::vector<Certificate::Set>;
    const Certificate::Places past{1, {2, 3}};
    const std::array<std::tuple<Sets, Condition, const char*>, 6> table = {{
        {{{{1, {0}}}}, allAt(1, 0), "the initial state is in a set of states that it excludes"},
        {{{}}, allAt(1, 0), "the initial state is in a set of states that it excludes"},
        {{}, allAt(1, 3), "what is asked holds in a state that it does not exclude"},
        {{{past, {2, {1, 2, 3}}}},
         allAt(1, 3),
         "what is asked holds in a state that it does not exclude"},
        {{{past}}, allAt(1, 3), "a step leads into a set of states that it excludes"},
        {{}, {{{Condition::Term::falsity}}}, ""},
    }};
    for (const auto& [sets, condition, fault] : table) {
        EXPECT_EQ(certificateFault(network, {sets}, {&condition}), fault);
    }
}

/// Whether each state of a set is one of the other.
bool covers(const Certificate::Set& larger, const Certificate::Set& smaller) {
    return std::ranges::all_of(larger, [&](const Certificate::Places& places) {
        const auto own =
            std::ranges::find(smaller, places.automaton, &Certificate::Places::automaton);
        return own != smaller.end() && std::ranges::includes(places.locations, own->locations);
    });
}

// All states that are not reached, one by one and twice, and the locations that none has.
TEST(Certificates, haveNoSetThatOthersCover) {
    std::size_t given = 0;
    std::size_t left = 0;
    forEachNetwork(7, 250, 5, [&](Random& random, const NetTimedModel& model, const auto&) {
        const FlatNetwork network(model);
        const std::map<State, int> reached = distances(model);
        Certificate certificate;
        std::vector<State> states = {State(model.nrOfBits.size())};
        for (const FlatNetwork::Automaton& automaton : network.automata) {
            const uint number = automaton.number;
            std::vector<State> more;
            for (const uint i : network.locationsOf(*network.automaton(number))) {
                const uint l = network.locations[i].number;
                if (std::ranges::none_of(
                        reached, [&](const auto& entry) { return entry.first[number] == l; })) {
                    certificate.sets.push_back({{number, {l}}});
                }
                for (State s : states) {
                    s[number] = l;
                    more.push_back(s);
                }
            }
            states.swap(more);
        }
        std::erase_if(states, [&](const State& s) { return reached.contains(s); });
        const auto cube = [&](const State& s) {
            Certificate::Set set;
            for (const auto& [number, end] : network.automata) set.push_back({number, {s[number]}});
            return set;
        };
        for (const State& s : states) {
            certificate.sets.push_back(cube(s));
            if (random() % 2 == 0) certificate.sets.push_back(cube(s));
        }
        given += certificate.sets.size();
        const Condition falsity{{{Condition::Term::falsity}}};
        EXPECT_EQ(trim(network, certificate, {&falsity}), "");
        left += certificate.sets.size();
        for (std::size_t i = 0; i < certificate.sets.size(); ++i) {
            for (std::size_t j = 0; j < certificate.sets.size(); ++j) {
                EXPECT_TRUE(i == j || !covers(certificate.sets[i], certificate.sets[j]));
            }
        }
        for (const State& s : states) {
            EXPECT_TRUE(std::ranges::any_of(certificate.sets,
                                            [&](const auto& set) { return covers(set, cube(s)); }));
        }
    });
    EXPECT_GT(left, 40U);
    EXPECT_GT(given, left + 40);
}

TEST(Certificates, ofAutomataAloneAreSearchedOnceMore) {
    const Counters counters(2);
    const FlatNetwork network(counters.model);
    const std::array<std::tuple<std::vector<uint>, Condition, const char*>, 6> table = {{
        {{1}, allAt(1, 4), ""},
        {{2}, allAt(1, 3), "what is asked may be met by the automata that it names"},
        {{1, 2}, allAt(2, 3), "what is asked may be met by the automata that it names"},
        {{2, 1}, allAt(1, 4), "the automata that it names are not in ascending order"},
        {{0}, allAt(1, 4), "the automata that it names are not in ascending order"},
        {{1, 3}, allAt(1, 4), "it names an automaton that is not there"},
    }};
    for (const auto& [automata, condition, fault] : table) {
        EXPECT_EQ(certificateFault(network, {{}, automata}, {&condition}), fault);
    }
    std::array<int, 2> seen = {0, 0};
    forEachNetwork(5, 300, 5, [&](Random& random, const NetTimedModel& model, auto asked) {
        asked.push_back({{{Condition::Term::deadlock}}});
        const FlatNetwork flat(model);
        const Participation participation(flat);
        std::vector<uint> automata;
        for (uint a = 0; a < flat.automata.size(); ++a) {
            if (random() % 2 == 0) automata.push_back(a);
        }
        StateSpace space(participation, automata);
        while (!space.complete()) space.expand();
        for (const Condition& condition : asked) {
            Labelling labelling(space);
            bool met = false;
            for (std::size_t word = 0; 64 * word < space.size(); ++word) {
                met = met || labelling.label(condition, word).may != 0;
            }
            const Condition* const only = &condition;
            EXPECT_EQ(metAlone(flat, automata, std::span(&only, 1)), met);
            ++seen.at(met ? 0 : 1);
        }
    });
    EXPECT_GT(std::min(seen[0], seen[1]), 100);
}

TEST(Unrolling, missesEachKindOfClauses) {
    constexpr int kinds = static_cast<int>(Says::exclusion) + 1;
    for (const StepKind kind : {StepKind::interleaving, StepKind::independent, StepKind::relaxed}) {
        std::set<std::optional<Says>> noticed;
        forEachNetwork(2, 150, 5, [&](Random&, const NetTimedModel& model, const auto& conditions) {
            const Transitions transitions(model);
            for (int says = -1; says < kinds; ++says) {
                std::optional<Says> without;
                if (says >= 0) without = static_cast<Says>(says);
                if (without && noticed.contains(without)) continue;
                const std::string found = wrong(transitions, conditions[0], kind, without);
                if (!found.empty()) noticed.insert(without);
            }
        });
        EXPECT_FALSE(noticed.contains({})) << static_cast<int>(kind);
        for (int says = 0; says < kinds; ++says) {
            // Ordered actions say where an automaton is from one to the next.
            if (kind == StepKind::relaxed && static_cast<Says>(says) == Says::once) continue;
            EXPECT_TRUE(noticed.contains(static_cast<Says>(says)))
                << static_cast<int>(kind) << ' ' << says;
        }
    }
}

} // namespace tervoxal
