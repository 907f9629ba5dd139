#include "system/command.h"

#include "system/version.h"
#include "text/fatal.h"
#include "text/scanner.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <getopt.h>
#include <iostream>
#include <string_view>

namespace tervoxal {

namespace {

const Option helpOption{"help", "", "show this help and exit"};
const Option versionOption{"version", "", "show the version and exit"};

bool mayBeLeftOut(const std::string& argument) { return argument.starts_with('['); }

std::string shown(const Option& option) {
    const std::string& argument = option.argument;
    return "--" + option.name +
           (argument.empty()         ? ""
            : mayBeLeftOut(argument) ? "[=" + argument.substr(1)
                                     : '=' + argument);
}

int argumentKind(const Option& option) {
    if (option.argument.empty()) return no_argument;
    return mayBeLeftOut(option.argument) ? optional_argument : required_argument;
}

void showHelp(const Command& command, const std::vector<Option>& options) {
    std::cout << "Usage: " << command.name << " [OPTION]... " << command.operands << '\n'
              << command.about << "\nOptions:\n";
    std::size_t width = 0;
    for (const Option& option : options) width = std::max(width, shown(option).size());
    for (const Option& option : options) {
        std::string left = shown(option);
        left.resize(width, ' ');
        std::cout << "  " << left << "  ";
        for (const char c : option.about) {
            std::cout << c;
            if (c == '\n') std::cout << std::string(width + 4, ' ');
        }
        std::cout << '\n';
    }
    if (!command.notes.empty()) std::cout << '\n' << command.notes;
}

} // namespace

CommandLine::CommandLine(const Command& command, int argc, char** argv) : name(command.name) {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::vector<Option> options = command.options;
    options.push_back(helpOption);
    options.push_back(versionOption);
    std::vector<option> known;
    known.reserve(options.size() + 1);
    for (const Option& o : options) {
        known.push_back({o.name.c_str(), argumentKind(o), nullptr, 0});
    }
    known.push_back({nullptr, 0, nullptr, 0});

    int index = 0;
    // With "-" an operand is the argument of an option 1, whatever POSIXLY_CORRECT says.
    for (int found = 0; (found = getopt_long(argc, argv, "-", known.data(), &index)) != -1;) {
        if (found == 1) {
            operands.emplace_back(optarg);
            continue;
        }
        if (found != 0) error(hint());
        values[options[static_cast<std::size_t>(index)].name].emplace_back(
            optarg == nullptr ? "" : optarg);
    }
    if (has("help")) {
        showHelp(command, options);
        std::exit(finished(0));
    }
    if (has("version")) {
        std::cout << name << ' ' << version << '\n';
        std::exit(finished(0));
    }
    operands.insert(operands.end(), argv + optind, argv + argc);
    const auto count = static_cast<int>(operands.size());
    if (count < command.least) expect(static_cast<std::size_t>(command.least));
    if (command.most >= 0 && count > command.most) expect(static_cast<std::size_t>(command.most));
}

void CommandLine::expect(std::size_t number, bool oneMore) const {
    if (operands.size() < number) misused("missing operand");
    if (oneMore) ++number;
    if (operands.size() > number) misused("extra operand '" + operands[number] + "'");
}

std::string CommandLine::value(const std::string& option, const std::string& otherwise) const {
    const auto found = values.find(option);
    return found == values.end() ? otherwise : found->second.back();
}

std::vector<std::string> CommandLine::all(const std::string& option) const {
    const auto found = values.find(option);
    return found == values.end() ? std::vector<std::string>() : found->second;
}

long CommandLine::number(const std::string& option, long least, long most, long otherwise) const {
    return has(option) ? numberIn(value(option, ""), "--" + option, least, most) : otherwise;
}

long CommandLine::numberIn(const std::string& text, const std::string& what, long least,
                           long most) const {
    long n = 0;
    if (wholeNumber(text, n) != Found::number || n < least || n > most) {
        misused(what + " needs a number from " + std::to_string(least) + " to " +
                std::to_string(most) + ", not '" + text + "'");
    }
    return n;
}

void CommandLine::misused(const std::string& message) const {
    error(name + ": " + message + '\n' + hint());
}

std::string CommandLine::hint() const { return "Try '" + name + " --help' for more information."; }

int finished(int status) {
    const bool lost = !std::cout;
    std::cout.clear(); // what is left is tried once more, for the reason
    errno = 0;
    std::cout.flush();
    if (lost || !std::cout) {
        const int reason = errno;
        error(std::string("cannot write to standard output") +
              (reason != 0 ? std::string(": ") + std::strerror(reason) : ""));
    }
    return status;
}

} // namespace tervoxal
