// The steps of a network as its tables tell them: one action, all automata that have it take one of
// its transitions, every other automaton stays. Knows nothing of the encoding of a step as a
// formula, so that either can be checked by the other.
//
// The actions between two states are found from what changed. An index holds each transition that
// leaves a location, so the transition of an automaton that moved gives the actions that it can
// have moved by. A second automaton of the action, if there is one, narrows them down further. What
// is left is compared with all owners. Where nothing moved, an index of self loops takes its place.

#pragma once

#include "model/owners.h"
#include "replay/state.h"

#include <span>
#include <vector>

namespace tervoxal {

class Transitions {
public:
    /// The transitions of a network that is read and laid out; it must outlive this.
    explicit Transitions(const NetTimedModel& model);

    /// The numbers of the actions that lead from one state to the other, ascending. The states
    /// differ in the changes, which name each automaton once. Takes time for the changes and for
    /// the actions that the index leaves, not for the whole state.
    [[nodiscard]] std::vector<uint> actions(const State& from, const State& to,
                                            std::span<const Change> changes) const;

    const NetTimedModel& model;
    const Owners owners;

private:
    using Move = NetTimedModel::Move;

    /// A transition of the automaton with an action, and what the action asks of one other owner.
    struct Candidate {
        uint automaton;
        Move move;
        uint other;     // 0 if there is no other owner
        Move otherMove; // its only transition with the action, or anyMove
        uint action;    // an index

        auto operator<=>(const Candidate&) const = default; // NOLINT(modernize-use-nullptr)
    };

    void addCandidates(uint action);
    [[nodiscard]] std::span<const Candidate> candidates(uint automaton, Move move) const;
    void addLeading(std::span<const Candidate> candidates, const State& from, const State& to,
                    std::size_t changes, std::vector<uint>& numbers) const;

    std::vector<Candidate> index;   // sorted
    std::vector<uint> idlers;       // the automata whose self loops are in the index, ascending
    std::vector<uint> alwaysActive; // the numbers of the actions without an owner, ascending
};

} // namespace tervoxal
