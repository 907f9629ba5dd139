#include "certificate/weightscheck.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

namespace tervoxal {

namespace {

/// Weights by location of a network. A weight has 32 bits and there are fewer automata than that
/// many, so no sum leaves 64 bits. An automaton that is always in one location has no part in what
/// a sum changes by.
class Sums {
public:
    Sums(const FlatNetwork& network, const std::vector<Certificate::Weight>& weights)
        : network(network), weightOf(network.locations.size()) {
        for (const auto& [automaton, location, weight] : weights) {
            const auto l = network.place(automaton, location).location;
            if (l) weightOf[*l] = weight;
        }
        for (uint a = 0; a < network.automata.size(); ++a) {
            std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
            for (const uint l : network.locationsOf(a)) smallest = std::min(smallest, weightOf[l]);
            leastOf.push_back(smallest);
            least += smallest;
            initially += weightOf[network.locationsBegin(a)];
        }
    }

    [[nodiscard]] bool increases(uint x) const {
        std::int64_t gain = 0;
        for (const uint p : network.participantsOf(x)) {
            std::int64_t greatest = std::numeric_limits<std::int64_t>::min();
            for (const uint m : network.movesOf(p)) {
                const auto& [source, target] = network.moves[m];
                greatest = std::max(greatest, weightOf[target] - weightOf[source]);
            }
            gain += greatest;
        }
        return gain > 0;
    }

    /// Whether each state of the set has a greater sum than the initial one.
    [[nodiscard]] bool exclude(const Certificate::Set& set) const {
        std::int64_t sum = least;
        uint last = 0; // automaton, so that none counts twice
        for (const Certificate::Places& places : set) {
            const auto a = network.automaton(places.automaton);
            if (!a || places.automaton <= last) continue;
            last = places.automaton;
            std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
            for (const uint location : places.locations) {
                const auto l = network.place(places.automaton, location).location;
                if (l) smallest = std::min(smallest, weightOf[*l]);
            }
            if (smallest == std::numeric_limits<std::int64_t>::max()) return true; // no such state
            sum += smallest - leastOf[*a];
        }
        return sum > initially;
    }

private:
    const FlatNetwork& network;
    std::vector<std::int64_t> weightOf;
    std::vector<std::int64_t> leastOf; // of each automaton's locations
    std::int64_t least = 0;
    std::int64_t initially = 0;
};

} // namespace

std::string weightsFault(const FlatNetwork& network, const Certificate::Weighed& weighed) {
    const Sums sums(network, weighed.weights);
    for (uint x = 0; x < network.actions.size(); ++x) {
        if (sums.increases(x)) return "an action increases a sum of weights";
    }
    for (const Certificate::Set& set : weighed.sets) {
        if (!sums.exclude(set)) return "a set has a state whose sum of weights may be reached";
    }
    return "";
}

} // namespace tervoxal
