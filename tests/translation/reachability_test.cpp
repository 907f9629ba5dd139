// The circuit of the question whether a formula can be met, simulated beside the network.

#include "translation/reachability.h"

#include "plain.h"
#include "replay/path.h"

#include <utility>

namespace tervoxal {

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

    [[nodiscard]] std::vector<bool> nextState(const std::vector<bool>& in,
                                              const std::vector<bool>& state) const {
        const std::vector<bool> all = values(in, state);
        std::vector<bool> next;
        for (const std::size_t literal : nexts) next.push_back(value(all, literal));
        return next;
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

State stateOf(const NetTimedModel& model, const std::vector<bool>& bits) {
    State state(model.nrOfBits.size());
    for (std::size_t i = bits.size(), a = state.size() - 1; i-- > 0;) {
        while (static_cast<int>(i) < model.bitShift[a]) --a;
        state[a] = 2 * state[a] + (bits[i] ? 1U : 0U);
    }
    return state;
}

} // namespace

TEST(Reachability, circuitFollowsTheNetwork) {
    const Scratch dir;
    std::array<int, 2> reached = {0, 0};
    int steps = 0;
    std::size_t changes = 0;
    for (uint seed = 1; seed <= 400; ++seed) {
        Random random(seed);
        const std::string network = randomNetwork(random, random() % 5);
        dir.write("net.in", network);
        NetTimedModel model;
        Names names;
        readNamedNetwork(model, names, dir.path / "net");
        State state(model.nrOfBits.size());
        for (auto i = random() % 4; i > 0; --i) state = randomStep(model, random, state);
        const std::string formula = randomFormula(random, state);
        for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
            const std::string alike = random() % 3 == 0 ? " (automaton 3)" : "";
            if (random() % 4 > 0) names.automata[a] = (random() % 3 > 0 ? "x" : "action") + alike;
        }
        BoolForm::clear();
        Circuit circuit = reachability(model, conditionOf(EctlForm(formula)));
        nameSymbols(circuit, model, names);
        std::ostringstream text;
        showAIGER(text, circuit, true);
        SCOPED_TRACE(std::to_string(seed) + ' ' + formula + '\n' + network + text.str());
        const Aiger aiger(text.str());
        ASSERT_EQ(aiger.nexts.size(), static_cast<std::size_t>(model.totalNrVertBits));
        std::ostringstream binary;
        showAIGER(binary, circuit, false);
        EXPECT_EQ(binary.str(), aiger.binary());

        std::istringstream symbols(aiger.rest.substr(1));
        std::set<std::string> different;
        std::string symbol;
        while (std::getline(symbols, symbol) && symbol != "c")
            different.insert(symbol.substr(symbol.find(' ')));
        EXPECT_EQ(different.size(), aiger.inputs + aiger.nexts.size() + 1);

        // The inputs choose steps or nothing and, where all of them are tried, each step.
        const bool all = aiger.inputs <= 8;
        std::vector<bool> inputs(aiger.inputs);
        for (int position = 0; position < 6; ++position) {
            std::set<std::vector<bool>> next;
            for (uint n = 0; n < (all ? 1U << aiger.inputs : 50); ++n) {
                for (std::size_t i = 0; i < inputs.size(); ++i)
                    inputs[i] = ((all ? n >> i : random()) & 1U) != 0;
                const std::vector<bool> values = aiger.values(inputs, bits(model, state));
                const bool holds = meets(model, state, formula);
                EXPECT_EQ(Aiger::value(values, aiger.output), holds);
                ++reached.at(holds ? 1 : 0);
                next.insert(aiger.nextState(inputs, bits(model, state)));
            }
            for (const std::vector<bool>& latches : next) {
                const State to = stateOf(model, latches);
                EXPECT_TRUE(to == state || !actionsBetween(model, state, to).empty());
            }
            State to = state;
            for (int i = 0; i < 4; ++i) {
                to = randomStep(model, random, state);
                EXPECT_TRUE(!all || to == state || next.contains(bits(model, to)));
                steps += to == state ? 0 : 1;
            }
            state = to;
        }

        // A path that is told by its choices ends where the circuit does.
        std::vector<std::string> choices;
        std::vector<bool> latches(aiger.nexts.size());
        for (int step = 0; step < 20; ++step) {
            std::string& choice = choices.emplace_back();
            for (std::size_t i = 0; i < inputs.size(); ++i) {
                inputs[i] = random() % 2 == 0;
                choice += inputs[i] ? '1' : '0';
            }
            latches = aiger.nextState(inputs, latches);
        }
        const Path path = decodeChoices(model, choices);
        State to = path.first;
        for (const auto& [position, change] : path.changes) {
            EXPECT_EQ(to[change.automaton], change.source);
            to[change.automaton] = change.target;
        }
        EXPECT_EQ(to, stateOf(model, latches));
        changes += path.changes.size();
    }
    EXPECT_GT(std::min({reached[0], reached[1], steps}), 2000);
    EXPECT_GT(changes, 500U);
}

} // namespace tervoxal
