// The three claims of random certificates, in clauses and two solvers, against all states and
// steps.

#include "certification/claims.h"

#include "certification/counterexample.h"
#include "plain.h"
#include "programs/directories.h"
#include "programs/solveranswer.h"
#include "programs/solverrun.h"
#include "randomquestion.h"

namespace tervoxal {

namespace {

/// What a certificate claims, as plainly as it can be said.
struct Plain {
    struct Sum {
        std::vector<std::pair<std::uint64_t, RandomQuestion>> terms;
        std::uint64_t initially = 0;
        std::vector<RandomQuestion> sets;

        [[nodiscard]] std::uint64_t value(const State& s) const {
            std::uint64_t value = 0;
            for (const auto& [weight, where] : terms) value += where.holds(s) ? weight : 0;
            return value;
        }
    };

    const NetTimedModel& model;
    std::vector<State> states{}; // in which each automaton is where it may be
    std::vector<Sum> sums{};
    std::vector<RandomQuestion> sets{};
    std::vector<uint> listed{};
    std::set<State> alone{}; // projections

    static bool in(const std::vector<RandomQuestion>& sets, const State& s) {
        return std::ranges::any_of(sets, [&](const auto& set) { return set.holds(s); });
    }
    [[nodiscard]] State projection(const State& s) const {
        State part;
        for (const uint a : listed) part.push_back(s[a]);
        return part;
    }
    void findStates(const FlatNetwork& network) {
        states = {State(network.model.nrOfBits.size())};
        for (uint a = 0; a < network.automata.size(); ++a) {
            std::vector<State> more;
            for (State s : states) {
                for (const uint l : network.locationsOf(a)) {
                    s[network.automata[a].number] = network.locations[l].number;
                    more.push_back(s);
                }
            }
            states.swap(more);
        }
    }
    void findAlone() {
        alone = {State(listed.size())};
        for (std::size_t before = 0; before != alone.size();) {
            before = alone.size();
            for (const State& s : states) {
                if (!alone.contains(projection(s))) continue;
                for (const State& next : successors(model, s)) alone.insert(projection(next));
            }
        }
    }
    [[nodiscard]] bool inWeighed(const State& s) const {
        return std::ranges::any_of(sums, [&](const Sum& sum) { return in(sum.sets, s); });
    }
    [[nodiscard]] bool inside(const State& s) const {
        return alone.contains(projection(s)) && !in(sets, s) && !inWeighed(s);
    }
    [[nodiscard]] bool initial() const {
        const State first = initialState(model);
        return inside(first) && std::ranges::all_of(sums, [&](const Sum& sum) {
                   return sum.value(first) <= sum.initially;
               });
    }
    [[nodiscard]] bool step() const {
        for (const State& s : states) {
            if (!inside(s)) continue;
            for (const State& next : successors(model, s)) {
                if (in(sets, next) && !inWeighed(next)) return false;
                for (const Sum& sum : sums) {
                    if (sum.value(next) > sum.value(s)) return false;
                }
            }
        }
        return true;
    }
    [[nodiscard]] bool question(const RandomQuestion& never) const {
        return std::ranges::none_of(states, [&](const State& s) {
            if (!alone.contains(projection(s))) return false;
            return (inside(s) && never.holds(s)) || std::ranges::any_of(sums, [&](const Sum& sum) {
                       return in(sum.sets, s) && sum.value(s) <= sum.initially;
                   });
        });
    }
};

/// The states that no run reaches, but for some, each with what excludes it.
RandomQuestion exactly(const State& state) {
    std::string text = "true";
    for (uint a = 1; a < state.size(); ++a)
        text += " & at(" + std::to_string(a) + ", " + std::to_string(state[a]) + ')';
    return {text, [state](const State& s) { return s == state; }};
}

TEST(Claims, AgreeWithAllStatesAndSteps) {
    Scratch scratch;
    std::map<std::string, int> seen; // claims that hold, and that do not
    for (unsigned seed = 1; seed <= 150; ++seed) {
        Random random(seed);
        scratch.write("net.in", randomNetwork(random, 1 + random() % 3));
        NetTimedModel model;
        read(model, scratch.path / "net");
        const Names names = namesOf(model);
        const FlatNetwork network(model);
        Plain plain{model};
        plain.findStates(network);

        std::ostringstream text;
        const RandomQuestion never = randomQuestion(model, random, 2);
        text << "# never: " << never.text << '\n';
        int number = 0;
        const auto write = [&](const RandomQuestion& set, std::vector<RandomQuestion>& sets) {
            text << ++number << ": " << set.text << '\n';
            sets.push_back(set);
        };
        for (auto n = random() % 3; n > 0; --n) {
            Plain::Sum& sum = plain.sums.emplace_back();
            text << "# sum of weights: ";
            for (auto terms = random() % 3; terms > 0; --terms) {
                sum.terms.emplace_back(1 + random() % 4, randomQuestion(model, random, 1));
                text << sum.terms.back().first << ' ' << sum.terms.back().second.text << " + ";
            }
            sum.terms.emplace_back(1, randomQuestion(model, random, 0));
            sum.initially = sum.value(initialState(model)) + random() % 4 / 2;
            if (sum.initially > 0 && random() % 4 == 0) --sum.initially;
            text << sum.terms.back().second.text << " never increases, " << sum.initially
                 << " at the start\n";
            for (auto sets = random() % 3; sets > 0; --sets)
                write(randomQuestion(model, random, 2), sum.sets);
        }
        text << "# inductive relative to these:\n";
        const bool unreached = random() % 2 == 0;
        const std::map<State, int> reached = distances(model);
        for (const State& s : plain.states) {
            if (unreached && !reached.contains(s) && random() % 64 > 0)
                write(exactly(s), plain.sets);
        }
        if (!unreached && random() % 2 == 0) write(randomQuestion(model, random, 2), plain.sets);
        if (random() % 2 == 0) {
            text << "# not met in any state of these automata alone\n";
            for (uint a = 1; a < model.nrOfBits.size(); ++a) {
                if (random() % 3 == 0) continue;
                plain.listed.push_back(a);
                text << "#     \"a, " << a << "\"\n";
            }
        }
        plain.findAlone();

        std::istringstream in(text.str());
        const WrittenCertificate certificate = readCertificate(in, "c", model, names);
        std::optional<AloneSet> alone;
        if (certificate.alone) alone = AloneSet::of(network, *certificate.alone, 1000);
        const Certified certified{network, *certificate.never, certificate,
                                  alone ? &*alone : nullptr};
        Claims claims(certified);
        const Transitions transitions(model);
        Children children;
        for (const Claim claim : allClaims) {
            const bool holds = claim == Claim::initial ? plain.initial()
                               : claim == Claim::step  ? plain.step()
                                                       : plain.question(never);
            ++seen[nameOf(claim) + (holds ? " holds" : " fails")];
            BoolForm::clear();
            const ClauseRange clauses = claims.violation(claim).clauses();
            showCNF(clauses, scratch.path / "claim");
            for (const char* const solver : {"minisat", "cadical -q"}) {
                const SolverRun run =
                    runSolver(children, solver, scratch.path / "claim.cnf", scratch.path);
                EXPECT_EQ(run.problem, "");
                EXPECT_EQ(run.status, holds ? 20 : 10) << seed << ' ' << nameOf(claim) << '\n'
                                                       << text.str();
                if (run.status != 10) continue;
                std::istringstream answer(run.answer);
                const Counterexample shown =
                    counterexample(certified, transitions, claim, clauses.maxVariable(),
                                   readAnswer(answer, solver).literals);
                EXPECT_NE(shown.what, "") << seed << ' ' << nameOf(claim) << '\n' << text.str();
            }
        }
    }
    for (const Claim claim : allClaims) {
        EXPECT_GE(seen[nameOf(claim) + " holds"], 15) << nameOf(claim);
        EXPECT_GE(seen[nameOf(claim) + " fails"], 15) << nameOf(claim);
    }
}

} // namespace

} // namespace tervoxal
