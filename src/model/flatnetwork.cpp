#include "model/flatnetwork.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace tervoxal {

namespace {

constexpr uint never = std::numeric_limits<uint>::max();

/// The network of a network before anything is left out, and the levels of what runs may reach.
struct Raw {
    explicit Raw(const NetTimedModel& model);

    void findLevels();
    void reach(uint location, uint level, std::vector<uint>& found);

    struct Participant {
        uint action;
        uint automaton;
        const std::set<NetTimedModel::Move>* moves;
        bool ready; // it has come to a source
    };

    std::vector<uint> locationsBegin; // of each automaton, from 1 on
    std::vector<uint> actionNumbers;
    std::vector<Participant> participants;
    std::vector<uint> participantsBegin; // of each action
    std::vector<uint> participantOf;     // of each location, as the source of a participant
    std::vector<uint> participantOfBegin;
    std::vector<uint> waiting; // of each action: its participants that have not come to a source
    std::vector<uint> locationLevel;
    std::vector<uint> actionLevel;

    [[nodiscard]] uint source(const Participant& p, const NetTimedModel::Move& move) const {
        return locationsBegin[p.automaton] + move.first;
    }
    [[nodiscard]] uint target(const Participant& p, const NetTimedModel::Move& move) const {
        return locationsBegin[p.automaton] + move.second;
    }
};

Raw::Raw(const NetTimedModel& model) {
    locationsBegin.resize(model.nrOfBits.size() + 1);
    for (const auto& [location, vertex] : model.verts) ++locationsBegin[location.first + 1];
    for (std::size_t a = 1; a < locationsBegin.size(); ++a) {
        locationsBegin[a] += locationsBegin[a - 1];
    }
    actionNumbers.reserve(model.actionAutomata.size());
    for (const auto& [number, automata] : model.actionAutomata) actionNumbers.push_back(number);
    for (const auto& [local, moves] : model.actionEdges) {
        if (model.nrOfBits[local.first] == 0) continue; // it takes part from every state
        const auto at = std::lower_bound(actionNumbers.begin(), actionNumbers.end(), local.second);
        participants.push_back(
            {static_cast<uint>(at - actionNumbers.begin()), local.first, &moves, false});
    }
    std::stable_sort(
        participants.begin(), participants.end(),
        [](const Participant& p, const Participant& q) { return p.action < q.action; });
    participantsBegin.resize(actionNumbers.size() + 1);
    for (const Participant& p : participants) ++participantsBegin[p.action + 1];
    for (std::size_t x = 1; x < participantsBegin.size(); ++x) {
        participantsBegin[x] += participantsBegin[x - 1];
    }
    std::vector<std::pair<uint, uint>> sources;
    for (uint p = 0; p < participants.size(); ++p) {
        for (const auto& move : *participants[p].moves) {
            const std::pair<uint, uint> entry(source(participants[p], move), p);
            if (sources.empty() || sources.back() != entry) sources.push_back(entry);
        }
    }
    std::sort(sources.begin(), sources.end());
    participantOfBegin.resize(locationsBegin.back() + 1);
    for (const auto& [location, p] : sources) {
        participantOf.push_back(p);
        ++participantOfBegin[location + 1];
    }
    for (std::size_t l = 1; l < participantOfBegin.size(); ++l) {
        participantOfBegin[l] += participantOfBegin[l - 1];
    }
    findLevels();
}

void Raw::reach(uint location, uint level, std::vector<uint>& found) {
    if (locationLevel[location] != never) return;
    locationLevel[location] = level;
    found.push_back(location);
}

void Raw::findLevels() {
    locationLevel.assign(locationsBegin.back(), never);
    actionLevel.assign(actionNumbers.size(), never);
    waiting.resize(actionNumbers.size());
    for (const Participant& p : participants) ++waiting[p.action];
    std::vector<uint> found;
    std::vector<uint> next;
    for (std::size_t a = 1; a + 1 < locationsBegin.size(); ++a) reach(locationsBegin[a], 0, found);
    for (std::size_t x = 0; x < waiting.size(); ++x) {
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
            for (uint i = participantOfBegin[location]; i < participantOfBegin[location + 1]; ++i) {
                Participant& participant = participants[participantOf[i]];
                const uint x = participant.action;
                if (!participant.ready) --waiting[x];
                participant.ready = true;
                if (waiting[x] != 0) continue;
                if (actionLevel[x] != never) {
                    take(participant, location);
                    continue;
                }
                actionLevel[x] = level;
                for (uint p = participantsBegin[x]; p < participantsBegin[x + 1]; ++p) {
                    for (const auto& move : *participants[p].moves) {
                        const uint from = source(participants[p], move);
                        if (locationLevel[from] <= level) {
                            reach(target(participants[p], move), level + 1, next);
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
    for (uint x = 0; x < raw.actionNumbers.size(); ++x) {
        if (raw.actionLevel[x] == never) continue;
        for (uint i = raw.participantsBegin[x]; i < raw.participantsBegin[x + 1]; ++i) {
            const Raw::Participant& p = raw.participants[i];
            if (locationAt[raw.locationsBegin[p.automaton]] == never) continue;
            for (const auto& move : *p.moves) {
                const uint source = locationAt[raw.source(p, move)];
                if (source != never) moves.push_back({source, locationAt[raw.target(p, move)]});
            }
            participants.push_back({automatonAt[p.automaton], static_cast<uint>(moves.size())});
        }
        actions.push_back(
            {raw.actionNumbers[x], static_cast<uint>(participants.size()), raw.actionLevel[x]});
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
    const auto found =
        std::lower_bound(automata.begin(), automata.end(), a,
                         [](const Automaton& x, uint number) { return x.number < number; });
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
    const auto at =
        std::lower_bound(locations.begin() + locationsBegin(*index), end, l,
                         [](const Location& x, uint number) { return x.number < number; });
    if (at == end || at->number != l) return {false, {}};
    return {false, static_cast<uint>(at - locations.begin())};
}

std::optional<uint> FlatNetwork::action(uint number) const {
    const auto found =
        std::lower_bound(actions.begin(), actions.end(), number,
                         [](const Action& x, uint wanted) { return x.number < wanted; });
    if (found == actions.end() || found->number != number) return {};
    return static_cast<uint>(found - actions.begin());
}

std::span<const NetTimedModel::Location> FlatNetwork::carriers(uint prop) const {
    const auto [begin, end] = std::equal_range(carried.begin(), carried.end(), prop);
    return std::span(carrying).subspan(static_cast<std::size_t>(begin - carried.begin()),
                                       static_cast<std::size_t>(end - begin));
}

} // namespace tervoxal
