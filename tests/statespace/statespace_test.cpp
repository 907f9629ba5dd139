// State spaces and what holds in them, against an explicit search with the model's tables.

#include "statespace/labelling.h"

#include "query/expression.h"
#include "randomquestion.h"

#include <map>
#include <numeric>

namespace tervoxal {

namespace {

/// Lets an automaton take part in anything that some run may take, as if it had one location.
void leaveOut(NetTimedModel& model, uint automaton) {
    std::erase_if(model.edges, [&](const auto& e) { return e.first.first.first == automaton; });
    for (auto& [local, moves] : model.actionEdges) {
        if (local.first != automaton) continue;
        moves = {{0, 0}};
        model.edges.insert({{local, {0, 0}}, {}});
    }
}

/// The least distance of each state.
std::map<State, int> distances(const NetTimedModel& model) {
    std::map<State, int> known = {{initialState(model), 0}};
    std::vector<State> open = {initialState(model)};
    for (std::size_t i = 0; i < open.size(); ++i) {
        const int next = known.at(open[i]) + 1;
        for (const State& s : successors(model, open[i])) {
            if (known.try_emplace(s, next).second) open.push_back(s);
        }
    }
    return known;
}

/// The state of the automata that are among those of the space, the others in location 0.
State unpacked(const StateSpace& space, StateSpace::State state) {
    State locations = initialState(space.network.model);
    for (uint slot = 0; slot < space.automata().size(); ++slot) {
        const uint a = space.automata()[slot];
        locations[space.network.automata[a].number] =
            space.network.locations[space.location(state, slot)].number;
    }
    return locations;
}

template <class Check>
void forNetworks(const Check& check) {
    const Scratch dir;
    for (uint seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        dir.write("net.in", randomNetwork(random, random() % 5));
        NetTimedModel model;
        read(model, dir.path / "net");
        const FlatNetwork network(model);
        const Participation participation(network);
        std::vector<uint> automata;
        NetTimedModel alone;
        read(alone, dir.path / "net");
        std::erase_if(alone.actionAutomata,
                      [&](const auto& action) { return !network.action(action.first); });
        for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
            const auto index = network.automaton(a);
            if (index && random() % 3 > 0) automata.push_back(*index);
            if (automata.empty() || index != automata.back()) leaveOut(alone, a);
        }
        check(random, alone, StateSpace(participation, automata));
    }
}

TEST(StateSpace, hasTheStatesThatAnExplicitSearchFinds) {
    std::size_t most = 0;
    forNetworks([&](Random&, const NetTimedModel& model, StateSpace space) {
        const std::map<State, int> expected = distances(model);
        const bool whole = space.automata().size() == space.network.automata.size();
        std::uint64_t steps = 0;
        std::size_t deadlocks = 0;
        while (!space.complete()) {
            const int complete = space.completeDepth();
            EXPECT_LE(space.depth() - complete, 1);
            std::ptrdiff_t found = 0;
            for (uint s = 0; s < space.size(); ++s) found += space.depth(s) <= complete ? 1 : 0;
            EXPECT_EQ(found, std::ranges::count_if(
                                 expected, [&](const auto& e) { return e.second <= complete; }));
            space.expand();
        }
        ASSERT_EQ(space.size(), expected.size());
        most = std::max(most, space.size());
        int depth = 0;
        for (uint s = 0; s < space.size(); ++s) {
            const State state = unpacked(space, s);
            ASSERT_TRUE(expected.contains(state)) << list(state);
            EXPECT_EQ(space.depth(s), expected.at(state));
            depth = std::max(depth, space.depth(s));
            std::set<State> targets;
            for (const auto& [action, target] : space.steps(s)) {
                const State to = unpacked(space, target);
                EXPECT_TRUE(leads(model, space.network.actions[action].number, state, to));
                targets.insert(to);
                ++steps;
            }
            if (space.steps(s).empty()) ++deadlocks;
            std::set<State> all = successors(model, state);
            if (!whole) { // actions that none of the automata takes part in are left out
                all.insert(state);
                targets.insert(state);
            }
            EXPECT_EQ(targets, all);
            const std::vector<StateSpace::State> path = space.pathTo(s);
            ASSERT_EQ(path.size(), static_cast<std::size_t>(space.depth(s)) + 1);
            for (std::size_t i = 1; i < path.size(); ++i) {
                EXPECT_TRUE(std::ranges::any_of(space.steps(path[i - 1]), [&](const auto& step) {
                    return step.target == path[i];
                }));
            }
        }
        EXPECT_EQ(space.depth(), depth);
        EXPECT_EQ(space.steps(), steps);
        EXPECT_EQ(space.deadlocks(), deadlocks);
    });
    EXPECT_GT(most, 64U);
}

TEST(StateSpace, packsManyAutomataIntoSeveralWords) {
    constexpr uint stations = 150; // of a ring around which one token goes
    const Scratch dir;
    std::ostringstream text;
    NetworkWriter net(text, "ring");
    for (uint s = 0; s < stations; ++s) {
        net.automaton("station");
        net.location(0);
        net.location(1);
        net.transition(s == 0 ? 0 : 1, s == 0 ? 1 : 0, s);
        net.transition(s == 0 ? 1 : 0, s == 0 ? 0 : 1, (s + stations - 1) % stations);
        net.valuation();
        net.endAutomaton();
    }
    net.end();
    dir.write("net.in", text.str());
    NetTimedModel model;
    read(model, dir.path / "net");
    const FlatNetwork network(model);
    const Participation participation(network);
    StateSpace space(participation);
    while (!space.complete()) space.expand();
    EXPECT_EQ(space.size(), stations);
    EXPECT_EQ(space.steps(), stations);
    for (uint s = 0; s < stations; ++s) EXPECT_EQ(space.depth(s), static_cast<int>(s));
    Labelling labelling(space);
    const auto last = labelling.label({{{Condition::Term::at, stations, 1}}}, 2);
    EXPECT_EQ(last.must, Labelling::Word(1) << (stations - 1) % 64);
}

TEST(Labelling, tellsWhereConditionsMayHoldAndMust) {
    int open = 0;
    int settled = 0;
    forNetworks([&](Random& random, const NetTimedModel&, StateSpace space) {
        const NetTimedModel& model = space.network.model;
        if (model.nrOfAutomata == 0) return;
        while (!space.complete()) space.expand();
        std::map<State, uint> numbers;
        for (uint s = 0; s < space.size(); ++s) numbers[unpacked(space, s)] = s;
        const bool all = space.automata().size() == space.network.automata.size();
        const Vocabulary vocabulary = vocabularyOf(model, namesOf(model));
        Labelling labelling(space);
        for (int i = 0; i < 5; ++i) {
            const RandomQuestion question = randomQuestion(model, random, 3);
            const Condition condition = expressionOf(question.text, vocabulary).condition;
            for (const auto& [state, distance] : distances(model)) {
                State alone = initialState(model);
                for (const uint a : space.automata()) {
                    const uint number = space.network.automata[a].number;
                    alone[number] = state[number];
                }
                ASSERT_TRUE(numbers.contains(alone));
                const uint s = numbers.at(alone);
                const Labelling::Label label = labelling.label(condition, s / 64);
                const bool may = (label.may >> s % 64 & 1) != 0;
                const bool must = (label.must >> s % 64 & 1) != 0;
                EXPECT_LE(must, may);
                EXPECT_LE(must, question.holds(state)) << question.text;
                EXPECT_GE(may, question.holds(state)) << question.text;
                EXPECT_TRUE(may == must || !all);
                ++(may == must ? settled : open);
            }
        }
    });
    EXPECT_GT(std::min(open, settled), 1000);
}

} // namespace

} // namespace tervoxal
