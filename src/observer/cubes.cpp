#include "observer/cubes.h"

#include <algorithm>
#include <utility>

namespace tervoxal {

using Term = Condition::Term;

CubeAlgebra::CubeAlgebra(const NetTimedModel& model, LatestStep latest, std::size_t most)
    : model(model), latest(std::move(latest)), left(most) {
    for (const auto& [location, prop] : model.valuation) {
        carriers[prop][location.first].insert(location.second);
    }
}

uint LatestStep::location(uint action) const {
    const uint other = tellsInitial ? 1 : 0;
    const auto found = std::ranges::lower_bound(actions, action);
    if (found == actions.end() || *found != action) return other;
    return other + 1 + static_cast<uint>(found - actions.begin());
}

std::set<uint> CubeAlgebra::locations(uint automaton) const {
    std::set<uint> all;
    if (automaton == latest.automaton) {
        for (uint l = 0; l < latest.locations(); ++l) all.insert(l);
        return all;
    }
    for (auto vertex = model.verts.lower_bound({automaton, 0});
         vertex != model.verts.end() && vertex->first.first == automaton; ++vertex) {
        all.insert(vertex->first.second);
    }
    return all;
}

/// Some automaton is in one of its places, or none is.
LocationCubes CubeAlgebra::inOneOf(const LocationCube& places, bool positive) const {
    if (!positive) {
        LocationCube cube;
        for (const auto& [a, in] : places) {
            std::set<uint> out = locations(a);
            for (const uint l : in) out.erase(l);
            if (out.empty()) return {};
            cube.emplace(a, std::move(out));
        }
        return {std::move(cube)};
    }
    LocationCubes cubes;
    for (const auto& [a, in] : places) cubes.push_back({{a, in}});
    return cubes;
}

/// Each automaton is in one of its places, or some is not.
LocationCubes CubeAlgebra::inAll(const LocationCube& places, bool positive) const {
    if (positive) return {places};
    LocationCubes cubes;
    for (const auto& place : places) {
        for (LocationCube& cube : inOneOf({place}, false)) cubes.push_back(std::move(cube));
    }
    return cubes;
}

LocationCubes CubeAlgebra::enabled(uint action, bool positive) const {
    const auto automata = model.actionAutomata.find(action);
    if (automata == model.actionAutomata.end()) return LocationCubes(positive ? 0 : 1);
    LocationCube sources;
    for (const uint a : automata->second) {
        for (const auto& [source, target] : model.actionEdges.at({a, action})) {
            sources[a].insert(source);
        }
    }
    return inAll(sources, positive);
}

LocationCubes CubeAlgebra::atomCubes(const Condition::Token& token, bool positive) {
    LocationCubes cubes;
    switch (token.term) {
    case Term::truth:
    case Term::falsity: return LocationCubes((token.term == Term::truth) == positive ? 1 : 0);
    case Term::at:
        if (!locations(token.number).contains(token.location))
            return LocationCubes(positive ? 0 : 1);
        cubes = inOneOf({{token.number, {token.location}}}, positive);
        break;
    case Term::prop: cubes = inOneOf(carriers[token.number], positive); break;
    case Term::enabled: cubes = enabled(token.number, positive); break;
    case Term::after:
    case Term::initial: {
        const uint l = token.term == Term::initial ? 0 : latest.location(token.number);
        cubes = inOneOf({{latest.automaton, {l}}}, positive);
        break;
    }
    default: // a deadlock
        if (positive) cubes = LocationCubes(1);
        for (const auto& [action, automata] : model.actionAutomata) {
            LocationCubes own = enabled(action, !positive);
            if (positive) {
                cubes = conjunction({std::move(cubes)}, {std::move(own)}).cubes;
            } else {
                std::ranges::move(own, std::back_inserter(cubes));
            }
        }
    }
    return take(cubes) ? cubes : LocationCubes();
}

bool CubeAlgebra::take(const LocationCubes& cubes) {
    for (const LocationCube& cube : cubes) {
        std::size_t size = 1;
        for (const auto& [a, in] : cube) size += in.size();
        left -= std::min(left, size);
    }
    return left > 0;
}

CubeAlgebra::Value CubeAlgebra::disjunction(const Value& a, const Value& b) {
    if (!take(a.cubes) || !take(b.cubes)) return {};
    LocationCubes cubes = a.cubes;
    cubes.insert(cubes.end(), b.cubes.begin(), b.cubes.end());
    return {std::move(cubes)};
}

CubeAlgebra::Value CubeAlgebra::conjunction(const Value& a, const Value& b) {
    LocationCubes cubes;
    for (const LocationCube& x : a.cubes) {
        for (const LocationCube& y : b.cubes) {
            LocationCube both = x;
            bool possible = true;
            for (const auto& [automaton, in] : y) {
                const auto [place, isNew] = both.try_emplace(automaton, in);
                if (!isNew) {
                    std::erase_if(place->second, [&in = in](uint l) { return !in.contains(l); });
                }
                possible = possible && !place->second.empty();
            }
            if (!take({both})) return {};
            if (possible) cubes.push_back(std::move(both));
        }
    }
    return {std::move(cubes)};
}

std::optional<LocationCubes> CubeAlgebra::of(const Condition& condition) {
    Value value = valueOf(condition, *this);
    if (left == 0) return {};
    return std::move(value.cubes);
}

/// Some automata in a place each, as a disjunction of conjunctions of disjunctions.
void CubeAlgebra::add(std::vector<Condition::Token>& tokens, const LocationCubes& cubes) const {
    const auto joined = [&](std::size_t& count, Term by) {
        if (count++ > 0) tokens.push_back({by});
    };
    std::size_t alternatives = 0;
    for (const LocationCube& cube : cubes) {
        std::size_t places = 0;
        for (const auto& [a, in] : cube) {
            std::size_t choices = 0;
            for (const uint l : in) {
                tokens.push_back({Term::at, a, l});
                joined(choices, Term::disjunction);
            }
            joined(places, Term::conjunction);
        }
        if (cube.empty()) tokens.push_back({Term::truth});
        joined(alternatives, Term::disjunction);
    }
    if (cubes.empty()) tokens.push_back({Term::falsity});
}

std::optional<Condition> CubeAlgebra::located(const Condition& condition) {
    Condition result;
    for (std::size_t i = 0; i < condition.tokens.size(); ++i) {
        const Condition::Token& token = condition.tokens[i];
        const bool isNegated =
            i + 1 < condition.tokens.size() && condition.tokens[i + 1].term == Term::negation;
        switch (token.term) {
        case Term::enabled:
        case Term::after:
        case Term::initial:
            add(result.tokens, atomCubes(token, !isNegated));
            i += isNegated ? 1 : 0;
            break;
        case Term::deadlock:
            result.tokens.push_back({isNegated ? Term::falsity : Term::truth});
            for (const auto& [action, automata] : model.actionAutomata) {
                add(result.tokens, atomCubes({Term::enabled, action}, isNegated));
                result.tokens.push_back({isNegated ? Term::disjunction : Term::conjunction});
            }
            i += isNegated ? 1 : 0;
            break;
        default: result.tokens.push_back(token);
        }
    }
    if (left == 0) return {};
    return result;
}

} // namespace tervoxal
