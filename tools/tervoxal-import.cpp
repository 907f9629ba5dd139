// The command tervoxal-import: Petri nets and labelled transition systems as networks.

#include "import/aut.h"
#include "import/petrinet.h"
#include "import/pnml.h"
#include "import/safety.h"
#include "programs/children.h"
#include "programs/directories.h"
#include "system/command.h"
#include "system/filetext.h"
#include "text/escapes.h"
#include "text/fatal.h"
#include "text/message.h"
#include "text/scanner.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace tervoxal;

namespace {

const std::string name = "tervoxal-import";

constexpr long greatestSeconds = 2147483647;
constexpr long greatestBound = 1000; // the propositions of a place take its square of text

/// What came of the question whether there can be a second token.
struct SecondToken {
    int status = 1;              // of tervoxal-solve: 10, 20, 0; 1 if it could not be asked
    int signal = 0;              // that came meanwhile
    std::string problem{};       // what went wrong
    std::vector<uint> firings{}; // the transitions of the path
};

/// The numbers of the actions in the report of a path.
std::vector<uint> actionsIn(std::string_view json) {
    constexpr std::string_view key = "\"actions\":[";
    std::vector<uint> actions;
    for (std::size_t at = 0; (at = json.find(key, at)) != std::string_view::npos;) {
        at += key.size();
        uint action = 0;
        if (Scanner(json.substr(at)).number(action) == Found::number) actions.push_back(action);
    }
    return actions;
}

/// Has tervoxal-solve ask it of the network. Nothing is left of its files.
SecondToken askSecondToken(const std::string& network, const std::string& expression,
                           long seconds) {
    const std::string solve = companion("tervoxal-solve");
    Children children;
    const TemporaryDirectory directory(temporaryPlace(), name);
    for (const auto& [file, text] :
         {std::pair("net.in", network), std::pair("questions", "second token: " + expression)}) {
        const std::string problem = writeFile(directory.path / file, text);
        if (!problem.empty()) return {.problem = problem};
    }
    const Launch launch{{solve, "--any", "--time=" + std::to_string(seconds),
                         "--questions=questions", "--format=json", "net"},
                        directory.path,
                        directory.path / "answer",
                        directory.path / "log"};
    if (children.start(launch) == 0) return {.problem = notStarted(launch)};
    const ChildEvent event = children.wait();
    if (event.signal != 0) return {.signal = event.signal};
    switch (event.status) {
    case 0:
    case 20: return {.status = event.status};
    case 10: return {.status = 10, .firings = actionsIn(fileText(launch.out))};
    default: return {.problem = howEnded("tervoxal-solve", event.status, launch.err)};
    }
}

/// Ends the process where the net is not safe.
void expectSafe(const std::string& file, const PetriNet& net, const NetAutomata& automata,
                long seconds) {
    std::ostringstream network;
    writeNetwork(net, automata, network);
    const SecondToken second =
        askSecondToken(network.str(), secondTokenExpression(net, automata), seconds);
    if (second.signal != 0) dieBy(second.signal);
    if (second.status == 1) error(second.problem);
    if (second.status == 10) {
        error(file + ": the net is not safe, for such nets there is --bound; it fires\n" +
              toSecondToken(net, second.firings));
    }
    if (second.status == 0) {
        std::cerr << file << ": warning: taken to be safe, since " << seconds
                  << " s of search did not tell\n";
    }
}

void importNet(const std::string& file, uint bound, long seconds) {
    const PetriNet net = readPnml(file, bound);
    const NetAutomata automata = automataOf(net);
    if (seconds > 0) {
        expectSafe(file, net, automata, seconds);
    } else if (bound == 0 && !net.safe) {
        std::cerr << file
                  << ": warning: taken to be safe, which the file does not say; to ask: " << name
                  << " --check-safe " << shellWord(file) << '\n';
    }
    for (const auto& [transition, always, reason] : automata.apart) {
        const PetriNet::Transition& its = net.transitions[transition];
        std::cerr << message(file, its.line,
                             "warning: transition " + shown(its.name) + " is " +
                                 (always ? "always" : "never") + " possible, it " + reason)
                  << '\n';
    }
    writeNetwork(net, automata, std::cout);
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine line({name,
                            "FILE...",
                            "Writes a network with names on standard output. FILE is one "
                            "place/transition net\n(.pnml), safe without --bound, or any number of "
                            "labelled transition "
                            "systems (.aut), which synchronise on\nequal labels.\n",
                            {{"bound", "N",
                              "a net that is not safe: up to N tokens on a place, 1 to 1000; what "
                              "would put\nmore cannot happen"},
                             {"check-safe", "",
                              "look for a second token on a place, and refuse a net that has "
                              "one"},
                             {"time", "SECONDS", "look for SECONDS at most (60)"}},
                            1,
                            -1},
                           argc, argv);
    std::ios::sync_with_stdio(false);
    const std::vector<std::string>& files = line.operands;
    const auto count = [&](const char* suffix) {
        return std::count_if(files.begin(), files.end(),
                             [&](const std::string& file) { return file.ends_with(suffix); });
    };
    const auto bound = static_cast<uint>(line.number("bound", 1, greatestBound, 0));
    const long seconds = line.number("time", 1, greatestSeconds, 60);
    if (line.has("time") && !line.has("check-safe")) line.misused("--time is for --check-safe");
    if (bound > 0 && line.has("check-safe")) line.misused("--bound or --check-safe");
    const auto all = static_cast<std::ptrdiff_t>(files.size());
    if (count(".aut") == all) {
        for (const char* option : {"bound", "check-safe"}) {
            if (line.has(option)) {
                line.misused("--" + std::string(option) + " is for .pnml files");
            }
        }
        writeNetwork(readAut(files), std::cout);
    } else if (count(".pnml") == all && all == 1) {
        importNet(files.front(), bound, line.has("check-safe") ? seconds : 0);
    } else if (count(".aut") + count(".pnml") == all) {
        error(name + ": one .pnml file or any number of .aut files can be imported at a time");
    } else {
        const auto unknown = std::find_if(files.begin(), files.end(), [](const std::string& file) {
            return !file.ends_with(".aut") && !file.ends_with(".pnml");
        });
        error(name + ": '" + *unknown + "' ends neither in .pnml nor in .aut");
    }
    return finished(0);
}
