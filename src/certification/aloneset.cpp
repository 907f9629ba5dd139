#include "certification/aloneset.h"

#include "statespace/statespace.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tervoxal {

namespace {

using Number = StateSpace::State;

/// The states by ascending locations, the first automaton first.
std::vector<Number> sorted(const StateSpace& space) {
    std::vector<Number> order(space.size());
    std::iota(order.begin(), order.end(), Number(0));
    const auto slots = static_cast<uint>(space.automata().size());
    std::ranges::sort(order, [&](Number x, Number y) {
        for (uint slot = 0; slot < slots; ++slot) {
            const uint l = space.location(x, slot);
            const uint m = space.location(y, slot);
            if (l != m) return l < m;
        }
        return false;
    });
    return order;
}

} // namespace

std::optional<AloneSet> AloneSet::of(const FlatNetwork& network, const std::vector<uint>& automata,
                                     std::size_t most) {
    AloneSet set(network.model);
    std::vector<uint> members;
    for (const uint a : automata) {
        const auto index = network.automaton(a);
        if (!index) continue;
        set.automata.push_back(a);
        members.push_back(*index);
    }
    if (members.empty()) {
        set.states = 1;
        return set;
    }
    const Participation participation(network);
    StateSpace space(participation, members);
    while (!space.complete()) {
        if (space.size() > most || space.full()) return {};
        space.expand();
    }
    set.states = space.size();

    // The nodes on the way to the state before, whose edges are not all known yet.
    std::vector<Node> open;
    for (std::size_t slot = 0; slot < members.size(); ++slot) open.push_back({slot, {}});
    const auto locationOf = [&](Number state, std::size_t slot) {
        return network.locations[space.location(state, static_cast<uint>(slot))].number;
    };
    /// Closes the nodes from the slot on, each of which is where an edge of the one before leads.
    const auto close = [&](Number last, std::size_t from) {
        for (std::size_t slot = members.size(); slot-- > from;) {
            const std::size_t target =
                slot + 1 == members.size()
                    ? 0
                    : set.numberOf({slot + 1, std::exchange(open[slot + 1].edges, {})});
            open[slot].edges.push_back({target, locationOf(last, slot)});
        }
    };
    const std::vector<Number> order = sorted(space);
    for (std::size_t i = 1; i < order.size(); ++i) {
        std::size_t slot = 0;
        while (locationOf(order[i - 1], slot) == locationOf(order[i], slot)) ++slot;
        close(order[i - 1], slot);
    }
    close(order.back(), 0);
    (void)set.numberOf(std::move(open.front()));
    return set;
}

/// The number of a node; its edges are put in order by where they lead.
std::size_t AloneSet::numberOf(Node node) {
    std::ranges::sort(node.edges);
    const auto [entry, isNew] = known.try_emplace(std::move(node), nodes.size());
    if (isNew) nodes.push_back(entry->first);
    return entry->second;
}

BoolForm AloneSet::holds(const SymState& state) const {
    std::vector<BoolForm> formulas = {BoolForm(true)};
    for (std::size_t n = 1; n < nodes.size(); ++n) {
        const auto a = static_cast<int>(automata[nodes[n].slot]);
        BoolForm some(false);
        for (auto edge = nodes[n].edges.begin(); edge != nodes[n].edges.end();) {
            const std::size_t target = edge->target;
            BoolForm here(false);
            for (; edge != nodes[n].edges.end() && edge->target == target; ++edge) {
                here = dis(here, model->bef(a, static_cast<int>(edge->location), state.loc));
            }
            some = dis(some, con(here, formulas[target]));
        }
        formulas.push_back(some);
    }
    return formulas.back();
}

bool AloneSet::contains(const State& state) const {
    std::size_t n = nodes.size() - 1;
    while (n != 0) {
        const auto edge =
            std::ranges::find(nodes[n].edges, state[automata[nodes[n].slot]], &Edge::location);
        if (edge == nodes[n].edges.end()) return false;
        n = edge->target;
    }
    return true;
}

} // namespace tervoxal
