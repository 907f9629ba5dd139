// Many conditions in a state that changes, at a cost that depends on the changes and hardly on the
// number of conditions.
//
// All is counted. A node is an atom, a conjunction or a sum, and counts what it still misses: an
// action the participants that are not where they can take it, a location its automaton, a
// conjunction the operands that are false. A node holds while it misses nothing. So what a change
// of the state costs is one count for each node that looks at the location, and one more for each
// node that looks at one that came to hold or ceased to. A sum misses what it lacks of its bound,
// which is less than nothing where it has more, and counts an atom as often as it weighs. What
// conditions share of atoms is counted once, and a condition that is an atom or its negation is no
// node of its own.
//
// Nodes are numbered from 0, operands before what they are of; the first ones are the actions of
// the network. A literal is twice a node, and one more for its negation.

#pragma once

#include "model/flatnetwork.h"
#include "model/rows.h"
#include "query/condition.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace tervoxal {

class Evaluator {
public:
    /// The conditions in the initial state, by their indices. Linear in them and the network. The
    /// network must outlive it.
    Evaluator(const FlatNetwork& network, std::span<const Condition* const> conditions);

    /// The automaton of the locations goes from one to the other. Precondition: it is there.
    void move(uint source, uint target);
    /// Back to the initial state, at a cost that depends on the automata that have been moved.
    void reset();

    /// The location where an automaton is.
    [[nodiscard]] uint at(uint automaton) const { return places[automaton]; }
    /// The actions that are possible, each once, in an order that depends on the moves so far.
    [[nodiscard]] std::span<const uint> possible() const { return enabled; }
    [[nodiscard]] bool holds(std::size_t condition) const { return isTrue(literals[condition]); }
    /// Calls use with the conditions that hold and were not told since the last call of renew. If
    /// it gives false, the condition is never told again.
    template <class Use>
    void tell(Use&& use);
    /// All that hold, and that use did not give up, are to be told again.
    void renew();

    /// What was counted so far, one at a time.
    [[nodiscard]] std::int64_t counted() const { return counts; }

private:
    using Literal = uint;
    class Builder;

    [[nodiscard]] bool isTrue(Literal literal) const {
        return (missing[literal / 2] <= 0) == (literal % 2 == 0);
    }
    void count(uint node, bool gained);
    void changed(uint node, bool now);
    void add(uint action);
    void remove(uint action);
    void await(Literal literal);

    const FlatNetwork& network;
    std::vector<int> missing;     // of each node
    Rows<uint> lookingAtLocation; // the nodes
    Rows<uint> lookingAtNode;     // a literal of each node that has it, negated where it is negated
    std::vector<Literal> literals; // of each condition
    Rows<uint> conditionsOf;       // of each literal
    std::vector<uint> kept;        // of each literal, how many of its conditions are left
    std::vector<bool> awaited;     // literals that are among those that came, or were told
    std::vector<Literal> came;     // to be true, and are to be told if they still are
    std::vector<Literal> told;     // since renew
    std::vector<uint> places;      // of each automaton
    std::vector<uint> movedOnes;   // automata that were moved since the initial state
    std::vector<bool> wasMoved;    // of each automaton
    std::vector<uint> enabled;     // actions
    std::vector<uint> slots;       // of each action, its index there
    std::vector<Literal> pending;  // nodes that changed, to be passed on
    std::int64_t counts = 0;
};

template <class Use>
void Evaluator::tell(Use&& use) {
    while (!came.empty()) {
        const Literal literal = came.back();
        came.pop_back();
        if (!isTrue(literal)) {
            awaited[literal] = false;
            continue;
        }
        const auto begin = conditionsOf[literal].begin();
        const auto end = std::remove_if(begin, begin + kept[literal], [&](uint condition) {
            return !use(std::size_t{condition});
        });
        kept[literal] = static_cast<uint>(end - begin);
        if (kept[literal] > 0) told.push_back(literal);
    }
}

} // namespace tervoxal
