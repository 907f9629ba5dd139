// Damaged input: a run takes it as it stands, or refuses it with one line and touches no output.

#include "support.h"

#include <algorithm>
#include <array>
#include <random>

namespace {

using Random = std::mt19937; // % n: unlike the distributions the same everywhere

std::string manyAutomata() {
    std::ostringstream text("# generated\n\nmany automata\n", std::ios::ate);
    for (int a = 1; a <= 9; ++a) {
        text << "automaton " << a << '\n';
        for (int l = 0; l < a; ++l) {
            text << "location " << l << "\nend\ntransition " << l << ' ' << (l + 1) % a << ' '
                 << l % 2 * a << "\n# end\nend\n";
        }
        text << "valuation\n0 1 2\n\n" << a / 2 << ' ' << a << "\nend\nend\n";
    }
    return text.str() + "end\n";
}

const std::array<std::array<std::string, 2>, 3> inputs = {
    {{oneAutomaton, "p5\n"},
     {twoProcesses, "# both\np3p4&"},
     {manyAutomata(), "\np1p-2&p3+Tp7p9EU&+\nbehind\n"}}};
constexpr std::array kinds = {"bits",  "erase", "NUL",  "cut",    "drop",   "double",
                              "CR LF", "long",  "move", "number", "number", "number"};
constexpr std::array oddNumbers = {"2147483647", "2147483648", "99999999999", "-1",  "-0",
                                   "+1",         "--1",        "0x1",         "1.5", "1e9",
                                   "1 2 3",      "x",          "&",           "T",   ""};
constexpr std::array outputs = {"netk3.cnf", "netk3.lck", "tervoxaltime.out"};

/// Damages the text in one place and tells how.
std::string damage(std::string& text, Random& random) {
    if (text.empty()) return "nothing left";
    const std::size_t at = random() % text.size();
    const std::size_t begin = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
    const std::string line = text.substr(begin, text.find('\n', at) - begin) + '\n';
    const std::size_t digit = std::min(text.find_first_of("0123456789", at), text.size());
    const std::size_t behind = text.find_first_not_of("0123456789", digit);
    std::string chunk = text.substr(at, 1 + random() % 16);
    for (auto doublings = random() % 15; doublings > 0; --doublings) chunk += chunk;
    const std::size_t kind = random() % kinds.size();
    switch (kind) {
    case 0:
        text[at] = static_cast<char>(static_cast<unsigned char>(text[at]) ^ (random() & 0x8FU));
        break;
    case 1: text.erase(at, 1 + random() % 4); break;
    case 2: text.insert(at, 1 + random() % 3, '\0'); break;
    case 3: text.resize(at); break;
    case 4: text.erase(begin, line.size()); break;
    case 5: text.insert(begin, line); break;
    case 6:
        for (auto i = text.find('\n'); i < text.size(); i = text.find('\n', i + 2))
            text.insert(i, "\r");
        break;
    case 7: text.insert(at, chunk); break;
    case 8:
        text.erase(begin, line.size());
        text.insert(text.find('\n', random() % (text.size() + 1)) + 1, line);
        break;
    default: text.replace(digit, behind - digit, oddNumbers.at(random() % oddNumbers.size()));
    }
    return kinds.at(kind);
}

} // namespace

TEST(Refusal, damagedInputIsTakenOrRefusedInOneLine) {
    const char* const wanted = std::getenv("TERVOXAL_MUTATIONS");
    const int mutations = wanted == nullptr ? 300 : std::atoi(wanted);
    const Scratch scratch;
    std::array<int, 2> outcomes = {0, 0};
    for (int seed = 1; seed <= mutations; ++seed) {
        Random random(static_cast<unsigned>(seed));
        auto [network, formula] = inputs.at(random() % inputs.size());
        std::string trace = "seed " + std::to_string(seed);
        for (auto n = 1 + random() % 2; n > 0; --n) {
            trace += ", " + damage(random() % 2 == 0 ? formula : network, random);
        }
        SCOPED_TRACE(trace);
        scratch.write("net.in", network);
        scratch.write("form.in", formula);
        for (const char* output : outputs) scratch.write(output, "old\n");
        const Outcome run = scratch.run(
            "timeout 20 \"$T\" net form 3 2>log; status=$?; sed -E "
            "'/^(Creating|End of|[Tt]ranslation|Writing|Time)/d' log >&2; exit $status");
        ASSERT_LE(run.status, 1) << run.err;
        ++outcomes.at(static_cast<std::size_t>(run.status));
        EXPECT_EQ(std::ranges::count(run.err, '\n'), run.status) << run.err;
        // Undefined behaviour that a sanitizer stops is one line and status 1, too.
        EXPECT_EQ(run.err.find("runtime error"), std::string::npos) << run.err;
        for (const char* output : outputs) {
            EXPECT_EQ(scratch.read(output) == "old\n", run.status == 1) << output;
        }
    }
    EXPECT_GT(std::ranges::min(outcomes), mutations / 10);
}
