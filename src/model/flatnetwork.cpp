#include "model/flatnetwork.h"

#include "model/owners.h"
#include "model/rows.h"
#include "text/equalrange.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace tervoxal {

namespace {

constexpr uint never = std::numeric_limits<uint>::max();

/// The network before anything is left out, and the levels of what runs may reach.
struct Raw {
    explicit Raw(const NetTimedModel& model);

    void findLevels();
    void reach(uint location, uint level, std::vector<uint>& found);

    using Participant = Owners::Owner;

    const Owners owners;
    std::vector<uint> locationsBegin; // of each automaton, from 1 on
    std::vector<uint> actionOf;       // of each participant
    std::vector<bool> ready;          // of each participant: it has come to a source
    std::vector<uint> waiting;        // of each action: its participants that are not ready
    Rows<uint> participantsAt;        // of each location, as a source of theirs
    std::vector<uint> locationLevel;
    std::vector<uint> actionLevel;

    [[nodiscard]] uint source(const Participant& p, const NetTimedModel::Move& move) const {
        return locationsBegin[p.automaton] + move.first;
    }
    [[nodiscard]] uint target(const Participant& p, const NetTimedModel::Move& move) const {
        return locationsBegin[p.automaton] + move.second;
    }
};

Raw::Raw(const NetTimedModel& model) : owners(model) {
    locationsBegin.resize(model.nrOfBits.size() + 1);
    for (const auto& [location, vertex] : model.verts) ++locationsBegin[location.first + 1];
    for (std::size_t a = 1; a < locationsBegin.size(); ++a) {
        locationsBegin[a] += locationsBegin[a - 1];
    }
    std::vector<std::pair<uint, uint>> sources;
    for (uint x = 0; x < owners.size(); ++x) {
        for (const Participant& p : owners[x]) {
            const auto index = static_cast<uint>(actionOf.size());
            for (const auto& move : *p.moves) {
                const std::pair<uint, uint> entry(source(p, move), index);
                if (sources.empty() || sources.back() != entry) sources.push_back(entry);
            }
            actionOf.push_back(x);
        }
    }
    participantsAt = Rows<uint>(locationsBegin.back(), sources);
    findLevels();
}

void Raw::reach(uint location, uint level, std::vector<uint>& found) {
    if (locationLevel[location] != never) return;
    locationLevel[location] = level;
    found.push_back(location);
}

void Raw::findLevels() {
    locationLevel.assign(locationsBegin.back(), never);
    actionLevel.assign(owners.size(), never);
    ready.resize(actionOf.size());
    std::vector<uint> found;
    std::vector<uint> next;
    for (std::size_t a = 1; a + 1 < locationsBegin.size(); ++a) reach(locationsBegin[a], 0, found);
    for (std::size_t x = 0; x < owners.size(); ++x) {
        waiting.push_back(static_cast<uint>(owners[x].size()));
        if (waiting[x] == 0) actionLevel[x] = 0;
    }
    for (uint level = 0; !found.empty(); ++level) {
        next.clear();
        const auto take = [&](const Participant& p, uint from) {
            const uint location = from - locationsBegin[p.automaton];
            for (auto move = p.moves->lower_bound({location, 0});
                 move != p.moves->end() && move->first == location; ++move) {
                reach(target(p, *move), level + 1, next);
            }
        };
        for (const uint location : found) {
            for (const uint p : participantsAt[location]) {
                const uint x = actionOf[p];
                if (!ready[p]) --waiting[x];
                ready[p] = true;
                if (waiting[x] != 0) continue;
                if (actionLevel[x] != never) {
                    take(owners[x][p - owners.begin(x)], location);
                    continue;
                }
                actionLevel[x] = level;
                for (const Participant& participant : owners[x]) {
                    for (const auto& move : *participant.moves) {
                        if (locationLevel[source(participant, move)] <= level) {
                            reach(target(participant, move), level + 1, next);
                        }
                    }
                }
            }
        }
        found.swap(next);
    }
}

} // namespace

FlatNetwork::FlatNetwork(const NetTimedModel& model) : model(model) {
    const Raw raw(model);
    std::vector<uint> automatonAt(raw.locationsBegin.size());
    std::vector<uint> locationAt(raw.locationLevel.size(), never);
    for (uint a = 1; a + 1 < raw.locationsBegin.size(); ++a) {
        const uint begin = raw.locationsBegin[a];
        const uint end = raw.locationsBegin[a + 1];
        const auto reached = [&](uint l) { return raw.locationLevel[l] != never; };
        uint count = 0;
        for (uint l = begin; l < end; ++l) count += reached(l) ? 1 : 0;
        if (count < 2) continue;
        const auto index = static_cast<uint>(automata.size());
        for (uint l = begin; l < end; ++l) {
            if (!reached(l)) continue;
            locationAt[l] = static_cast<uint>(locations.size());
            locations.push_back({l - begin, index, raw.locationLevel[l]});
            lastLevel = std::max(lastLevel, raw.locationLevel[l]);
        }
        automata.push_back({a, static_cast<uint>(locations.size())});
        automatonAt[a] = index;
    }
    for (std::size_t x = 0; x < raw.owners.size(); ++x) {
        if (raw.actionLevel[x] == never) continue;
        for (const Raw::Participant& p : raw.owners[x]) {
            if (locationAt[raw.locationsBegin[p.automaton]] == never) continue;
            for (const auto& move : *p.moves) {
                const uint source = locationAt[raw.source(p, move)];
                if (source != never) moves.push_back({source, locationAt[raw.target(p, move)]});
            }
            participants.push_back({automatonAt[p.automaton], static_cast<uint>(moves.size())});
        }
        actions.push_back(
            {raw.owners.number(x), static_cast<uint>(participants.size()), raw.actionLevel[x]});
        lastLevel = std::max(lastLevel, raw.actionLevel[x]);
    }
    std::vector<std::pair<uint, NetTimedModel::Location>> values;
    values.reserve(model.valuation.size());
    for (const auto& [location, prop] : model.valuation) values.emplace_back(prop, location);
    std::sort(values.begin(), values.end());
    for (const auto& [prop, location] : values) {
        carried.push_back(prop);
        carrying.push_back(location);
    }
}

std::optional<uint> FlatNetwork::automaton(uint a) const {
    const auto found = std::ranges::lower_bound(automata, a, {}, &Automaton::number);
    if (found == automata.end() || found->number != a) return {};
    return static_cast<uint>(found - automata.begin());
}

FlatNetwork::Place FlatNetwork::place(uint a, uint l) const {
    const auto index = automaton(a);
    if (!index) {
        const bool there = a >= 1 && static_cast<std::size_t>(a) < model.nrOfBits.size();
        return {there && l == 0, {}};
    }
    const auto end = locations.begin() + automata[*index].locationsEnd;
    const auto at = std::ranges::lower_bound(locations.begin() + locationsBegin(*index), end, l, {},
                                             &Location::number);
    if (at == end || at->number != l) return {false, {}};
    return {false, static_cast<uint>(at - locations.begin())};
}

std::optional<uint> FlatNetwork::action(uint number) const {
    const auto found = std::ranges::lower_bound(actions, number, {}, &Action::number);
    if (found == actions.end() || found->number != number) return {};
    return static_cast<uint>(found - actions.begin());
}

std::span<const NetTimedModel::Location> FlatNetwork::carriers(uint prop) const {
    const auto found = equalRange(std::span(carried), prop);
    return std::span(carrying).subspan(static_cast<std::size_t>(found.data() - carried.data()),
                                       found.size());
}

} // namespace tervoxal
