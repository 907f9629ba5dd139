#include "replay/transitions.h"

#include "plain.h"
#include "randomquestion.h"
#include "replay/path.h"
#include "replay/property.h"

#include <map>

namespace tervoxal {

namespace {

/// Calls check for random networks, with one formula each.
template <class Check>
void forNetworks(std::size_t mostAutomata, const Check& check) {
    const Scratch dir;
    for (uint seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        dir.write("net.in", randomNetwork(random, random() % (mostAutomata + 1)));
        NetTimedModel model;
        read(model, dir.path / "net");
        const std::string formula = randomFormula(random, randomState(model, random));
        dir.write("form.in", formula);
        model.readFormula(dir.path / "form");
        check(model, random, formula);
    }
}

/// The actions between two states.
std::vector<uint> found(const Transitions& transitions, const State& from, const State& to) {
    std::vector<Change> changes;
    for (uint a = 1; a < from.size(); ++a) {
        if (from[a] != to[a]) changes.push_back({a, from[a], to[a]});
    }
    return transitions.actions(from, to, changes);
}

TEST(Transitions, successorsAreTheStatesThatAnActionLeadsTo) {
    std::map<std::size_t, int> numbers;
    forNetworks(4, [&](const NetTimedModel& model, Random& random, const std::string&) {
        const Transitions transitions(model);
        for (int i = 0; i < 4; ++i) {
            const State from = i == 0 ? initialState(model) : randomState(model, random);
            std::set<State> expected;
            State to = initialState(model);
            for (bool more = true; more;) { // counts through all bits
                const std::vector<uint> actions = actionsBetween(model, from, to);
                EXPECT_EQ(found(transitions, from, to), actions) << list(from) << list(to);
                ++numbers[actions.size()];
                if (!actions.empty()) expected.insert(to);
                more = false;
                for (uint a = 1; !more && a < to.size(); ++a) {
                    to[a] = (to[a] + 1) % (1U << static_cast<uint>(model.nrOfBits[a]));
                    more = to[a] != 0;
                }
            }
            EXPECT_EQ(successors(model, from), expected) << list(from);
        }
    });
    for (std::size_t actions = 0; actions < 4; ++actions) EXPECT_GT(numbers[actions], 3);
}

TEST(Transitions, actionsOfManyAutomata) {
    int steps = 0;
    forNetworks(25, [&](const NetTimedModel& model, Random& random, const std::string&) {
        const Transitions transitions(model);
        State from = initialState(model);
        for (int i = 0; i < 40; ++i) {
            State to = randomStep(model, random, from);
            if (to.size() > 1 && random() % 4 == 0) {
                const auto a = 1 + random() % (to.size() - 1);
                to[a] = randomState(model, random)[a];
            }
            if (random() % 4 == 0) to = from;
            const std::vector<uint> actions = actionsBetween(model, from, to);
            EXPECT_EQ(found(transitions, from, to), actions) << list(from) << list(to);
            steps += actions.empty() ? 0 : 1;
            from = to;
        }
        for (const auto& [action, automata] : model.actionAutomata) {
            std::vector<uint> expected;
            for (const uint a : automata)
                if (model.nrOfBits[a] > 0) expected.push_back(a);
            std::vector<uint> owners;
            for (const Owners::Owner& owner :
                 transitions.owners[transitions.owners.index(action)]) {
                owners.push_back(owner.automaton);
                EXPECT_EQ(*owner.moves, model.actionEdges.at({owner.automaton, action}));
            }
            EXPECT_EQ(owners, expected) << action;
        }
    });
    EXPECT_NEAR(steps, 6000, 5000);
}

TEST(Transitions, ownersOfAnActionThatIsNone) {
    NetTimedModel model;
    read(model, EXAMPLES "/two");
    const Transitions transitions(model);
    EXPECT_DEATH((void)transitions.owners.index(5), "found->number == number");
}

TEST(Property, followsTheStateStepByStep) {
    int met = 0;
    forNetworks(6, [&](const NetTimedModel& model, Random& random, const std::string& formula) {
        SCOPED_TRACE(formula);
        const Condition condition = conditionOf(*model.form);
        Property property(model, condition);
        State state = initialState(model);
        for (int i = 0; i < 200; ++i) {
            if (state.size() > 1) {
                const auto a = static_cast<uint>(1 + random() % (state.size() - 1));
                const uint target = randomState(model, random)[a];
                property.change({a, state[a], target});
                state[a] = target;
            }
            const bool expected = meets(model, state, formula);
            met += expected ? 1 : 0;
            if (random() % 3 > 0) {
                EXPECT_EQ(property.holds(), expected) << list(state);
            }
            EXPECT_EQ(holds(model, condition, state), expected) << list(state);
        }
    });
    EXPECT_NEAR(met, 30000, 25000);
}

TEST(Property, answersExpressionsInEveryState) {
    std::size_t states = 0;
    std::size_t met = 0;
    forNetworks(4, [&](const NetTimedModel& model, Random& random, const std::string&) {
        if (model.nrOfAutomata == 0) return;
        const RandomQuestion question = randomQuestion(model, random, 3);
        const Expression e = expressionOf(question.text, vocabularyOf(model, namesOf(model)));
        SCOPED_TRACE(question.text);
        Property property(model, e.condition);
        State state = initialState(model);
        for (uint a = 0; a < state.size();) { // counts through all states
            const bool expected = question.holds(state);
            EXPECT_EQ(property.holds(), expected) << list(state);
            EXPECT_EQ(holds(model, e.condition, state), expected) << list(state);
            ++states;
            met += expected ? 1 : 0;
            for (a = 1; a < state.size(); ++a) {
                const uint source = state[a];
                state[a] = model.verts.contains({a, source + 1}) ? source + 1 : 0;
                property.change({a, source, state[a]});
                if (state[a] != 0) break;
            }
        }
    });
    EXPECT_NEAR(static_cast<double>(met) / static_cast<double>(states), 0.5, 0.3);
}

TEST(Path, isDecodedBitByBit) {
    forNetworks(6, [&](const NetTimedModel& model, Random& random, const std::string&) {
        const auto k = static_cast<int>(1 + random() % 5);
        const int most = (k + 1) * model.totalNrVertBits;
        const int maxVar = random() % 2 == 0 ? most : most * 2 / 3;
        const auto density = 1 + random() % 8;
        std::vector<State> states(static_cast<std::size_t>(k) + 1, initialState(model));
        std::vector<int> literals;
        int variable = 0;
        for (State& state : states) {
            for (uint a = 1; a < state.size(); ++a) {
                for (int bit = 0; bit < model.nrOfBits[a]; ++bit) {
                    ++variable;
                    if (random() % density == 0) {
                        literals.push_back(variable);
                        if (variable <= maxVar) state[a] |= 1U << static_cast<uint>(bit);
                    } else if (random() % 2 == 0) {
                        literals.push_back(-variable);
                    }
                }
            }
        }
        for (int v = most + 1; v < most + 20; ++v) literals.push_back(v);
        const Path path = decodePath(model, k, maxVar, literals);
        EXPECT_EQ(path.k, k);
        EXPECT_EQ(path.first, states.front());
        auto change = path.changes.begin();
        for (int p = 1; p <= k; ++p) {
            const State& from = states[static_cast<std::size_t>(p) - 1];
            const State& to = states[static_cast<std::size_t>(p)];
            for (uint a = 1; a < to.size(); ++a) {
                if (from[a] == to[a]) continue;
                ASSERT_NE(change, path.changes.end());
                EXPECT_EQ(change->position, p);
                EXPECT_EQ(change->change.automaton, a);
                EXPECT_EQ(change->change.source, from[a]);
                EXPECT_EQ(change->change.target, to[a]);
                ++change;
            }
        }
        EXPECT_EQ(change, path.changes.end());
    });
}

} // namespace

} // namespace tervoxal
