// Property directed reachability, also known as IC3: what is not reached within so many steps,
// learned a lemma at a time until that tells whether questions can be met (Bradley, SAT-Based Model
// Checking without Unrolling, 2011; Een, Mishchenko and Brayton, Efficient Implementation of
// Property Directed Reachability, 2011).
//
// Frame F[i] holds in all states that a run of up to i steps can come to. It is a conjunction of
// lemmas, and each lemma is of the frames before as well; F[0] is the initial state. From each
// state of a frame every step leads to a state of the next. So
//
//  - a question that is met in no state of F[i] is met by no path of up to i steps;
//  - if two frames in a row are the same, their lemmas are an inductive invariant: they hold in all
//    states that are ever reached.
//
// The frames are of the network, whatever is asked: what was learned for one question is there for
// the others. Each question has a frame of its own up to which it is known not to be met.
//
// While a question is met in some state of its frame, that state is an obligation: it and its
// predecessors are blocked, one action at a time. Either a predecessor is the initial state, which
// gives a path, or a cube has no predecessor in the frame before, which gives a lemma: it is
// generalized to exclude as many more states as it can.
//
// An obligation that the marking equation excludes (see weightfinder.h) is never reached, so it
// needs no lemma. What the board knows to hold always is in all frames from the start, and lemmas
// are inductive relative to it.
//
// Cubes and lemmas are of locations: a cube says that some automata are in them, a lemma that some
// automaton is in one of them. What the level of a location tells (see flatnetwork.h) holds in the
// frames from the start.

#pragma once

#include "search/conditionliterals.h"
#include "search/engine.h"
#include "search/solver.h"
#include "search/unrolling.h"
#include "search/weightfinder.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace tervoxal {

class PropertyDirectedReachability : public Engine {
public:
    struct Parameters {
        /// Queries in a turn.
        std::int64_t turn = 100;
        /// The solver is made anew when it was given that many lemmas, and three times those that
        /// are left: a lemma that another implies, or that went to a later frame, stays in it.
        std::size_t rebuild = 1000;
        /// The marking equation is asked while it takes no more than one part of that many of the
        /// work, or excludes one of that many obligations: "p149" & "p281" of the contest's
        /// afcs_24_a takes 9 s with it and more than 60 s without.
        std::int64_t weighing = 10;
        std::int64_t paying = 20;
    };

    /// F[0] of the board's network. The board must outlive it.
    explicit PropertyDirectedReachability(const Board& board)
        : PropertyDirectedReachability(board, Parameters()) {}
    PropertyDirectedReachability(const Board& board, const Parameters& parameters);

    [[nodiscard]] std::string status() const override;
    [[nodiscard]] std::int64_t cost() const override {
        return spent + (finder ? finder->cost() : 0);
    }
    /// Questions without a path; where a proof is asked for, also those whose lengths are refuted.
    [[nodiscard]] Questions open(const Board& board, const Questions& among) const override;
    void turn(Board& board, const Questions& open, bool alone) override;

private:
    /// Indices of the network, ascending.
    using Locations = std::vector<uint>;

    /// States from which an action leads to those of another obligation. Those of the first one
    /// meet the question.
    struct Obligation {
        Locations cube;
        Firing firing;
        std::size_t next;
        bool allowed = false; // the marking equation was asked, and does not exclude it
    };

    void makeSolver();
    void addFrame(std::size_t frame);
    void addLemma(const Locations& lemma, std::size_t frame);
    [[nodiscard]] Solver::Verdict solve();
    void count(std::int64_t conflicts);

    [[nodiscard]] bool isInitial(uint l) const { return network.locations[l].number == 0; }
    [[nodiscard]] bool holdsInitially(const Locations& lemma) const;
    [[nodiscard]] bool hasInitial(const Locations& cube) const;
    [[nodiscard]] bool blocked(std::size_t frame, const Locations& cube);
    [[nodiscard]] Solver::Verdict predecessor(std::size_t frame, const Locations& cube);
    [[nodiscard]] bool inductive(const Locations& lemma, std::size_t frame);

    [[nodiscard]] bool begin(Board& board);
    [[nodiscard]] bool block(Board& board);
    [[nodiscard]] bool exclude(Board& board, const Locations& cube);
    void learn();
    [[nodiscard]] Locations preimage(const Firing& firing, const Locations& cube) const;
    [[nodiscard]] Locations generalize(const Locations& cube, std::size_t frame);
    void shrinkToCore(Locations& lemma) const;
    void keep(Locations lemma, std::size_t frame);
    void propagate();
    [[nodiscard]] Run path() const;
    [[nodiscard]] Certificate invariant(std::size_t frame) const;

    /// In the state that a step leaves, and in the one that it comes to.
    [[nodiscard]] int here(uint l) const { return unrolling->location(0, l); }
    [[nodiscard]] int there(uint l) const { return unrolling->location(1, l); }

    const Board& board;
    const FlatNetwork& network;
    const Parameters parameters;
    std::unique_ptr<Solver> solver;
    std::unique_ptr<Unrolling> unrolling; // a step from any state
    std::unique_ptr<ConditionLiterals> literals;
    std::unique_ptr<WeightFinder> finder;
    std::int64_t weighed = 0;                   // obligations, by the marking equation
    std::int64_t excluded = 0;                  // of them
    std::size_t facts = 0;                      // of the board, to the solver at hand
    std::vector<int> active;                    // of each frame, the literal under which it holds
    std::vector<std::vector<Locations>> lemmas; // of each frame, those that the next one lacks
    std::size_t given = 0;                      // lemmas, to the solver at hand
    std::int64_t givenLiterals = 0;             // of them
    std::vector<Obligation> obligations;
    std::map<std::size_t, std::vector<std::size_t>> queue; // obligations by the frame they are in
    std::size_t question = 0;                              // whose obligations they are
    std::vector<std::size_t> level; // of each question: the first frame that may have a state of it
    std::int64_t spent = 0;
    std::int64_t queries = 0;
};

} // namespace tervoxal
