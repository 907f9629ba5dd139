#include "paths/pathsearch.h"

#include "plainpaths.h"
#include "query/vocabulary.h"
#include "replay/temporalreplay.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <utility>

namespace tervoxal {

namespace {

/// What is known of all questions when nothing is left to do with so many states.
std::vector<Known> answersOf(const FlatNetwork& network, const Names& names,
                             const Answers::Asked& asked, std::size_t states, bool least) {
    Answers answers(network.model, asked, names);
    std::ostringstream verdicts;
    Progress progress(asked, &verdicts);
    PathSearch search(network, names, asked, answers, progress, {states, least});
    while (search.open()) search.turn([] { return false; });
    std::vector<Known> all;
    for (std::size_t q = 0; q < asked.questions.size(); ++q) all.push_back(answers.known(q));
    return all;
}

TEST(PathSearch, enginesSayWhatTheStatesSay) {
    int paths = 0;
    int never = 0;
    int open = 0;
    for (int i = 0; i < 250; ++i) {
        Random random(static_cast<unsigned int>(i));
        const std::string name = testing::TempDir() + "pathsearch";
        std::ofstream(name + ".in") << randomNetwork(random, 1 + random() % 3);
        NetTimedModel model;
        read(model, name);
        const Names names = namesOf(model);
        const FlatNetwork network(model);
        const Transitions transitions(model);
        Answers::Asked asked;
        for (int j = 0; j < 6; ++j) {
            const PathQuestion question =
                randomPathQuestion(model, random, static_cast<int>(1 + random() % 3));
            Expression e = expressionOf(question.text, vocabularyOf(model, names));
            if (!e.temporal || needsSeveralPaths(sought(*e.temporal))) continue;
            Fairness fairness{{}, j == 2};
            if (j % 3 == 1) {
                const std::string fair = randomNodeQuestion(model, random).text;
                const Expression f = expressionOf(fair, vocabularyOf(model, names));
                fairness.conditions = {f.temporal ? f.temporal->nodes.back().condition
                                                  : f.condition};
            }
            asked.questions.push_back({std::to_string(j) + question.text,
                                       question.text,
                                       {{{Condition::Term::falsity}}},
                                       std::move(e.temporal),
                                       fairness});
        }
        asked.lengths.any = random() % 2 == 0;
        const std::vector<Known> expected = answersOf(network, names, asked, 100000, true);
        const std::vector<Known> found = answersOf(network, names, asked, 1, false);
        for (std::size_t q = 0; q < found.size(); ++q) {
            const Question& question = asked.questions[q];
            SCOPED_TRACE(std::to_string(i) + ' ' + question.name);
            const Known& known = found[q];
            if (!known.open.empty()) {
                ++open;
                continue;
            }
            ASSERT_EQ(known.path.has_value(), expected[q].path.has_value());
            ASSERT_EQ(known.unreachable, expected[q].unreachable);
            if (!known.path) {
                ++never;
                EXPECT_TRUE(known.certificate);
                continue;
            }
            ++paths;
            (void)replay(transitions, *known.path, names, sought(*question.temporal),
                         question.fairness, isClaim(*question.temporal), nullptr);
            EXPECT_GE(known.path->k, known.refuted + 1);
            if (!expected[q].least()) continue;
            EXPECT_GE(expected[q].path->k, known.refuted + 1);
            EXPECT_GE(known.path->k, expected[q].path->k);
            EXPECT_TRUE(!known.least() || known.path->k == expected[q].path->k);
        }
    }
    EXPECT_GT(paths, 300);
    EXPECT_GT(never, 200);
    EXPECT_LT(open, 400);
}

} // namespace

} // namespace tervoxal
