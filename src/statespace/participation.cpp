#include "statespace/participation.h"

#include <utility>

namespace tervoxal {

Participation::Participation(const FlatNetwork& network) : network(network) {
    std::vector<std::pair<uint, uint>> entries;
    entries.reserve(network.participants.size());
    for (uint x = 0; x < network.actions.size(); ++x) {
        if (network.participantsOf(x).empty()) alone.push_back(x);
        for (const uint p : network.participantsOf(x)) {
            actions.push_back(x);
            entries.emplace_back(network.participants[p].automaton, p);
        }
    }
    participants = Rows<uint>(network.automata.size(), entries);
}

} // namespace tervoxal
