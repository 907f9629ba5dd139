// What the tests share: a scratch directory, runs of the real binary, two small networks.

#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

inline std::string contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// What a command left behind. A status above 128 is a signal.
struct Outcome {
    int status;
    std::string out;
    std::string err;
};

/// A directory of its own, removed at the end.
class Scratch {
public:
    Scratch() {
        std::string pattern = std::filesystem::temp_directory_path() / "tervoxal-XXXXXX";
        path = mkdtemp(pattern.data());
    }
    ~Scratch() { std::filesystem::remove_all(path); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path / name, std::ios::binary) << text;
    }
    [[nodiscard]] std::string read(const std::string& name) const { return contents(path / name); }
    [[nodiscard]] bool has(const std::string& name) const {
        return std::filesystem::exists(path / name);
    }

    /// Runs a shell command in the directory. $T stands for the real binary, $D for the directory
    /// that it and its companions are in, $N for the generator of network families.
    [[nodiscard]] Outcome run(const std::string& command) const {
        const std::string shell = "cd '" + path.string() + "' && T='" + TERVOXAL_BINARY + "' D='" +
                                  BINARIES + "' N='" + NETWORKS_BINARY + "' && { " + command +
                                  "; } >stdout 2>stderr";
        const int status = std::system(shell.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), read("stdout"),
                read("stderr")};
    }

    std::filesystem::path path;
};

/// One automaton, a single step from location 0 to location 1, which carries proposition 5.
inline const std::string oneAutomaton = "one automaton\nfirst\nlocation 0\nend\nlocation 1\nend\n"
                                        "transition 0 1 1\nend\nvaluation\n1 5\nend\nend\nend\n";

/// Two processes that share action 1; action 0 is the local step of the second.
inline const std::string twoProcesses =
    "two processes\nfirst process\nlocation 0\nend\nlocation 1\nend\ntransition 0 1 1\nend\n"
    "transition 1 0 2\nend\nvaluation\n0 1\n1 2 3\nend\nend\nsecond process\nlocation 0\nend\n"
    "location 1\nend\nlocation 2\nend\ntransition 0 1 1\nend\ntransition 1 2\nend\n"
    "transition 2 0 3\nend\nvaluation\n2 4\nend\nend\nend\n";
