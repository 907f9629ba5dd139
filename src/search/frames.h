// What is not reached within so many steps, learned a piece at a time until that tells whether
// conditions can be met: property directed reachability, also known as IC3.
//
// Frame i holds in all states that a run of up to i steps can come to. It is a conjunction of
// lemmas, and each lemma is of the frames before as well; frame 0 is the initial state. Of each
// frame a step leads to states of the next. So
//
//  - a condition that is met in no state of frame i is met by no path of up to i steps;
//  - if two frames in a row are the same, their lemmas are an inductive invariant: they hold in all
//    states that are ever reached.
//
// While a condition is met in some state of the last frame, the states that lead there are followed
// back, one action at a time. Either they come to the initial state, which gives a path, or none is
// left in the frame before, which gives a lemma: it excludes as many more states as the solver has
// not made use of.

#pragma once

#include "certificate.h"
#include "condition.h"
#include "conditionliterals.h"
#include "run.h"
#include "solver.h"
#include "tables.h"
#include "unrolling.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class Frames {
public:
    /// Frame 0 of the network of the tables, which must outlive it. Asks often whether to stop, if
    /// `stop` is not empty.
    Frames(const Tables& tables, std::function<bool()> stop);

    struct Asked {
        std::size_t question;
        const Condition* condition;
    };
    enum class Event {
        pause,   // nothing to tell yet, or stopped
        refuted, // no path of up to refuted() steps meets any of them
        met,     // run() is a path, of any length, that meets question()
        closed   // invariant() excludes them all
    };
    /// Goes on for a while. What is asked may become less from call to call, but not more.
    /// Precondition: none of it was met, or excluded, before.
    Event work(const std::vector<Asked>& asked);

    [[nodiscard]] int refuted() const { return static_cast<int>(lemmas.size()) - 2; }
    [[nodiscard]] std::size_t question() const { return followed; }
    [[nodiscard]] const Run& run() const { return path; }
    [[nodiscard]] Certificate invariant() const;

    /// What it has done, in literals that are given to a solver.
    [[nodiscard]] std::int64_t effort() const { return done; }

private:
    /// Indices of the tables, ascending. As a cube: the states in which some automata are there. As
    /// a lemma: in each state some automaton is in one of them.
    using Locations = std::vector<uint>;

    /// States from which an action leads to those of another obligation. The first one's meet the
    /// condition.
    struct Obligation {
        Locations cube;
        Taken taken;
        std::size_t next;
    };

    void makeSolver();
    void addFrame(std::size_t frame);
    void addLemma(const Locations& lemma, std::size_t frame);
    [[nodiscard]] Solver::Verdict solve();
    [[nodiscard]] bool stopped() const { return stop && stop(); }

    [[nodiscard]] bool isInitial(uint l) const { return tables.locations[l].number == 0; }
    [[nodiscard]] bool holdsInitially(const Locations& lemma) const;
    [[nodiscard]] bool hasInitial(const Locations& cube) const;
    [[nodiscard]] bool excludes(std::size_t frame, const Locations& cube);
    [[nodiscard]] Solver::Verdict stepsInto(std::size_t frame, const Locations& cube);
    [[nodiscard]] bool maybeLost(const Locations& lemma, std::size_t frame);

    std::optional<Event> begin(const std::vector<Asked>& asked);
    [[nodiscard]] Locations met(const Condition& condition, int goal);
    [[nodiscard]] bool follow();
    [[nodiscard]] Locations before(const Taken& taken, const Locations& cube) const;
    [[nodiscard]] Locations lemmaAgainst(const Locations& cube, std::size_t frame);
    void shrinkToUsed(Locations& lemma) const;
    void keep(Locations lemma, std::size_t frame);
    [[nodiscard]] bool pushOn();

    /// In the state that a step leaves, and in the one that it comes to.
    [[nodiscard]] int here(uint l) const { return unrolling->location(0, l); }
    [[nodiscard]] int there(uint l) const { return unrolling->location(1, l); }

    const Tables& tables;
    const std::function<bool()> stop;
    std::unique_ptr<Solver> solver;
    std::unique_ptr<Unrolling> unrolling; // a step from any state
    std::unique_ptr<ConditionLiterals> literals;
    std::vector<int> active;                    // of each frame, the literal under which it holds
    std::vector<std::vector<Locations>> lemmas; // of each frame, those that the next one lacks
    std::size_t given = 0;                      // lemmas, to the solver at hand
    std::int64_t givenLiterals = 0;             // of them
    std::vector<Obligation> obligations;
    std::map<std::size_t, std::vector<std::size_t>> open; // obligations by the frame they are in
    std::size_t followed = 0;                             // the question
    Run path;
    std::int64_t done = 0;
    std::int64_t queries = 0;
};
