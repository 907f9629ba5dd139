// The command line of a companion command: options in GNU style, then operands. Every command has
// --help and --version, takes options in any order among the operands, and long options may be cut
// where that leaves them unique. "--" ends the options.

#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace tervoxal {

/// An option of a command.
struct Option {
    std::string name;     // without its dashes
    std::string argument; // what stands for its value in the help; empty: the option has none;
                          // in brackets: the value may be left out, and then is empty
    std::string about;    // its lines in the help, without a newline at the end
};

/// What a command is called with.
struct Command {
    std::string name;
    std::string operands; // as the usage line shows them
    std::string about;    // the help's text between usage and options, ending in a newline
    std::vector<Option> options;
    int least;           // operands
    int most;            // operands; -1: any number
    std::string notes{}; // what the help tells after the options, ending in a newline
};

/// The arguments of one call.
class CommandLine {
public:
    /// Prints the help or the version and ends the process with status 0 where it is asked for.
    /// Ends it with status 1 and a line or two on standard error where the arguments do not fit the
    /// command. Ignores SIGPIPE and SIGXFSZ from here on: a reader that stops reading and a file at
    /// its size limit are writes that fail.
    CommandLine(const Command& command, int argc, char** argv);

    [[nodiscard]] bool has(const std::string& option) const { return values.contains(option); }
    /// The value given last, or `otherwise` if the option is not there.
    [[nodiscard]] std::string value(const std::string& option, const std::string& otherwise) const;
    /// All values, in the order in which they were given.
    [[nodiscard]] std::vector<std::string> all(const std::string& option) const;
    /// The value as a number from least to most; another value ends the process like a bad call.
    [[nodiscard]] long number(const std::string& option, long least, long most,
                              long otherwise) const;
    /// A text as a number from least to most; another text ends the process like a bad call, with
    /// `what` as the text's name.
    [[nodiscard]] long numberIn(const std::string& text, const std::string& what, long least,
                                long most) const;
    /// Ends the process like a bad call unless there are that many operands, or one more that may
    /// be left out.
    void expect(std::size_t number, bool oneMore = false) const;
    /// Ends the process with status 1, the message and a hint at --help on standard error.
    [[noreturn]] void misused(const std::string& message) const;

    std::vector<std::string> operands;

private:
    [[nodiscard]] std::string hint() const;

    std::string name;
    std::map<std::string, std::vector<std::string>> values;
};

/// Flushes standard output and gives the status back. Ends the process with status 1 and a line on
/// standard error if anything written there is lost.
[[nodiscard]] int finished(int status);

} // namespace tervoxal
