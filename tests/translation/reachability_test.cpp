// The circuit of the question whether a formula can be met, simulated beside the network.

#include "reachability.h"

#include "plain.h"

#include <utility>

namespace {

using Literals = std::vector<std::size_t>;

/// A file of the text form, whose rules are checked on the way.
struct Aiger {
    std::size_t inputs = 0;
    Literals nexts; // of the latches
    std::size_t output = 0;
    std::vector<std::pair<std::size_t, std::size_t>> gates;
    std::string rest; // symbols and comment

    explicit Aiger(const std::string& text) {
        std::istringstream in(text);
        std::string format;
        std::size_t most = 0;
        std::size_t latches = 0;
        std::size_t outputs = 0;
        std::size_t conjunctions = 0;
        in >> format >> most >> inputs >> latches >> outputs >> conjunctions;
        EXPECT_EQ(format, "aag");
        EXPECT_EQ(most, inputs + latches + conjunctions);
        EXPECT_EQ(outputs, 1U);
        std::size_t due = 2;
        std::size_t left = 0;
        for (std::size_t i = 0; i < inputs; ++i, due += 2) EXPECT_TRUE(in >> left && left == due);
        for (std::size_t i = 0; i < latches; ++i, due += 2) {
            EXPECT_TRUE(in >> left && left == due);
            EXPECT_TRUE(in >> nexts.emplace_back() && nexts.back() <= 2 * most + 1);
        }
        EXPECT_TRUE(in >> output && output <= 2 * most + 1);
        for (std::size_t i = 0; i < conjunctions; ++i, due += 2) {
            auto& [larger, smaller] = gates.emplace_back();
            EXPECT_TRUE(in >> left >> larger >> smaller && left == due);
            EXPECT_TRUE(left > larger && larger >= smaller) << left;
        }
        rest = text.substr(static_cast<std::size_t>(in.tellg()));
    }

    /// The values of all variables, from those of inputs and latches.
    [[nodiscard]] std::vector<bool> values(const std::vector<bool>& in,
                                           const std::vector<bool>& state) const {
        std::vector<bool> all = {false};
        all.insert(all.end(), in.begin(), in.end());
        all.insert(all.end(), state.begin(), state.end());
        for (const auto& [a, b] : gates) all.push_back(value(all, a) && value(all, b));
        return all;
    }
    static bool value(const std::vector<bool>& values, std::size_t literal) {
        return values.at(literal / 2) != (literal % 2 == 1);
    }

    /// The same file in the binary form.
    [[nodiscard]] std::string binary() const {
        std::ostringstream out;
        out << "aig " << inputs + nexts.size() + gates.size() << ' ' << inputs << ' '
            << nexts.size() << " 1 " << gates.size() << '\n';
        for (const std::size_t next : nexts) out << next << '\n';
        out << output << '\n';
        std::size_t left = 2 * (inputs + nexts.size());
        for (const auto& [larger, smaller] : gates) {
            left += 2;
            for (std::size_t rest : {left - larger, larger - smaller}) {
                for (; rest >= 128; rest /= 128) out << static_cast<char>(rest % 128 + 128);
                out << static_cast<char>(rest);
            }
        }
        return out.str() + rest.substr(1);
    }
};

std::vector<bool> bits(const NetTimedModel& model, const State& state) {
    std::vector<bool> all;
    for (uint a = 1; a < state.size(); ++a) {
        for (int i = 0; i < model.nrOfBits[a]; ++i)
            all.push_back((state[a] >> static_cast<uint>(i)) % 2 == 1);
    }
    return all;
}

} // namespace

TEST(Reachability, circuitFollowsTheNetwork) {
    const Scratch dir;
    std::array<int, 2> reached = {0, 0};
    std::array<int, 2> wrongs = {0, 0};
    for (uint seed = 1; seed <= 400; ++seed) {
        Random random(seed);
        std::string network = randomNetwork(random, random() % 6);
        dir.write("net.in", network);
        NetTimedModel model;
        Names names;
        readNamedNetwork(model, names, dir.path / "net");
        const State initial(model.nrOfBits.size());
        State state = initial;
        for (auto i = random() % 4; i > 0; --i) state = randomStep(model, random, state);
        const std::string formula = randomFormula(random, state);
        dir.write("form.in", formula);
        model.readFormula(dir.path / "form");
        for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
            const std::string alike = random() % 3 == 0 ? " (automaton 3)" : "";
            if (random() % 4 > 0) names.automata[a] = 'x' + alike;
        }
        BoolForm::clear();
        const Circuit circuit = reachability(model, names);
        std::ostringstream text;
        showAIGER(text, circuit, true);
        SCOPED_TRACE(std::to_string(seed) + ' ' + formula + '\n' + network + text.str());
        const Aiger aiger(text.str());
        const auto width = static_cast<std::size_t>(model.totalNrVertBits);
        ASSERT_EQ(aiger.inputs, width);
        ASSERT_EQ(aiger.nexts.size(), width + 1);
        std::ostringstream binary;
        showAIGER(binary, circuit, false);
        EXPECT_EQ(binary.str(), aiger.binary());

        std::istringstream symbols(aiger.rest.substr(1));
        std::set<std::string> different;
        std::string symbol;
        while (std::getline(symbols, symbol) && symbol != "c")
            different.insert(symbol.substr(symbol.find(' ')));
        EXPECT_EQ(different.size(), 2 * width + 2);

        for (int run = 0; run < 10; ++run) {
            state = initial;
            bool wrong = false;
            std::vector<bool> latches(width + 1, false);
            for (int step = 0; step < 12; ++step) {
                State next = randomStep(model, random, state);
                if (random() % 12 == 0) next = randomState(model, random);
                const std::vector<bool> values = aiger.values(bits(model, next), latches);
                const bool expected = !wrong && meets(model, state, formula);
                EXPECT_EQ(Aiger::value(values, aiger.output), expected) << run << ' ' << step;
                ++reached.at(expected ? 1 : 0);
                wrong = wrong || actionsBetween(model, state, next).empty();
                ++wrongs.at(wrong ? 1 : 0);
                latches.clear();
                for (const std::size_t literal : aiger.nexts)
                    latches.push_back(Aiger::value(values, literal));
                std::vector<bool> due = bits(model, next);
                due.push_back(wrong);
                EXPECT_EQ(latches, due) << run << ' ' << step;
                state = next;
            }
        }
    }
    EXPECT_GT(std::min({reached[0], reached[1], wrongs[0], wrongs[1]}), 1000);
}
