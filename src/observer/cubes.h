// Conditions as cubes: a disjunction of conjunctions, each of which tells some automata in which
// locations they are (disjunctive normal form, whose literals have many values).

#pragma once

#include "model/ntamodel.h"
#include "query/condition.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace tervoxal {

/// By automaton, the locations in one of which it is; none of them is empty. All other automata are
/// anywhere.
using LocationCube = std::map<uint, std::set<uint>>;
using LocationCubes = std::vector<LocationCube>;

/// The automaton whose location tells the step that led to a state: location 0 is that before any
/// step, and that of any action but some, unless these two are told apart; the others are theirs.
struct LatestStep {
    uint automaton = 0; // none
    bool tellsInitial = false;
    std::vector<uint> actions{}; // ascending

    /// The location after an action.
    [[nodiscard]] uint location(uint action) const;
    [[nodiscard]] uint locations() const {
        return static_cast<uint>(actions.size()) + (tellsInitial ? 2 : 1);
    }
};

/// Writes conditions in the terms of one network, of which it is asked where its automata are and
/// what the last step was.
class CubeAlgebra {
public:
    /// The model must outlive it. It gives up beyond `most` locations in all cubes.
    CubeAlgebra(const NetTimedModel& model, LatestStep latest, std::size_t most);

    /// The cubes of a condition; nothing if there are too many. Precondition, of both: it negates
    /// atoms only and has no sums.
    [[nodiscard]] std::optional<LocationCubes> of(const Condition& condition);
    /// The condition by where automata are. Likewise.
    [[nodiscard]] std::optional<Condition> located(const Condition& condition);

    /// The locations of an automaton.
    [[nodiscard]] std::set<uint> locations(uint automaton) const;

    struct Value {
        LocationCubes cubes;
        std::optional<Condition::Token> atom{};
    };
    [[nodiscard]] static Value constant(bool value) {
        const auto term = value ? Condition::Term::truth : Condition::Term::falsity;
        return {LocationCubes(value ? 1 : 0), Condition::Token{term}};
    }
    [[nodiscard]] Value atom(const Condition::Token& token) {
        return {atomCubes(token, true), token};
    }
    [[nodiscard]] Value negation(const Value& a) { return {atomCubes(a.atom.value(), false)}; }
    [[nodiscard]] Value conjunction(const Value& a, const Value& b);
    [[nodiscard]] Value disjunction(const Value& a, const Value& b);

private:
    [[nodiscard]] LocationCubes atomCubes(const Condition::Token& token, bool positive);
    [[nodiscard]] LocationCubes inOneOf(const LocationCube& places, bool positive) const;
    [[nodiscard]] LocationCubes inAll(const LocationCube& places, bool positive) const;
    [[nodiscard]] LocationCubes enabled(uint action, bool positive) const;
    bool take(const LocationCubes& cubes);
    void add(std::vector<Condition::Token>& tokens, const LocationCubes& cubes) const;

    const NetTimedModel& model;
    const LatestStep latest;
    std::map<uint, LocationCube> carriers; // of propositions
    std::size_t left;                      // locations that may still be written
};

} // namespace tervoxal
