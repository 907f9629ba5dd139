// The command tervoxal-info: what a network consists of.

#include "model/names.h"
#include "report/overview.h"
#include "statespace/statespace.h"
#include "system/command.h"
#include "system/filenames.h"

#include <algorithm>
#include <iostream>
#include <string>

using namespace tervoxal;

namespace {

constexpr long usualStates = 10000000;
/// Of 8 automata 10 million states take 0.3 GB, of thousands of automata 10000 states do.
constexpr std::size_t usualMemory = std::size_t(1) << 30U;

/// Counts up to so many states, and no further than the memory goes.
StateCount countStates(const NetTimedModel& model, std::size_t most, std::size_t memory) {
    const FlatNetwork network(model);
    const Participation participation(network);
    StateSpace space(participation);
    while (!space.complete() && !space.full() && space.size() <= most && space.memory() <= memory) {
        space.expand();
    }
    const bool complete = space.complete() && space.size() <= most;
    return {complete, complete ? space.size() : std::min(space.size() - 1, most), space.steps(),
            space.deadlocks(), space.depth()};
}

} // namespace

int main(int argc, char* argv[]) {
    const Command command{
        "tervoxal-info",
        "NetworkFile",
        "Tells what the network NetworkFile.in consists of: how many automata, locations, actions\n"
        "and propositions, the bits of a state and the longest path that a run takes; the "
        "automata\n"
        "with their sizes, the actions with the automata that share them, the propositions with "
        "the\n"
        "places that carry them. Of long lists it shows the largest elements.\n",
        {{"states", "[N]",
          "count the reachable states, up to N of them (10000000, or what fits into\n1 GiB), with "
          "steps, deadlocks and the greatest distance from the initial state"},
         {"all", "", "show all of long lists"},
         {"json", "", "as one JSON object, which has everything"}},
        1,
        1};
    const CommandLine line(command, argc, argv);
    const bool counted = !line.value("states", "").empty();
    const auto most = static_cast<std::size_t>(
        counted ? line.number("states", 1, 1000000000, usualStates) : usualStates);
    std::ios::sync_with_stdio(false);
    NetTimedModel model;
    Names names;
    Overview overview{model, names, inputName(line.operands[0]), {}, line.has("all")};
    readNamedNetwork(model, names, overview.network);
    if (line.has("states")) {
        overview.states = countStates(model, most, counted ? SIZE_MAX : usualMemory);
    }
    if (line.has("json")) {
        showJsonOverview(std::cout, overview);
    } else {
        showOverview(std::cout, overview);
    }
    return finished(0);
}
