#include "fixpoint/statebystate.h"

#include "plainpaths.h"
#include "query/vocabulary.h"
#include "replay/temporalreplay.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace tervoxal {

namespace {

/// The path as a graph, with the step back to its loop.
PlainGraph graphOf(const Path& path) {
    PlainGraph graph{{{path.first, {}}}, {{}}, !path.loop && !path.ends};
    auto change = path.changes.begin();
    for (int p = 1; p <= path.k; ++p) {
        State state = graph.nodes.back().first;
        for (; change != path.changes.end() && change->position == p; ++change) {
            EXPECT_EQ(state[change->change.automaton], change->change.source);
            state[change->change.automaton] = change->change.target;
        }
        graph.next.back().push_back(graph.nodes.size());
        graph.nodes.emplace_back(state, path.actions[static_cast<std::size_t>(p) - 1]);
        graph.next.emplace_back();
    }
    if (path.loop) graph.next.back().push_back(static_cast<std::size_t>(*path.loop) + 1);
    return graph;
}

void expectRun(const NetTimedModel& model, const Path& path, const PlainGraph& graph) {
    EXPECT_EQ(path.first, State(path.first.size()));
    for (std::size_t p = 1; p <= static_cast<std::size_t>(path.k); ++p) {
        EXPECT_TRUE(
            leads(model, *graph.nodes[p].second, graph.nodes[p - 1].first, graph.nodes[p].first));
    }
    const State& last = graph.nodes.back().first;
    EXPECT_EQ(graph.nodes[static_cast<std::size_t>(path.loop.value_or(path.k))].first, last);
    EXPECT_EQ(path.ends, successors(model, last).empty());
}

TEST(StateByState, answersAsTheStatesDo) {
    const int networks = 400;
    int paths = 0;
    int loops = 0;
    int never = 0;
    for (int i = 0; i < networks; ++i) {
        Random random(static_cast<unsigned int>(i));
        const std::string name = testing::TempDir() + "paths";
        std::ofstream(name + ".in") << randomNetwork(random, 1 + random() % 3);
        NetTimedModel model;
        read(model, name);
        const std::optional<PlainGraph> graph = plainGraph(model, 120);
        if (!graph) continue;
        const FlatNetwork network(model);
        const Transitions transitions(model);
        const Names names = namesOf(model);
        StateByState search(network);
        ASSERT_TRUE(search.explore(1000, [] { return false; }));
        for (int j = 0; j < 12; ++j) {
            const PathQuestion question =
                randomPathQuestion(model, random, static_cast<int>(1 + random() % 3));
            Fairness fairness{{}, j % 3 == 1};
            PlainFairness plain{{}, j % 3 == 1 ? &model : nullptr};
            const PathQuestion fair = randomNodeQuestion(model, random);
            if (j % 4 == 2) {
                const Expression e = expressionOf(fair.text, vocabularyOf(model, names));
                fairness.conditions = {e.temporal ? e.temporal->nodes.back().condition
                                                  : e.condition};
                plain.sets = {fair.where(*graph, plain)};
            }
            const Expression asked = expressionOf(question.text, vocabularyOf(model, names));
            if (!asked.temporal) continue;
            const bool claim = isClaim(*asked.temporal);
            const Nodes where = question.where(*graph, plain);
            const bool shown = claim ? !where[0] : std::ranges::find(where, true) != where.end();
            SCOPED_TRACE(std::to_string(i) + ' ' + question.text);
            const StateByState::Answer answer =
                search.answer(*asked.temporal, fairness, random() % 2 == 0);
            ASSERT_EQ(answer.witness.has_value(), shown);
            never += shown ? 0 : 1;
            if (!shown) continue;
            ++paths;
            const Path& path = answer.witness->path;
            loops += path.loop ? 1 : 0;
            const PlainGraph own = graphOf(path);
            expectRun(model, path, own);
            const TemporalFormula formula = sought(*asked.temporal);
            const AllStates all(model, formula, fairness);
            (void)replay(transitions, path, names, formula, fairness, claim, &all);
            if (needsSeveralPaths(formula)) continue;
            // The path alone is a graph in which it holds.
            if (!plain.sets.empty()) plain.sets = {fair.where(own, plain)};
            Nodes here = question.where(own, plain);
            if (claim) here.flip();
            EXPECT_TRUE(claim ? here[0] : std::ranges::find(here, true) != here.end());
        }
    }
    EXPECT_GT(paths, 500);
    EXPECT_GT(loops, 50);
    EXPECT_GT(never, 200);
}

/// The steps to each state from one of them, through states that satisfy, or -1.
std::map<State, int> distances(const NetTimedModel& model, const State& from,
                               const RandomQuestion& question) {
    std::map<State, int> all;
    std::vector<State> level;
    for (const State& s : successors(model, from)) level.push_back(s);
    for (int distance = 1; !level.empty(); ++distance) {
        std::vector<State> next;
        for (const State& s : level) {
            if (!question.holds(s) || !all.try_emplace(s, distance).second) continue;
            for (const State& t : successors(model, s)) next.push_back(t);
        }
        level.swap(next);
    }
    return all;
}

TEST(StateByState, findsTheLeastLoop) {
    int loops = 0;
    for (int i = 0; i < 400; ++i) {
        Random random(static_cast<unsigned int>(i));
        const std::string name = testing::TempDir() + "loops";
        std::ofstream(name + ".in") << randomNetwork(random, 1 + random() % 3);
        NetTimedModel model;
        read(model, name);
        const RandomQuestion question = randomQuestion(model, random, 1);
        const State first = initialState(model);
        const Names names = namesOf(model);
        const Expression asked =
            expressionOf("AF !(" + question.text + ')', vocabularyOf(model, names));
        const FlatNetwork network(model);
        StateByState search(network);
        ASSERT_TRUE(search.explore(1000, [] { return false; }));
        const auto answer = search.answer(*asked.temporal, {}, false);
        // A stem to a state, and a way around from there, or no step from there.
        int least = -1;
        const auto offer = [&](int length) {
            least = least < 0 ? length : std::min(least, length);
        };
        const auto end = [&](const State& s, int stem) {
            if (successors(model, s).empty()) offer(stem);
            const std::map<State, int> around = distances(model, s, question);
            if (around.contains(s)) offer(stem + around.at(s));
        };
        if (question.holds(first)) {
            for (const auto& [s, stem] : distances(model, first, question)) {
                if (s != first) end(s, stem);
            }
            end(first, 0);
        }
        SCOPED_TRACE(std::to_string(i) + ' ' + question.text);
        ASSERT_EQ(answer.witness.has_value(), least >= 0);
        if (!answer.witness) continue;
        EXPECT_TRUE(answer.witness->least);
        loops += answer.witness->path.loop ? 1 : 0;
        EXPECT_EQ(answer.witness->path.k, least);
    }
    EXPECT_GT(loops, 30);
}

} // namespace

} // namespace tervoxal
