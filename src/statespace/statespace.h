// The states of a network, or of some of its automata alone, found by breadth first search.
//
// With some automata alone, the others take part in anything: an action is possible where those of
// its participants that are among them can take it. So whatever a run does to these automata is
// done here in no more steps, and what is not met here is never met (localization; Kurshan,
// Computer-Aided Verification of Coordinating Processes, 1994).
//
// States are numbered from 0, the initial one, in the order in which they are found, so by
// ascending distance from it. A state is packed into words: each automaton has as many bits of one
// of them as its locations need, and its location counts from its first one. For examples/two:
//
//     state        0      1      2      3      4      5
//     locations    0, 0   1, 1   0, 1   1, 2   0, 2   1, 0
//     bits         00 0   01 1   01 0   10 1   10 0   00 1     the highest first
//     distance     0      1      2      2      3      3
//
// Whether a state is known is looked up in a table with linear probing, which holds its number
// beside its hash. That is the exclusive or of a random number for each location (Zobrist, A New
// Hashing Method with Application for Game Playing, 1970), so a successor takes time for the
// automata that move, not for all. Towers 12: 531441 states and 1594320 steps in .24 s and 29 MB;
// counters 8 6: 1679616 states and 11197441 steps in 1.1 s and 58 MB.

#pragma once

#include "model/rows.h"
#include "statespace/participation.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace tervoxal {

class StateSpace {
public:
    using State = std::uint32_t;
    /// A step from a state: the index of the action, and where it leads.
    struct Step {
        uint action;
        State target;
    };

    /// At the initial state, of the automata with these indices of the network, ascending. Linear
    /// in them and what they take part in. The network must outlive it.
    StateSpace(const Participation& participation, std::vector<uint> automata);
    /// Of all automata of the network.
    explicit StateSpace(const Participation& participation);

    /// Finds the successors of the next state that has not been expanded. Precondition, asserted:
    /// it is neither complete nor full.
    void expand();
    /// Whether all states are found and expanded.
    [[nodiscard]] bool complete() const { return expanded() == size(); }
    /// Whether there may be no numbers left for the successors of a state.
    [[nodiscard]] bool full() const { return size() >= greatestSize; }

    /// The states found so far, and how many of them have been expanded: the first ones.
    [[nodiscard]] std::size_t size() const { return parents.size(); }
    [[nodiscard]] std::size_t expanded() const { return next; }
    /// The greatest distance of a state found so far, and the one up to which all are found.
    [[nodiscard]] int depth() const;
    [[nodiscard]] int completeDepth() const;
    /// The distance of a state from the initial one, in steps.
    [[nodiscard]] int depth(State state) const;
    /// From the states that have been expanded: the steps, and the states without one.
    [[nodiscard]] std::uint64_t steps() const { return stepCount; }
    [[nodiscard]] std::size_t deadlocks() const { return deadlockCount; }
    /// What it took so far, in participants looked at and words written, and the memory that the
    /// states take, in bytes.
    [[nodiscard]] std::int64_t work() const { return workCount; }
    [[nodiscard]] std::size_t memory() const;

    /// The automata, by index of the network, and the slot of one: its place in that list.
    [[nodiscard]] std::span<const uint> automata() const { return members; }
    [[nodiscard]] std::optional<uint> slot(uint automaton) const;
    /// The location of the automaton in a slot, by index of the network.
    [[nodiscard]] uint location(State state, uint slot) const {
        const Field& field = fields[slot];
        return field.firstLocation + local(row(state), field);
    }
    /// The steps from a state, by no particular order. An action counts once for each choice of
    /// moves of its participants among the automata, and not at all if it has none among them, but
    /// others. Precondition, asserted: the state has been expanded.
    [[nodiscard]] std::vector<Step> steps(State state) const;
    /// The states from the initial one to this one, on a shortest path.
    [[nodiscard]] std::vector<State> pathTo(State state) const;

    const Participation& participation;
    const FlatNetwork& network;

private:
    friend class Labelling;
    using Word = std::uint64_t;
    using Hash = std::uint32_t;
    // The table has at most 2^32 entries, half of them used.
    static constexpr std::size_t greatestSize = 0x70000000;

    struct Field {
        std::size_t word;
        uint shift;
        Word mask;
        uint firstLocation; // of the automaton, in the network
        uint firstIndex;    // and in what is held by location
    };
    /// Locations count from the first of their automaton.
    struct Move {
        uint source;
        uint target;
    };
    struct Participant {
        uint slot;
        uint movesBegin; // by ascending source
        uint movesEnd;
    };
    struct Action {
        uint action;
        uint participantsBegin;
        uint participantsEnd;
    };
    /// What the expansion of a state needs, so that it allocates nothing.
    struct Scratch {
        std::vector<uint> here; // the location of each slot
        std::vector<Word> row;
        Hash hash;
        std::vector<std::pair<uint, uint>> choices; // the moves that each participant can choose
        std::vector<uint> chosen;
    };

    [[nodiscard]] const Word* row(State state) const { return rows.data() + state * width; }
    [[nodiscard]] static uint local(const Word* row, const Field& field) {
        return static_cast<uint>((row[field.word] >> field.shift) & field.mask);
    }
    struct Entry {
        Hash hash;
        State number; // 1 + the state, 0 in a free entry
    };

    void layOutFields();
    void layOutActions();
    void unpack(State state, Scratch& scratch) const;
    [[nodiscard]] std::pair<uint, uint> choices(const Participant& participant, uint source) const;
    void toggle(const Action& action, Scratch& scratch) const;
    [[nodiscard]] std::size_t entryOf(const Word* wanted, Hash hash) const;
    void add(std::size_t entry, Hash hash, const Word* found, State parent);
    void enlarge();
    template <class Use>
    std::int64_t forEachSuccessor(Scratch& scratch, Use&& use) const;

    std::vector<uint> members;
    std::vector<uint> slots; // by automaton of the network
    std::vector<Field> fields;
    std::size_t width = 1;  // words of a state
    std::vector<Hash> keys; // by location
    std::vector<Action> actions;
    std::vector<Participant> participants; // of an action after the other
    std::vector<Move> moves;               // of a participant after the other
    /// By location, the actions that are tried there: each at the participant with the fewest
    /// moves.
    Rows<uint> tried;

    std::vector<Word> rows;
    std::vector<State> parents;
    std::vector<State> levels; // the first state at each distance
    std::vector<Entry> table;
    std::size_t next = 0; // state to be expanded
    Scratch scratch;
    std::uint64_t stepCount = 0;
    std::size_t deadlockCount = 0;
    std::int64_t workCount = 0;
};

} // namespace tervoxal
