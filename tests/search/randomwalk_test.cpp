// Random walks alone, against an explicit search of the states of random networks.

#include "search/randomwalk.h"

#include "plain.h"
#include "query/vocabulary.h"
#include "randomquestion.h"
#include "replay/state.h"

#include <gtest/gtest.h>
#include <numeric>
#include <set>

namespace tervoxal {

namespace {

Questions open(const RandomWalk& walk, const Board& board) {
    Questions all(board.size());
    std::iota(all.begin(), all.end(), std::size_t(0));
    return walk.open(board, all);
}

/// The states that the run comes to, as actions and moves say. Empty if it is no run.
std::vector<State> statesOf(const FlatNetwork& network, const Run& run) {
    std::vector<State> states = {initialState(network.model)};
    for (const Firing& firing : run) {
        State to = states.back();
        for (const uint m : firing.moves) {
            const FlatNetwork::Location& target = network.locations[network.moves[m].target];
            to[network.automata[target.automaton].number] = target.number;
        }
        const uint action = network.actions[firing.action].number;
        if (!leads(network.model, action, states.back(), to)) return {};
        states.push_back(to);
    }
    return states;
}

std::set<State> reached(const NetTimedModel& model) {
    std::set<State> seen = {initialState(model)};
    for (std::vector<State> open(seen.begin(), seen.end()); !open.empty();) {
        const State state = open.back();
        open.pop_back();
        for (const State& s : successors(model, state)) {
            if (seen.insert(s).second) open.push_back(s);
        }
    }
    return seen;
}

} // namespace

TEST(RandomWalk, findsAllThatIsReached) {
    Random random(1);
    std::size_t paths = 0;
    std::size_t none = 0;
    for (int i = 0; i < 80; ++i) {
        const Scratch scratch;
        scratch.write("net.in", randomNetwork(random, 1 + random() % 5));
        NetTimedModel model;
        read(model, scratch.path / "net");
        const Vocabulary vocabulary = vocabularyOf(model, namesOf(model));
        std::vector<RandomQuestion> questions;
        std::vector<Condition> conditions;
        for (int n = 0; n < 20; ++n) {
            questions.push_back(randomQuestion(model, random, 3));
            conditions.push_back(expressionOf(questions.back().text, vocabulary).condition);
        }
        const FlatNetwork network(model);
        Board board(network, conditions, {1000, true});
        RandomWalk walk(walkPolicy, 1 + random());
        for (int turn = 0; turn < 40 && !open(walk, board).empty(); ++turn) {
            walk.turn(board, open(walk, board), false);
        }
        const std::set<State> states = reached(model);
        for (std::size_t q = 0; q < questions.size(); ++q) {
            const bool ever = std::ranges::any_of(states, questions[q].holds);
            ASSERT_EQ(board[q].found, ever) << questions[q].text;
            ++(ever ? paths : none);
            if (!ever) continue;
            const std::vector<State> run = statesOf(network, board[q].path);
            ASSERT_FALSE(run.empty());
            EXPECT_TRUE(questions[q].holds(run.back()));
            EXPECT_LE(board[q].path.size(), 1000U);
        }
    }
    EXPECT_GT(std::min(paths, none), 200U);
}

TEST(RandomWalk, isTheSameForTheSameSeedAndStopsWhenItIsTo) {
    Random random(2);
    int different = 0;
    for (int i = 0; i < 30; ++i) {
        const Scratch scratch;
        scratch.write("net.in", randomNetwork(random, 5));
        NetTimedModel model;
        read(model, scratch.path / "net");
        const FlatNetwork network(model);
        std::vector<Condition> conditions = {{{{Condition::Term::falsity}}}};
        for (const auto& [location, vertex] : model.verts) {
            conditions.push_back({{{Condition::Term::at, location.first, location.second}}});
        }
        const auto outcome = [&](std::uint64_t seed) {
            Board board(network, conditions, {100, true});
            RandomWalk walk(walkPolicy, seed);
            for (int turn = 0; turn < 3; ++turn) walk.turn(board, open(walk, board), false);
            std::vector<std::int64_t> numbers = {walk.cost()};
            for (std::size_t q = 0; q < board.size(); ++q) numbers.push_back(board[q].length());
            Board::Listener listener;
            listener.stop = [] { return true; };
            board.tell(&listener);
            walk.turn(board, open(walk, board), true);
            EXPECT_LT(walk.cost(), numbers[0] + 3);
            return numbers;
        };
        EXPECT_EQ(outcome(7), outcome(7));
        different += outcome(7) == outcome(8) ? 0 : 1;
    }
    EXPECT_GT(different, 10);
}

/// A million questions, no actions, and an action of a thousand automata: neither takes long.
TEST(RandomWalk, isMadeForExtremes) {
    Random random(1);
    const Scratch scratch;
    std::ostringstream text;
    NetworkWriter net(text, "extremes");
    for (int a = 0; a < 1000; ++a) {
        net.automaton("automaton");
        net.location(0);
        net.location(1);
        if (a < 999) net.transition(0, 1, 1);
        if (a < 999) net.transition(1, 0, 2);
        net.valuation();
        net.value(1, std::vector<uint>{static_cast<uint>(a)});
        net.endAutomaton();
    }
    net.end();
    scratch.write("wide.in", text.str());
    scratch.write("still.in", randomNetwork(random, 0));
    for (const char* const name : {"wide", "still"}) {
        NetTimedModel model;
        read(model, scratch.path / name);
        const FlatNetwork network(model);
        const auto half = [](uint prop) {
            return std::vector(500000, Condition{{{Condition::Term::prop, prop}}});
        };
        std::vector<Condition> conditions = half(3);
        std::ranges::copy(half(2000), std::back_inserter(conditions));
        Board board(network, conditions, {1000000, true});
        RandomWalk walk(walkPolicy);
        for (int turn = 0; turn < 5; ++turn) walk.turn(board, open(walk, board), false);
        EXPECT_EQ(open(walk, board).size(), network.actions.empty() ? 1000000U : 500000U);
    }
}

} // namespace tervoxal
