#include "model/layout.h"

namespace tervoxal {

std::vector<uint> automataOfBits(const NetTimedModel& model) {
    std::vector<uint> automata;
    for (uint a = 1; a < model.nrOfBits.size(); ++a) {
        automata.insert(automata.end(), static_cast<std::size_t>(model.nrOfBits[a]), a);
    }
    return automata;
}

} // namespace tervoxal
