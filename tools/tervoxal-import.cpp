// The command tervoxal-import: Petri nets and labelled transition systems as networks.

#include "import/aut.h"
#include "import/message.h"
#include "import/petrinet.h"
#include "import/pnml.h"
#include "system/command.h"
#include "text/fatal.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

using namespace tervoxal;

namespace {

const std::string name = "tervoxal-import";

constexpr long greatestBound = 1000; // the propositions of a place take its square of text

void importNet(const std::string& file, uint bound) {
    const PetriNet net = readPnml(file, bound);
    const NetAutomata automata = automataOf(net);
    for (const auto& [transition, reason] : automata.leftOut) {
        const auto& [title, line] = net.transitions[transition];
        std::cerr << message(file, line,
                             "warning: transition " + shown(title) + " is left out: " + reason)
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
                              "would put\nmore cannot happen"}},
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
    const auto all = static_cast<std::ptrdiff_t>(files.size());
    if (count(".aut") == all) {
        if (bound > 0) line.misused("--bound is for .pnml files");
        writeNetwork(readAut(files), std::cout);
    } else if (count(".pnml") == all && all == 1) {
        importNet(files.front(), bound);
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
