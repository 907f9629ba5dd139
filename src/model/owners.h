// The actions of a network by ascending number, each with the automata that have it.
//
// Automata of one location take part in their actions from every state, and move nowhere. They are
// left out, so an action may have no owner.

#pragma once

#include "model/ntamodel.h"

#include <cstddef>
#include <set>
#include <span>
#include <vector>

namespace tervoxal {

class Owners {
public:
    /// Of a network that is read and laid out, which must outlive it. Linear in its actions and
    /// their automata, each of which is looked up.
    explicit Owners(const NetTimedModel& model);

    struct Owner {
        uint automaton;
        const std::set<NetTimedModel::Move>* moves; // with the action
    };
    /// How many actions there are; they have the indices from 0 on.
    [[nodiscard]] std::size_t size() const { return actions.size(); }
    /// The number of an action in the network.
    [[nodiscard]] uint number(std::size_t index) const { return actions[index].number; }
    /// The owners of an action by its index, by ascending automaton.
    [[nodiscard]] std::span<const Owner> operator[](std::size_t index) const {
        return std::span(owners).subspan(begin(index), actions[index].ownersEnd - begin(index));
    }
    /// The index of the first owner of an action, where those of all actions stand in a row.
    [[nodiscard]] std::size_t begin(std::size_t index) const {
        return index == 0 ? 0 : actions[index - 1].ownersEnd;
    }
    /// The index of an action. Precondition, asserted: the network has it.
    [[nodiscard]] std::size_t index(uint number) const;

private:
    struct Action {
        uint number;
        std::size_t ownersEnd;
    };
    std::vector<Owner> owners; // action by action
    std::vector<Action> actions;
};

} // namespace tervoxal
