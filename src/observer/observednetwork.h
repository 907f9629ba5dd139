// A network with an observer: one more automaton, whose location tells what of a formula about
// paths is still to be shown. So a question about paths becomes one about states, and whoever
// searches states can answer it.
//
// The observer takes part in steps where it has to, and makes silent steps of its own, which leave
// all others where they are:
//
//     conjunction     a silent step checks the operand that speaks of the state: the automata that
//                     this looks at take part in it, and stay
//     EX f            every action takes the observer along
//     E[f U g]        a silent step checks f, or turns to g. From then on an action that can end f
//                     is there twice: one takes only moves that keep f, the other one turns the
//                     observer to g. EF g needs none of that
//     E[f R g]        likewise, but no action may end g
//
// An action that makes no difference to the observer stays as it is, so actions that are
// independent of each other stay so (Heljanko and Niemela, Bounded LTL Model Checking with Stable
// Models, 2003, on what may share a step). The step that led to a state, where it is asked for, is
// the location of a second automaton, which every action moves.
//
// EG f is shown by a path that ends, or by one that comes back to a state, by at least one step and
// no silent one, while the observer is where it lets nothing happen that ends f.
//
// A condition that has to be checked in a silent step is written as cubes (a disjunction of
// conjunctions), which may be very many.

#pragma once

#include "model/names.h"
#include "model/ntamodel.h"
#include "query/condition.h"
#include "query/temporalformula.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace tervoxal {

struct ObservedNetwork {
    /// The automata of the network under their numbers, then the observer, then perhaps the one
    /// that knows the last step. Read and laid out; its actions are numbered from 0.
    NetTimedModel model;
    Names names;
    /// By action, that of the network; nothing of a silent step.
    std::vector<std::optional<uint>> actions;
    /// The action after which a loop begins, if there is one (see loops.h).
    std::optional<uint> save{};
    /// The location of the network that one of these stands for, where it is another number.
    std::map<NetTimedModel::Location, uint> origins{};
    uint observer = 0; // its number
    /// The locations of the observer at which a loop shows the formula, ascending.
    std::vector<uint> looping;
    /// The conditions of fairness, each of which has to hold somewhere in such a loop.
    std::vector<Condition> fair;
    /// Holds where the formula is shown without a loop.
    Condition shown;
    /// A path that shows the formula has as many silent steps at most; at least that many where
    /// the formula has no disjunction and no release.
    int silent = 0;
    /// No loop is ever needed.
    bool loopless = true;
};

/// The network for a formula that one path shows, from the initial state on, if `initially`, or
/// from any reachable one. Nothing if it would have more than `most` transitions and cubes. Linear
/// in the network times the operators of the formula, and in the cubes. Where infinite paths have
/// to meet conditions, what a path shows has to go on as one that counts; that no action may be
/// left out for ever is not asked here. Precondition, asserted: the formula does not need several
/// paths.
[[nodiscard]] std::unique_ptr<ObservedNetwork>
observed(const NetTimedModel& model, const Names& names, const TemporalFormula& formula,
         const std::vector<Condition>& fair, bool initially, std::size_t most);

} // namespace tervoxal
