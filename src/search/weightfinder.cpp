#include "search/weightfinder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <utility>

namespace tervoxal {

namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

/// A row for each location but the first of its automaton, then one for each automaton of three
/// locations and more, then one for each participant with a choice.
std::vector<LinearProgram::Range> rowsOf(const FlatNetwork& network) {
    std::vector<LinearProgram::Range> rows(network.locations.size() - network.automata.size());
    for (uint a = 0; a < network.automata.size(); ++a) {
        if (network.locationsOf(a).size() > 2) rows.push_back({-unlimited, 1});
    }
    for (uint p = 0; p < network.participants.size(); ++p) {
        if (network.movesOf(p).size() > 1) rows.push_back({0, 0});
    }
    return rows;
}

/// The least multiples of the values that are integers, as far as floating point can tell.
std::optional<std::vector<std::int64_t>> integers(const std::vector<double>& values) {
    constexpr double greatest = 1 << 30;
    constexpr double exact = 1e-6;
    constexpr int denominators = 100;
    double most = 0;
    for (const double value : values) most = std::max(most, std::abs(value));
    double least = most;
    for (const double value : values) {
        if (std::abs(value) > most * 1e-9) least = std::min(least, std::abs(value));
    }
    if (most == 0) return {};
    double scale = 1 / least;
    for (const double value : values) {
        if (most * scale > greatest) return {};
        const auto isInteger = [&](int factor) {
            const double scaled = value * scale * factor;
            return std::abs(scaled - std::round(scaled)) < exact;
        };
        int factor = 1;
        while (factor <= denominators && !isInteger(factor)) ++factor;
        if (factor > denominators) return {};
        scale *= factor;
    }
    if (most * scale > greatest) return {};
    std::vector<std::int64_t> scaled;
    scaled.reserve(values.size());
    for (const double value : values) scaled.push_back(std::llround(value * scale));
    return scaled;
}

} // namespace

WeightFinder::WeightFinder(const FlatNetwork& network)
    : network(network), program(rowsOf(network)) {
    int row = static_cast<int>(network.locations.size() - network.automata.size());
    const auto add = [&](LinearProgram::Range range, const std::vector<LinearProgram::Entry>& all) {
        program.column(range, all);
        size += static_cast<std::int64_t>(all.size());
    };
    for (uint a = 0; a < network.automata.size(); ++a) {
        const bool several = network.locationsOf(a).size() > 2;
        for (const uint l : network.locationsOf(a)) {
            if (l == network.locationsBegin(a)) continue;
            if (several) {
                add({0, 1}, {{column(l), 1}, {row, 1}});
            } else {
                add({0, 1}, {{column(l), 1}});
            }
        }
        if (several) ++row;
    }
    for (uint x = 0; x < network.actions.size(); ++x) {
        std::vector<LinearProgram::Entry> action;
        const auto move = [&](std::vector<LinearProgram::Entry>& entries, uint m) {
            const auto [source, target] = network.moves[m];
            if (source == target) return;
            if (network.locations[source].number != 0) entries.push_back({column(source), 1});
            if (network.locations[target].number != 0) entries.push_back({column(target), -1});
        };
        for (const uint p : network.participantsOf(x)) {
            if (network.movesOf(p).size() == 1) {
                move(action, network.movesBegin(p));
                continue;
            }
            action.push_back({row, -1});
            for (const uint m : network.movesOf(p)) {
                std::vector<LinearProgram::Entry> entries = {{row, 1}};
                move(entries, m);
                add({0, unlimited}, entries);
            }
            ++row;
        }
        if (!action.empty()) add({0, unlimited}, action);
    }
}

std::int64_t WeightFinder::cost() const {
    // What a question costs before its first iteration is most of it: .7 ms of 148 automata with
    // 755 locations, .2 ms of 253 with 506.
    constexpr std::int64_t share = 100;
    return size + asked * (size + size / 2) + program.iterations() * (size / share + 1);
}

/// Of a location that is not the first of its automaton; its row has the same number.
int WeightFinder::column(uint l) const {
    return static_cast<int>(l - network.locations[l].automaton - 1);
}

/// Whether the automaton has to be in the location.
void WeightFinder::fix(uint l, bool fixed) {
    if (network.locations[l].number != 0) {
        program.bound(column(l), {fixed ? 1.0 : 0.0, 1});
        return;
    }
    for (const uint other : network.locationsOf(network.locations[l].automaton)) {
        if (other != l) program.bound(column(other), {0, fixed ? 0.0 : 1.0});
    }
}

std::optional<Certificate::Weighed> WeightFinder::exclude(std::span<const uint> cube,
                                                          const std::function<bool()>& stop) {
    constexpr int iterations = 100000;
    ++asked;
    for (const uint l : cube) fix(l, true);
    const LinearProgram::Verdict verdict = program.solve(iterations, stop);
    for (const uint l : cube) fix(l, false);
    if (verdict != LinearProgram::Verdict::infeasible) return {};
    std::optional<std::vector<double>> factors = program.ray();
    if (!factors) return {};
    factors->resize(network.locations.size() - network.automata.size());
    const auto scaled = integers(*factors);
    if (!scaled) return {};

    // The least weight of an automaton is 0, and all have no divisor in common.
    std::vector<std::int64_t> values(network.locations.size());
    std::int64_t divisor = 0;
    for (uint a = 0; a < network.automata.size(); ++a) {
        std::int64_t least = 0;
        for (const uint l : network.locationsOf(a)) {
            if (network.locations[l].number != 0) {
                values[l] = (*scaled)[static_cast<std::size_t>(column(l))];
            }
            least = std::min(least, values[l]);
        }
        for (const uint l : network.locationsOf(a)) {
            values[l] -= least;
            divisor = std::gcd(divisor, values[l]);
        }
    }
    if (divisor == 0) return {};
    Certificate::Weighed found;
    std::vector<uint> weights;
    weights.reserve(values.size());
    for (const std::int64_t value : values) weights.push_back(static_cast<uint>(value / divisor));
    for (uint l = 0; l < weights.size(); ++l) {
        const auto& [number, automaton, level] = network.locations[l];
        if (weights[l] == 0) continue;
        found.weights.push_back({network.automata[automaton].number, number, weights[l]});
    }
    found.sets.push_back(enlarged(cube, weights));
    return found;
}

/// Without a location of the cube where the rest has a sum that is too great as well, the cheapest
/// ones first; and where an automaton stays, with all its locations of no smaller weight.
Certificate::Set WeightFinder::enlarged(std::span<const uint> cube,
                                        const std::vector<uint>& weights) const {
    std::int64_t surplus = 0; // of the cube, above the sum at the start
    for (uint a = 0; a < network.automata.size(); ++a)
        surplus -= weights[network.locationsBegin(a)];
    std::vector<uint> dearest(cube.begin(), cube.end());
    for (const uint l : dearest) surplus += weights[l];
    std::ranges::stable_sort(dearest, std::greater{}, [&](uint l) { return weights[l]; });
    while (!dearest.empty() && surplus > weights[dearest.back()]) {
        surplus -= weights[dearest.back()];
        dearest.pop_back();
    }
    std::ranges::sort(dearest);
    Certificate::Set set;
    for (const uint l : dearest) {
        const uint a = network.locations[l].automaton;
        Certificate::Places places{network.automata[a].number, {}};
        for (const uint k : network.locationsOf(a)) {
            if (weights[k] >= weights[l]) places.locations.push_back(network.locations[k].number);
        }
        set.push_back(std::move(places));
    }
    return set;
}

} // namespace tervoxal
