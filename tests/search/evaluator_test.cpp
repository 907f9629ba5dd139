// Many conditions at once against the plain meaning of each, along random walks.

#include "search/evaluator.h"

#include "query/vocabulary.h"
#include "randomquestion.h"
#include "replay/state.h"

#include <gtest/gtest.h>
#include <set>

namespace tervoxal {

namespace {

/// An evaluator that follows the states of a walk.
struct Followed {
    Followed(const FlatNetwork& network, std::span<const Condition* const> conditions)
        : network(network), evaluator(network, conditions) {}

    void go(const State& to) {
        for (uint a = 0; a < network.automata.size(); ++a) {
            const auto place =
                network.place(network.automata[a].number, to[network.automata[a].number]);
            evaluator.move(evaluator.at(a), *place.location);
        }
    }
    [[nodiscard]] std::set<uint> possible() const {
        std::set<uint> all;
        for (const uint x : evaluator.possible()) all.insert(network.actions[x].number);
        return all;
    }

    const FlatNetwork& network;
    Evaluator evaluator;
};

} // namespace

TEST(Evaluator, agreesWithTheStatesOfWalks) {
    Random random(1);
    std::size_t tellings = 0;
    for (int i = 0; i < 150; ++i) {
        const Scratch scratch;
        scratch.write("net.in", randomNetwork(random, 1 + random() % 6));
        NetTimedModel model;
        read(model, scratch.path / "net");
        const Vocabulary vocabulary = vocabularyOf(model, namesOf(model));
        std::vector<RandomQuestion> questions;
        std::vector<Condition> conditions;
        for (int n = 0; n < 40; ++n) {
            questions.push_back(randomQuestion(model, random, n % 5));
            conditions.push_back(expressionOf(questions.back().text, vocabulary).condition);
        }
        std::vector<const Condition*> pointers;
        pointers.reserve(conditions.size());
        for (const Condition& condition : conditions) pointers.push_back(&condition);
        const FlatNetwork network(model);
        Followed followed(network, pointers);
        State state = initialState(model);
        std::set<std::size_t> silent; // told since all were to be told again
        std::set<std::size_t> done;   // given up
        for (int step = 0; step < 60; ++step) {
            std::set<std::size_t> due;
            for (std::size_t q = 0; q < questions.size(); ++q) {
                const bool expected = questions[q].holds(state);
                ASSERT_EQ(followed.evaluator.holds(q), expected) << questions[q].text;
                if (expected && !silent.contains(q) && !done.contains(q)) due.insert(q);
            }
            if (random() % 4 > 0) {
                std::set<std::size_t> told;
                followed.evaluator.tell([&](std::size_t q) {
                    EXPECT_TRUE(told.insert(q).second);
                    const bool again = q % 3 > 0;
                    (again ? silent : done).insert(q);
                    return again;
                });
                EXPECT_EQ(told, due);
                tellings += told.size();
            }
            std::set<uint> possible;
            for (const auto& [x, automata] : model.actionAutomata) {
                if (isPossible(model, state, x)) possible.insert(x);
            }
            EXPECT_EQ(followed.possible(), possible);
            if (random() % 10 == 0) {
                followed.evaluator.reset();
                state = initialState(model);
            } else {
                state = randomStep(model, random, state);
                followed.go(state);
            }
            if (random() % 10 == 0) {
                followed.evaluator.renew();
                silent.clear();
            }
        }
    }
    EXPECT_GT(tellings, 10000U);
}

} // namespace tervoxal
