#include "fuzz.h"

#include "replay/walkfile.h"

#include <cassert>
#include <sstream>

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    NetTimedModel model; // two automata of 2 and 3 locations, which go round
    model.nrOfAutomata = 2;
    for (const auto& [automaton, locations] : {std::pair(1U, 2U), std::pair(2U, 3U)}) {
        for (uint l = 0; l < locations; ++l) {
            model.verts.try_emplace({automaton, l});
            model.actionEdges[{automaton, automaton}].insert({l, (l + 1) % locations});
        }
        model.actionAutomata[automaton] = {automaton};
    }
    model.compNrOfBits(0);
    const Transitions transitions(model);
    return orRefused([&] {
        std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
        const Path path = readWalk(in, "fuzz", transitions);
        for (const auto& [position, change] : path.changes) {
            assert(position >= 1 && position <= path.k);
            assert(model.actionEdges.at({change.automaton, change.automaton})
                       .contains({change.source, change.target}));
        }
    });
}
