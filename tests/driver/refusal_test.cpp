// Damaged input: a run takes it as it stands, or refuses it with one line and touches no output.

#include "network.h"
#include "support.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <regex>
#include <vector>

namespace tervoxal {

namespace {

const std::array<std::string, 18> oddTexts = {
    "2147483647", "2147483648", "99999999999", "-1",  "-0",    "+1",
    "--1",        "0x1",        "1.5",         "1e9", "1 2 3", "x",
    "&",          "T",          "end",         "\r",  "",      std::string(2, '\0')};
constexpr std::array outputs = {"netk3.cnf", "netk3.lck", "tervoxaltime.out"};

/// Damages the text in one place: a few bytes, a word or a line.
void damage(std::string& text, Random& random) {
    const std::size_t at = random() % (text.size() + 1);
    std::size_t begin = at;
    std::size_t end = std::min(at + 1 + random() % 4, text.size());
    if (random() % 4 != 0) {
        const char* const ends = random() % 2 == 0 ? " \n" : "\n";
        begin = at == 0 ? 0 : text.find_last_of(ends, at - 1) + 1;
        end = std::min(text.find_first_of(ends, at), text.size());
    }
    std::string piece = text.substr(begin, end - begin);
    switch (random() % 7) {
    case 0: piece.clear(); break;
    case 1:
        for (auto doublings = random() % 15; doublings > 0; --doublings) piece += '\n' + piece;
        break;
    case 2: text.insert(text.find('\n', random() % (text.size() + 1)) + 1, piece + '\n'); break;
    case 3: piece += static_cast<char>(random()); break;
    default: piece = oddTexts.at(random() % oddTexts.size());
    }
    text.replace(begin, end - begin, piece);
    if (random() % 20 == 0) text.resize(random() % (text.size() + 1));
    if (random() % 20 == 0) text = std::regex_replace(text, std::regex("\n"), "\r\n");
}

} // namespace

TEST(Refusal, damagedInputIsTakenOrRefusedInOneLine) {
    const char* const wanted = std::getenv("TERVOXAL_MUTATIONS");
    const int mutations = wanted == nullptr ? 300 : std::atoi(wanted);
    const Scratch scratch;
    std::array<int, 2> outcomes = {0, 0};
    for (int seed = 1; seed <= mutations; ++seed) {
        SCOPED_TRACE(seed);
        Random random(static_cast<unsigned>(seed));
        const std::size_t automata = 1 + random() % 4;
        std::string network = randomNetwork(random, automata);
        std::string formula = "# random\n\n" + randomFormula(random, State(automata + 1)) + "\nx\n";
        for (auto n = 1 + random() % 2; n > 0; --n)
            damage(random() % 2 == 0 ? formula : network, random);
        scratch.write("net.in", network);
        scratch.write("form.in", formula);
        for (const char* output : outputs) scratch.write(output, "old\n");
        const int status = scratch.run(
            "timeout 20 \"$T\" net form 3 2>log; status=$?; sed -E "
            "'/^(Creating|End of|[Tt]ranslation|Writing|Time)/d' log >&2; exit $status");
        const std::string lines = scratch.read("stderr");
        ASSERT_LE(status, 1) << lines;
        ++outcomes.at(static_cast<std::size_t>(status));
        EXPECT_EQ(std::ranges::count(lines, '\n'), status) << lines;
        // Undefined behaviour that a sanitizer stops is one line and status 1, too.
        EXPECT_EQ(lines.find("runtime error"), std::string::npos) << lines;
        for (const char* output : outputs)
            EXPECT_EQ(scratch.read(output) == "old\n", status == 1) << output;
        const int checked = scratch.run("timeout 20 \"$D\"/tervoxal-lint net form");
        ASSERT_LE(checked, 1);
        const std::string findings = scratch.read("stdout") + scratch.read("stderr");
        EXPECT_EQ(findings.find(": error: ") != std::string::npos, status == 1) << findings;
        static const std::regex wellFormed(R"(((net|form)\.in:[1-9]\d*: (error|warning): .+\n)*)");
        EXPECT_TRUE(std::regex_match(findings, wellFormed)) << findings;
        EXPECT_EQ(checked, findings.empty() ? 0 : 1);
        // The run ends at its first error, in a line that the check tells as well.
        if (std::smatch told; std::regex_search(lines, told, std::regex("^line (\\d+): "))) {
            EXPECT_NE(findings.find("net.in:" + told.str(1) + ": error: "), std::string::npos)
                << lines << findings;
        }
    }
    EXPECT_GT(std::ranges::min(outcomes), mutations / 10);
}

TEST(Refusal, companionsTakeDamagedInputOrRefuseItInOneLine) {
    const char* const wanted = std::getenv("TERVOXAL_MUTATIONS");
    const int mutations = wanted == nullptr ? 300 : std::atoi(wanted) / 3;
    std::ifstream in(TEST_DATA "/refusals.tsv");
    std::vector<std::array<std::string, 3>> rows; // the command, its statuses, its files
    for (std::string row; std::getline(in, row);) {
        std::istringstream fields(row);
        for (std::string& field : rows.emplace_back()) std::getline(fields, field, '\t');
    }
    std::array<int, 2> outcomes = {0, 0};
    for (int seed = 1; seed <= mutations; ++seed) {
        const Scratch scratch;
        Random random(static_cast<unsigned>(seed));
        // The first row is the heading.
        const auto& [command, statuses, names] = rows[1 + random() % (rows.size() - 1)];
        SCOPED_TRACE(std::to_string(seed) + ": " + command);
        const std::size_t automata = 1 + random() % 3;
        scratch.write("net.in", randomNetwork(random, automata));
        scratch.write("form.in", randomFormula(random, State(automata + 1)) + '\n');
        scratch.write("expression", "p0 & !(p1|p17)\n -> p17 |\ttrue & p100\n");
        const bool asked = names.find("answer") != std::string::npos;
        ASSERT_LT(asked ? scratch.run("\"$T\" net form 3 && minisat netk3.cnf answer") : 0, 30);
        for (const auto* const copied :
             {"buffer.pnml net.pnml", "machine.aut a.aut", "customer.aut b.aut"})
            ASSERT_EQ(scratch.run("cp '" EXAMPLES "'/" + std::string(copied)), 0);
        std::istringstream words(names);
        const std::vector<std::string> files{std::istream_iterator<std::string>(words), {}};
        const std::string& file = files[random() % files.size()];
        std::string text = scratch.read(file);
        for (auto n = 1 + random() % 2; n > 0; --n) damage(text, random);
        scratch.write(file, text);
        const int status =
            scratch.run(std::regex_replace(command, std::regex("\"\\$D\""), "timeout 20 \"$$D\""));
        const bool refused = status == 1;
        std::istringstream taken(statuses);
        EXPECT_TRUE(refused || std::find(std::istream_iterator<int>(taken), {}, status) !=
                                   std::istream_iterator<int>())
            << status;
        ++outcomes.at(refused ? 1 : 0);
        EXPECT_TRUE(!refused || scratch.read("stdout").empty());
        static const std::regex expected(
            "(.*: )?warning: .*|no path of .*|the solver gave no answer|(never|k = |proof).*");
        std::istringstream lines(scratch.read("stderr"));
        int others = 0;
        for (std::string line; std::getline(lines, line);)
            others += std::regex_match(line, expected) ? 0 : 1;
        EXPECT_EQ(others, refused ? 1 : 0) << lines.str() << text;
        EXPECT_EQ(lines.str().find("runtime error"), std::string::npos) << lines.str();
    }
    EXPECT_GT(std::ranges::min(outcomes), mutations / 10);
}

} // namespace tervoxal
