#include "observer/observednetwork.h"

#include "fixpoint/statebystate.h"
#include "plainpaths.h"
#include "query/vocabulary.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>

namespace tervoxal {

namespace {

/// What shows the formula in the network with the observer, as plainly as it can be said.
struct PlainAnswer {
    int least = -1; // steps of the network on a way to where it is shown
    int silent = 0; // the others on that way
    bool loops = false;
};

PlainAnswer plainAnswer(const ObservedNetwork& observed) {
    PlainAnswer answer;
    const std::optional<PlainGraph> graph = plainGraph(observed.model, 20000);
    if (!graph) throw std::length_error("too many states");
    const auto isStep = [&](std::size_t n) {
        return observed.actions[*graph->nodes[n].second].has_value();
    };
    // Silent steps first, at no cost.
    std::vector<int> silents(graph->nodes.size(), -1);
    std::vector<std::size_t> level = {0};
    silents[0] = 0;
    for (int length = 0; !level.empty(); ++length) {
        std::vector<std::size_t> next;
        for (std::size_t i = 0; i < level.size(); ++i) {
            const std::size_t n = level[i];
            if (answer.least < 0 && holds(observed.model, observed.shown, graph->nodes[n].first)) {
                answer.least = length;
                answer.silent = silents[n];
            }
            for (const std::size_t m : graph->next[n]) {
                if (silents[m] >= 0) continue;
                silents[m] = silents[n] + (isStep(m) ? 0 : 1);
                (isStep(m) ? next : level).push_back(m);
            }
        }
        level.swap(next);
    }
    const Nodes at = graph->where([&](const PlainNode& node) {
        return std::ranges::binary_search(observed.looping, node.first[observed.observer]);
    });
    for (std::size_t n = 0; n < at.size() && !answer.loops; ++n) {
        const Nodes around = graph->reached(n, at);
        answer.loops = around[n] && std::ranges::all_of(observed.fair, [&](const Condition& fair) {
                           for (std::size_t m = 0; m < at.size(); ++m) {
                               if (around[m] && graph->reached(m, at)[n] &&
                                   holds(observed.model, fair, graph->nodes[m].first)) {
                                   return true;
                               }
                           }
                           return false;
                       });
    }
    return answer;
}

TEST(ObservedNetwork, showsWhatHolds) {
    int shown = 0;
    int byLoop = 0;
    int never = 0;
    int exact = 0;
    for (int i = 0; i < 600; ++i) {
        Random random(static_cast<unsigned int>(i));
        const std::string name = testing::TempDir() + "observed";
        std::ofstream(name + ".in") << randomNetwork(random, 1 + random() % 3);
        NetTimedModel model;
        read(model, name);
        if (!plainGraph(model, 60)) continue;
        const FlatNetwork network(model);
        const Names names = namesOf(model);
        StateByState search(network);
        ASSERT_TRUE(search.explore(1000, [] { return false; }));
        for (int j = 0; j < 12; ++j) {
            const PathQuestion question =
                randomPathQuestion(model, random, static_cast<int>(1 + random() % 3));
            const Expression asked = expressionOf(question.text, vocabularyOf(model, names));
            const PathQuestion again = randomNodeQuestion(model, random);
            Fairness fairness;
            if (j % 4 == 2) {
                const Expression e = expressionOf(again.text, vocabularyOf(model, names));
                fairness.conditions = {e.temporal ? e.temporal->nodes.back().condition
                                                  : e.condition};
            }
            if (!asked.temporal) continue;
            const TemporalFormula formula = sought(*asked.temporal);
            if (needsSeveralPaths(formula)) continue;
            const bool claim = isClaim(*asked.temporal);
            const auto observing =
                observed(model, names, formula, fairness.conditions, claim, 100000);
            ASSERT_TRUE(observing);
            const PlainAnswer answer = plainAnswer(*observing);
            const auto expected = search.answer(*asked.temporal, fairness, false);
            SCOPED_TRACE(std::to_string(i) + ' ' + std::to_string(j) + ' ' + question.text);
            ASSERT_EQ(answer.least >= 0 || answer.loops, expected.witness.has_value());
            EXPECT_LE(answer.silent, observing->silent);
            ++(answer.least >= 0 ? shown : answer.loops ? byLoop : never);
            if (answer.least < 0) continue;
            const Path& path = expected.witness->path;
            if (observing->loopless || path.ends) {
                EXPECT_EQ(answer.least, path.k);
                ++exact;
            } else {
                EXPECT_GE(answer.least, path.k);
            }
        }
    }
    EXPECT_GT(shown, 1000);
    EXPECT_GT(exact, 1000);
    EXPECT_GT(byLoop, 200);
    EXPECT_GT(never, 1000);
}

TEST(ObservedNetwork, givesUpWhereItIsTooLarge) {
    const std::string name = testing::TempDir() + "observed";
    Random random(7);
    std::ofstream(name + ".in") << randomNetwork(random, 3);
    NetTimedModel model;
    read(model, name);
    const Names names = namesOf(model);
    const Expression asked = expressionOf("E[!deadlock U p0]", vocabularyOf(model, names));
    EXPECT_TRUE(observed(model, names, *asked.temporal, {}, true, 1000));
    for (std::size_t most = 0; most < 20; ++most) {
        EXPECT_FALSE(observed(model, names, *asked.temporal, {}, true, most));
    }
}

} // namespace

} // namespace tervoxal
