// One step of the network as a formula: one action, all its automata together, every other
// automaton stays (the frame condition).
//
// A path asks for the same formula at each position, over other variables. So the tables of the
// model are laid out once: a formula then looks nothing up, builds each subformula once, at its
// first use, and costs time only for the nodes that it creates. The nodes are those of the plain
// walk over the model's tables, in the same order.
//
// Automata are counted from 0 here, and those of one location are left out: they have no bits and
// constrain nothing. Two processes, one of the locations 0 and 1 on bit 0 and one of the locations
// 0 to 2 on the bits 1 and 2, are the automata 0 and 1. Their step (examples/two):
//
//     action   participants   their moves    automata that stay   frame
//        0     1              1->2           0                      2
//        1     0, 1           0->1, 0->1     none                   0
//        2     0              1->0           1                      1
//        3     1              2->0           0                      2
//
// Both a location and a frame condition are conjunctions. Those that begin alike share their
// beginning in the store, and each beginning is built once.
//
// A location is the conjunction of its bits, lowest first. The beginnings of all locations of an
// automaton are the nodes of a binary tree, which is laid out as a heap: the i lowest bits of
// location l are node 2^i + l mod 2^i. For automaton 1, its bits written lowest first:
//
//     node           1      2    3    4    5    6    7
//     lowest bits    none   0    1    00   10   01   11
//     location                        0    1    2    none
//
// A frame is an earlier frame, its parent, and one automaton more that stays. Frame 0 is empty. The
// lists of participants, each closed by an end mark above all automata, are sorted. So conditions
// that begin alike come one after the other, and each takes over what it shares with the one before
// it: all below the first automaton that moves there and stays here.
//
//     participants    automata that stay    new frame
//     0, 1, end       none
//     0, end          1                     1: frame 0 and automaton 1
//     1, end          0                     2: frame 0 and automaton 0

#pragma once

#include "model/ntamodel.h"

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace tervoxal {

/// The step of one model, which has a layout of states and may end before this does.
class Step {
public:
    /// Lays the tables out. Linear in the tables of the model and in the nodes of one step, but for
    /// the sorting of the lists of participants.
    explicit Step(const NetTimedModel& model);

    /// s2 follows s1 by one step. Precondition, asserted: both states have the bits of the model.
    [[nodiscard]] BoolForm formula(const SymState& s1, const SymState& s2);

private:
    /// The bits of an automaton within a state, and where its tree of locations starts.
    struct Automaton {
        int shift;
        int bits;
        std::size_t tree;
    };
    /// An automaton in an action, and the end of its moves.
    struct Participant {
        uint automaton;
        uint movesEnd;
    };
    /// The end of the participants, and the automata that stay.
    struct Action {
        uint participantsEnd;
        uint frame;
    };
    struct Frame {
        uint parent;
        uint automaton;
    };
    /// What the call of that number built.
    struct Built {
        BoolForm formula;
        uint call;
    };

    void layOutFrames(const std::map<std::vector<uint>, std::vector<uint>>& actionsOf);
    [[nodiscard]] BoolForm location(std::vector<Built>& nodes, const Automaton& automaton, uint l,
                                    const SymState& s) const;
    [[nodiscard]] BoolForm stay(uint frame, const SymState& s1, const SymState& s2);

    int stateBits;
    std::vector<Automaton> automata;
    std::vector<NetTimedModel::Move> moves; // of a participant after the other
    std::vector<Participant> participants;  // of an action after the other
    std::vector<Action> actions;
    std::vector<Frame> frames;

    // What a call has built so far. The trees are not emptied for the next one, which may need few
    // of many locations: their nodes tell the call.
    uint call = 0;
    std::vector<Built> sources;       // the trees in s1
    std::vector<Built> targets;       // the trees in s2
    std::vector<BoolForm> equalities; // of each automaton
    std::vector<BoolForm> conditions; // of each frame
    std::vector<uint> missing;        // frames still to be built
};

} // namespace tervoxal
