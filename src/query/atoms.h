// The atoms of a condition in the flat network of which it is asked: what they say of the locations
// and the actions there, written once for all that give conditions a value.
//
// An algebra for atoms is one for conditions (condition.h) that has, with values of the same kind,
//
//     located(location)       the automaton of the location is there
//     possible(action)        some step takes the action; possibleValue, if it is not known yet
//     deadlock()              no step is possible; deadlockValue, likewise
//     sum(token)              the token, a sum
//     some(count, value)      one of value(0) to value(count - 1) holds; none is needed after one
//                             that holds in any case
//
// with the indices of the flat network.

#pragma once

#include "model/flatnetwork.h"
#include "query/condition.h"

#include <cassert>
#include <cstddef>
#include <vector>

namespace tervoxal {

/// The value of an atom. Precondition, asserted: it is about a state alone.
template <class Algebra>
[[nodiscard]] auto atomValue(const FlatNetwork& network, const Condition::Token& atom,
                             Algebra& algebra) {
    using Term = Condition::Term;
    const auto at = [&](uint a, uint l) {
        const FlatNetwork::Place place = network.place(a, l);
        return place.location ? algebra.located(*place.location) : algebra.constant(place.always);
    };
    switch (atom.term) {
    case Term::at: return at(atom.number, atom.location);
    case Term::prop: {
        const auto carriers = network.carriers(atom.number);
        return algebra.some(carriers.size(), [&](std::size_t i) {
            return at(carriers[i].first, carriers[i].second);
        });
    }
    case Term::enabled: {
        const auto x = network.action(atom.number);
        return x ? algebra.possible(*x) : algebra.constant(false);
    }
    case Term::sum: return algebra.sum(atom);
    default: assert(atom.term == Term::deadlock); return algebra.deadlock();
    }
}

/// An action is possible: no participant is where it cannot take part.
template <class Algebra>
[[nodiscard]] auto possibleValue(const FlatNetwork& network, uint action, Algebra& algebra) {
    const auto participants = network.participantsOf(action);
    return algebra.negation(algebra.some(participants.size(), [&](std::size_t i) {
        const auto moves = network.movesOf(participants.first + static_cast<uint>(i));
        return algebra.negation(algebra.some(moves.size(), [&](std::size_t m) {
            return algebra.located(network.moves[moves.first + m].source);
        }));
    }));
}

/// No action is possible.
template <class Algebra>
[[nodiscard]] auto deadlockValue(const FlatNetwork& network, Algebra& algebra) {
    return algebra.negation(algebra.some(network.actions.size(), [&](std::size_t x) {
        return algebra.possible(static_cast<uint>(x));
    }));
}

/// By automaton of the flat network: those of which the truth of a condition depends, all of them
/// where it names a deadlock. Linear in what the atoms name.
[[nodiscard]] std::vector<bool> lookedAt(const FlatNetwork& network, const Condition& condition);

} // namespace tervoxal
