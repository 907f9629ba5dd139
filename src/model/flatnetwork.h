// The network laid out flat, without what no run can reach.
//
// Only what counts is left, and numbered anew from 0:
//
//     locations    those that some run may come to, of all automata in a row; an automaton of which
//                  only one is left has no say in any step and none in the list
//     actions      those that some run may take, by ascending number
//
// What a run may come to is found as if the automata were alone: an action is taken when each of
// its participants has come to one of the sources of its moves, by whatever way. The round in which
// a location or an action is found is its level: no run comes to the location, or can take the
// action, at an earlier position. That holds as well where a step is many actions, as long as no
// automaton moves twice in it.
//
// For examples/two, whose automata have the locations 0, 1 and 0, 1, 2:
//
//     location        0 = (1, 0)  1 = (1, 1)  2 = (2, 0)  3 = (2, 1)  4 = (2, 2)
//     level           0           1           0           1           2
//     action          0 (3 -> 4)  1 (0 -> 1, 2 -> 3)  2 (1 -> 0)  3 (4 -> 2)
//     level           1           0                   1           2

#pragma once

#include "model/ntamodel.h"

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace tervoxal {

class FlatNetwork {
public:
    struct Automaton {
        uint number; // in the network
        uint locationsEnd;
    };
    struct Location {
        uint number; // in its automaton
        uint automaton;
        uint level;
    };
    struct Move {
        uint source;
        uint target;
    };
    struct Participant {
        uint automaton;
        uint movesEnd;
    };
    struct Action {
        uint number; // in the network
        uint participantsEnd;
        uint level;
    };

    /// Indices from one up to before another, for a loop over them: std::views::iota does not
    /// compile with clang++ 14.
    struct Indices {
        struct Iterator {
            uint index;

            uint operator*() const { return index; }
            Iterator& operator++() {
                ++index;
                return *this;
            }
            bool operator==(const Iterator&) const = default;
        };

        uint first;
        uint last;

        [[nodiscard]] Iterator begin() const { return {first}; }
        [[nodiscard]] Iterator end() const { return {last}; }
        [[nodiscard]] uint size() const { return last - first; }
        [[nodiscard]] bool empty() const { return first == last; }
    };

    /// Of a network that is read and laid out. Linear in its tables, each of which is looked up.
    explicit FlatNetwork(const NetTimedModel& model);

    std::vector<Automaton> automata;
    std::vector<Location> locations;
    std::vector<Action> actions;
    std::vector<Participant> participants; // of an action after the other
    std::vector<Move> moves;               // of a participant after the other
    uint lastLevel = 0;
    const NetTimedModel& model;

    [[nodiscard]] uint locationsBegin(uint a) const {
        return a == 0 ? 0 : automata[a - 1].locationsEnd;
    }
    [[nodiscard]] uint participantsBegin(uint x) const {
        return x == 0 ? 0 : actions[x - 1].participantsEnd;
    }
    [[nodiscard]] uint movesBegin(uint p) const {
        return p == 0 ? 0 : participants[p - 1].movesEnd;
    }
    /// The indices of an automaton's locations, an action's participants, a participant's moves.
    [[nodiscard]] Indices locationsOf(uint a) const {
        return {locationsBegin(a), automata[a].locationsEnd};
    }
    [[nodiscard]] Indices participantsOf(uint x) const {
        return {participantsBegin(x), actions[x].participantsEnd};
    }
    [[nodiscard]] Indices movesOf(uint p) const {
        return {movesBegin(p), participants[p].movesEnd};
    }

    /// Whether location l of automaton a, numbers of the network, is where the automaton can be:
    /// nowhere, always, or at a location of this network.
    struct Place {
        bool always;
        std::optional<uint> location;
    };
    [[nodiscard]] Place place(uint a, uint l) const;
    /// The index of an action of the network, if some run may take it.
    [[nodiscard]] std::optional<uint> action(uint number) const;
    /// Where a proposition is carried, in numbers of the network.
    [[nodiscard]] std::span<const NetTimedModel::Location> carriers(uint prop) const;
    /// The index of an automaton of the network, if it has more than one location here.
    [[nodiscard]] std::optional<uint> automaton(uint a) const;

private:
    std::vector<uint> carried; // the propositions of all locations, sorted
    std::vector<NetTimedModel::Location> carrying;
};

} // namespace tervoxal
