// What the tests share: a scratch directory with runs of the real binary, tables of data, a deep
// formula.

#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <string>
#include <sys/wait.h>

namespace tervoxal {

/// A directory of its own, removed at the end.
class Scratch {
public:
    Scratch() {
        std::string pattern = std::filesystem::temp_directory_path() / "tervoxal-XXXXXX";
        path = mkdtemp(pattern.data());
    }
    ~Scratch() { std::filesystem::remove_all(path); }
    Scratch(const Scratch&) = delete;

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path / name, std::ios::binary) << text;
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(path / name, std::ios::binary).rdbuf();
        return text.str();
    }

    /// Runs a shell command in the directory, with $T for the real binary and $D for the directory
    /// of it and its companions. The streams are in the files stdout and stderr. The result is the
    /// status, that of a shell if a signal ended the command.
    [[nodiscard]] int run(const std::string& command) const {
        const std::string shell = "cd '" + path.string() +
                                  "' && D='" BINARIES "' T=\"$D/tervoxal\" && { " + command +
                                  "; } >stdout 2>stderr";
        const int status = std::system(shell.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    std::filesystem::path path;
};

/// What print leaves on standard output.
template <class Print>
std::string printed(const Print& print) {
    testing::internal::CaptureStdout();
    print();
    std::cout.flush();
    return testing::internal::GetCapturedStdout();
}

/// Checks a table of tests/data: the answer to what stands before the first tab of a line is what
/// stands after it. A bar stands for a newline.
template <class SolverAnswer>
void checkTable(const std::string& name, const SolverAnswer& answer) {
    std::ifstream in(TEST_DATA "/" + name);
    int rows = -1; // the first is the heading
    for (std::string row; std::getline(in, row); ++rows) {
        if (rows < 0) continue;
        std::replace(row.begin(), row.end(), '|', '\n');
        const std::string question = row.substr(0, row.find('\t'));
        EXPECT_EQ(question + '\t' + answer(question), row);
    }
    EXPECT_GT(rows, 5) << name;
}

/// 400000 operators, nested to the left and, after that, to the right.
inline std::string deepFormula() {
    std::string text = "p1";
    for (int i = 0; i < 100000; ++i) text += "p4+p3&";
    for (int i = 0; i < 100000; ++i) text += "p4p3";
    for (int i = 0; i < 100000; ++i) text += "&+";
    return text;
}

} // namespace tervoxal
