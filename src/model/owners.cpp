#include "model/owners.h"

#include <algorithm>
#include <cassert>

namespace tervoxal {

Owners::Owners(const NetTimedModel& model) {
    actions.reserve(model.actionAutomata.size());
    for (const auto& [number, automata] : model.actionAutomata) {
        for (const uint a : automata) {
            if (model.nrOfBits[a] == 0) continue;
            owners.push_back({a, &model.actionEdges.at({a, number})});
        }
        actions.push_back({number, owners.size()});
    }
}

std::size_t Owners::index(uint number) const {
    const auto found = std::ranges::lower_bound(actions, number, {}, &Action::number);
    assert(found != actions.end() && found->number == number);
    return static_cast<std::size_t>(found - actions.begin());
}

} // namespace tervoxal
