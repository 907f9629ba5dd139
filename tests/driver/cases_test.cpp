#include "support.h"

#include <map>

namespace {

class Cases : public testing::TestWithParam<const char*> {};

/// Runs the cases of one file; tests/data/cases/command-line.txt tells the format.
TEST_P(Cases, endAsTold) {
    std::ifstream in(std::string(TEST_DATA) + "/cases/" + GetParam());
    std::map<std::string, std::string> files;
    std::string file;
    std::string command;
    Outcome expected{};
    int count = 0;
    const auto check = [&] {
        if (command.empty()) return;
        SCOPED_TRACE(command);
        const Scratch dir;
        for (const auto& [name, text] : files) dir.write(name, text);
        const Outcome outcome = dir.run("(" + command + ")");
        EXPECT_EQ(outcome.status, expected.status);
        EXPECT_EQ(outcome.out, expected.out);
        EXPECT_EQ(outcome.err, expected.err);
        ++count;
    };
    for (std::string line; std::getline(in, line);) {
        const std::string rest = line.size() > 2 ? line.substr(2) : "";
        switch (line.empty() ? '#' : line.front()) {
        case '@': file = rest; break;
        case '|': files[file] += rest + '\n'; break;
        case '$':
            check();
            command = rest;
            expected = {};
            break;
        case '>': expected.out += rest + '\n'; break;
        case '!': expected.err += rest + '\n'; break;
        case '?': expected.status = std::stoi(rest); break;
        default: break;
        }
    }
    check();
    EXPECT_GT(count, 10);
}

INSTANTIATE_TEST_SUITE_P(Run, Cases,
                         testing::Values("solve.txt", "command-line.txt", "formula.txt",
                                         "network.txt"));

TEST(Run, bigFilesToTheByte) {
    std::ifstream rows(std::string(TEST_DATA) + "/expected.tsv");
    std::string line;
    int count = -1;
    for (; std::getline(rows, line); ++count) {
        if (count < 0) continue; // the heading
        SCOPED_TRACE(line);
        std::istringstream fields(line);
        std::string f[8];
        for (std::string& field : f) std::getline(fields, field, '\t');
        const Scratch dir;
        const Outcome sums =
            dir.run("$N " + f[0] + " net && $T net net-formula " + f[1] +
                    " >o 2>e; cat netk*.cnf | sha256sum; cat netk*.lck | sha256sum");
        EXPECT_EQ(sums.out, f[6] + "  -\n" + f[7] + "  -\n");
    }
    EXPECT_EQ(count, 12);
}

} // namespace
