// Some automata alone against all states, with conditions about deadlocks and actions.

#include "search/localization.h"

#include "query/expression.h"
#include "query/vocabulary.h"
#include "randomquestion.h"
#include "search/portfolio.h"

#include <array>
#include <optional>

namespace tervoxal {

namespace {

/// The least distance of a state that meets the question, -1 if there is none.
int leastLength(const NetTimedModel& model, const RandomQuestion& question) {
    std::set<State> known = {initialState(model)};
    std::set<State> level = known;
    for (int length = 0; !level.empty(); ++length) {
        if (std::ranges::any_of(level, question.holds)) return length;
        std::set<State> next;
        for (const State& state : level) {
            for (const State& s : successors(model, state)) {
                if (known.insert(s).second) next.insert(s);
            }
        }
        level.swap(next);
    }
    return -1;
}

TEST(Localization, findsLeastPathsOrTheAutomataWithoutOne) {
    std::array<int, 2> seen = {0, 0};
    int fewer = 0; // certificates of less than all automata
    const Scratch dir;
    for (uint seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        dir.write("net.in", randomNetwork(random, 1 + random() % 5));
        NetTimedModel model;
        read(model, dir.path / "net");
        const FlatNetwork network(model);
        const Vocabulary vocabulary = vocabularyOf(model, namesOf(model));
        std::vector<RandomQuestion> questions;
        std::vector<Condition> conditions;
        for (int i = 0; i < 4; ++i) {
            questions.push_back(randomQuestion(model, random, 3));
            conditions.push_back(expressionOf(questions.back().text, vocabulary).condition);
        }
        // All automata at once only where nothing else is left, or from the start.
        for (const std::int64_t begin : {-1000000000, 0}) {
            Board board(network, conditions, {1000});
            Portfolio::Engines engines;
            engines.push_back(std::make_unique<Localization>(
                board, Localization::Parameters{.lead = 10, .begin = begin}));
            Board::Listener listener;
            listener.proving = [] { return true; };
            Portfolio(board, std::move(engines), {}, {}).run(listener);
            for (std::size_t q = 0; q < questions.size(); ++q) {
                const int least = leastLength(model, questions[q]);
                EXPECT_EQ(board[q].found ? board[q].length() : -1, least) << questions[q].text;
                EXPECT_EQ(board[q].unreachable, least < 0) << questions[q].text;
                EXPECT_TRUE(least < 0 || board[q].least());
                ++seen.at(least < 0 ? 1 : 0);
                if (least < 0 && board[q].certificate->alone->size() < network.automata.size())
                    ++fewer;
            }
        }
    }
    EXPECT_GT(std::min(seen[0], seen[1]), 200);
    EXPECT_GT(fewer, 80);
}

} // namespace

} // namespace tervoxal
