#include "fuzz.h"

#include "replay/sidefile.h"

#include <cassert>

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    NetTimedModel model; // three automata of 1, 4 and 5 locations
    model.nrOfAutomata = 3;
    for (const auto& [automaton, locations] :
         {std::pair(1U, 1U), std::pair(2U, 4U), std::pair(3U, 5U)}) {
        for (uint l = 0; l < locations; ++l) model.verts.try_emplace({automaton, l});
    }
    model.compNrOfBits(0);
    constexpr int k = 2;
    return orRefused([&] {
        const InputFile input(data, size, ".lck");
        const int most = (k + 1) * model.totalNrVertBits;
        const int variables = readSideFile(model, k, input.name);
        assert(variables >= 0 && variables <= most);
    });
}
