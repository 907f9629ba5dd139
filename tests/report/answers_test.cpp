#include "report/answers.h"

#include "randomquestion.h"
#include "text/amounts.h"

#include "search/portfolio.h"

namespace tervoxal {

namespace {

/// The lines of the answers; of the length of a path beyond the range nothing.
std::vector<std::string> lines(const NetTimedModel& model, const Answers::Asked& asked) {
    std::vector<Condition> conditions;
    for (const Question& question : asked.questions) conditions.push_back(question.condition);
    const FlatNetwork network(model);
    Board board(network, conditions, {asked.lengths.to});
    Portfolio(board).run({});
    const Names names;
    Answers answers(model, asked, names);
    std::vector<std::string> all;
    for (std::size_t q = 0; q < asked.questions.size(); ++q) {
        Known& known = answers.known(q);
        known = {board[q].refuted, {}, board[q].unreachable, board[q].certificate};
        if (board[q].found) known.path = pathOf(network, board[q].path);
        all.push_back(answers.line(q).substr(0, answers.line(q).find(';')));
    }
    return all;
}

/// Where there is no path, how that was found out depends on what else is asked.
std::vector<std::string> withoutReasons(std::vector<std::string> lines) {
    for (std::string& line : lines) {
        if (line.find(": path") == std::string::npos) line.resize(line.find(": "));
    }
    return lines;
}

TEST(Answers, areThoseOfEachQuestionAloneAndOfTheStates) {
    int paths = 0;
    Random random(1);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Scratch dir;
        dir.write("net.in", randomNetwork(random, 1 + random() % 4));
        NetTimedModel model;
        read(model, dir.path / "net");
        std::string file = "# questions\n";
        std::vector<RandomQuestion> questions;
        for (auto n = 1 + random() % 6; n > 0; --n) {
            questions.push_back(randomQuestion(model, random, 2));
            file += 'q' + std::to_string(n) + ": " + questions.back().text + "\n \n";
        }
        dir.write("questions", file);
        testing::internal::CaptureStderr(); // propositions that no location carries
        Answers::Asked asked{readQuestions(model, namesOf(model), dir.path / "questions"), {}, ""};
        (void)testing::internal::GetCapturedStderr();
        asked.lengths.to = static_cast<int>(random() % 9);
        const std::map<State, int> reached = distances(model);
        std::vector<std::string> alone;
        for (std::size_t q = 0; q < questions.size(); ++q) {
            alone.push_back(lines(model, {{asked.questions[q]}, asked.lengths, ""}).front());
            int k = least(reached, questions[q].holds);
            if (k > asked.lengths.to) k = -1;
            const std::size_t told = alone.back().find(": path of ");
            EXPECT_EQ(told == std::string::npos ? "" : alone.back().substr(told),
                      k < 0 ? "" : ": path of " + steps(k))
                << questions[q].text;
            paths += k < 0 ? 0 : 1;
        }
        EXPECT_EQ(withoutReasons(lines(model, asked)), withoutReasons(alone)) << file;
    }
    EXPECT_NEAR(paths, 700, 300);
}

} // namespace

} // namespace tervoxal
