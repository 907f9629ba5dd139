// Which actions each automaton of a flat network takes part in.

#pragma once

#include "model/flatnetwork.h"
#include "model/rows.h"

#include <span>
#include <vector>

namespace tervoxal {

class Participation {
public:
    /// Linear in the network, which must outlive it.
    explicit Participation(const FlatNetwork& network);

    /// The participants of the network that are that automaton, ascending, so by ascending action.
    [[nodiscard]] std::span<const uint> of(uint automaton) const { return participants[automaton]; }
    /// The action of a participant.
    [[nodiscard]] uint action(uint participant) const { return actions[participant]; }
    /// The actions without a participant: possible in each state, which they do not change.
    [[nodiscard]] std::span<const uint> idle() const { return alone; }

    const FlatNetwork& network;

private:
    std::vector<uint> actions;
    Rows<uint> participants;
    std::vector<uint> alone;
};

} // namespace tervoxal
