#include "statespace/participation.h"

namespace tervoxal {

Participation::Participation(const FlatNetwork& network) : network(network) {
    begin.resize(network.automata.size() + 1);
    for (const FlatNetwork::Participant& p : network.participants) ++begin[p.automaton + 1];
    for (std::size_t a = 1; a < begin.size(); ++a) begin[a] += begin[a - 1];
    participants.resize(network.participants.size());
    std::vector<uint> end(begin.begin(), begin.end() - 1);
    for (uint x = 0; x < network.actions.size(); ++x) {
        if (network.participantsOf(x).empty()) alone.push_back(x);
        for (const uint p : network.participantsOf(x)) {
            actions.push_back(x);
            participants[end[network.participants[p].automaton]++] = p;
        }
    }
}

} // namespace tervoxal
