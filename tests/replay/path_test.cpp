// Answers of a solver that are runs or come close: whole, with flipped bits, cut, of another length
// or of another network. tervoxal-path takes exactly those that tell a run which meets the formula.

#include "plain.h"

#include <iterator>

namespace tervoxal {

namespace {

/// The true variables of the states, as literals of all.
std::vector<int> literalsOf(const NetTimedModel& model, const std::vector<State>& states) {
    std::vector<int> literals;
    for (const State& state : states) {
        for (uint a = 1; a < state.size(); ++a) {
            for (int bit = 0; bit < model.nrOfBits[a]; ++bit) {
                const auto variable = static_cast<int>(literals.size()) + 1;
                literals.push_back((state[a] >> static_cast<uint>(bit)) % 2 == 1 ? variable
                                                                                 : -variable);
            }
        }
    }
    return literals;
}

/// What the answer says, read word by word; false if it says nothing.
bool trueVariables(const std::string& answer, std::set<int>& variables) {
    std::istringstream in(answer);
    std::vector<std::string> words{std::istream_iterator<std::string>(in), {}};
    const bool bare = std::ranges::none_of(
        words, [](const std::string& word) { return word == "s" || word == "SAT" || word == "v"; });
    if (words.empty() || (!bare && words.back() != "0")) return false;
    bool literals = false;
    for (const std::string& word : words) {
        if (word == "-" || word == "SA" || word == "S") return false;
        if (std::isdigit(static_cast<unsigned char>(word.back())) == 0) continue;
        variables.insert(std::stoi(word));
        literals = true;
    }
    if (!literals) return false;
    return std::ranges::none_of(variables, [&](int v) { return v > 0 && variables.contains(-v); });
}

std::vector<State> decoded(const NetTimedModel& model, int k, const std::set<int>& variables) {
    std::vector<State> states(static_cast<std::size_t>(k) + 1, State(model.nrOfBits.size()));
    int variable = 0;
    for (State& state : states) {
        for (uint a = 1; a < state.size(); ++a) {
            for (int bit = 0; bit < model.nrOfBits[a]; ++bit)
                state[a] |= variables.contains(++variable) ? 1U << static_cast<uint>(bit) : 0;
        }
    }
    return states;
}

} // namespace

TEST(PathTool, takesExactlyTheRunsThatMeetTheFormula) {
    const Scratch dir;
    std::array<int, 2> taken = {0, 0};
    for (uint seed = 1; seed <= 250; ++seed) {
        Random random(seed);
        const std::size_t automata = 1 + random() % 4;
        const std::string network = randomNetwork(random, automata);
        dir.write("net.in", network);
        NetTimedModel model;
        read(model, dir.path / "net");
        const auto k = static_cast<int>(1 + random() % 5);
        std::vector<State> states = {State(model.nrOfBits.size())};
        for (int p = 1; p <= k; ++p) states.push_back(randomStep(model, random, states.back()));
        const std::string formula = randomFormula(random, states[random() % states.size()]);
        dir.write("form.in", formula);
        std::vector<int> literals = literalsOf(model, states);
        if (random() % 4 == 0) literals.resize(literals.size() - literals.size() / 3);
        if (random() % 2 == 0 && !literals.empty()) {
            for (auto n = 1 + random() % 2; n > 0; --n) literals[random() % literals.size()] *= -1;
        }
        if (random() % 4 == 0) std::shuffle(literals.begin(), literals.end(), random);
        const auto form = random() % 4;
        std::string answer = form == 1 ? "s SATISFIABLE\nv " : form == 2 ? "SAT\n" : "";
        if (form == 3) answer = "c a comment\nv ";
        for (const int literal : literals) {
            if (form != 0 || literal > 0 || random() % 2 == 0)
                answer +=
                    std::to_string(literal) + (form % 2 == 1 && random() % 8 == 0 ? "\nv " : " ");
        }
        if (form != 0 || random() % 2 == 0) answer += "0\n";
        if (random() % 4 == 0)
            answer.resize(answer.size() - random() % std::min(answer.size() + 1, 9UL));
        dir.write("answer", answer);
        const bool otherLength = random() % 8 == 0;
        const int otherK = k == 1 || random() % 2 == 0 ? k + 1 : k - 1;
        const std::string length = std::to_string(k);
        SCOPED_TRACE("seed " + std::to_string(seed) + " k " + length + ' ' + formula + '\n' +
                     network + answer);
        const std::string written = std::to_string(otherLength ? otherK : k);
        ASSERT_EQ(dir.run("$T net form " + written + " && mv netk" + written +
                          ".lck other && mv other netk" + length + ".lck"),
                  0);
        if (random() % 8 == 0) { // another network, of the same layout or not
            dir.write("net.in", randomNetwork(random, 1 + random() % 4));
        }
        NetTimedModel asked;
        read(asked, dir.path / "net");
        const bool sameLayout = !otherLength && asked.nrOfBits == model.nrOfBits;
        std::set<int> variables;
        std::string expected;
        if (sameLayout && trueVariables(answer, variables))
            expected = shown(asked, decoded(asked, k, variables), formula);
        EXPECT_EQ(dir.run("\"$D\"/tervoxal-path --format=json net form " + length + " answer"),
                  expected.empty() ? 1 : 10);
        const int warnings = formula.ends_with("EG") ? 1 : 0;
        EXPECT_EQ(std::ranges::count(dir.read("stderr"), '\n') - warnings,
                  expected.empty() ? 1 : 0);
        EXPECT_EQ(dir.read("stdout").empty(), expected.empty());
        EXPECT_TRUE(dir.read("stdout").ends_with(expected));
        ++taken.at(expected.empty() ? 0 : 1);
    }
    EXPECT_GT(std::ranges::min(taken), 30);
}

} // namespace tervoxal
