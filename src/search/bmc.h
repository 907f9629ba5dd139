// Bounded model checking: the network unrolled step by step in an incremental solver, which is
// asked for a path of each depth (Biere, Cimatti, Clarke and Zhu, Symbolic Model Checking without
// BDDs, 1999).
//
// What is in one step is a parameter (see unrolling.h). Relaxed ordered (E) steps hold many
// actions, so few of them come to a far state; interleaving steps hold one, so the first depth at
// which there is a path is its least length. In each kind a step may be idle. So a depth that is
// refuted refutes all lengths up to it, and not every depth is asked.
//
// One query asks for the disjunction of all open questions. If it is unsatisfiable, all are
// refuted; if not, the model is a path of some of them.

#pragma once

#include "search/conditionliterals.h"
#include "search/engine.h"
#include "search/solver.h"
#include "search/unrolling.h"

#include <cstdint>
#include <memory>

namespace tervoxal {

class BoundedModelChecking : public Engine {
public:
    struct Policy {
        StepKind kind;
        /// Goes to greater depths whether or not this one was refuted: any path will do. Else each
        /// depth is refuted before the next one.
        bool leaps;
        /// Works on questions with a path as well, for shorter ones.
        bool shortens;
        /// What a query may cost at first, in conflicts. Half or all of it is added where that was
        /// too little.
        int conflicts;
    };

    explicit BoundedModelChecking(const Policy& policy);
    ~BoundedModelChecking() override;

    [[nodiscard]] std::string status() const override;
    [[nodiscard]] std::int64_t cost() const override { return spent; }
    [[nodiscard]] Questions open(const Board& board, const Questions& among) const override;
    void turn(Board& board, const Questions& open, bool alone) override;

private:
    /// Made at the first turn, for the questions that are open by then.
    struct Unrolled;

    void leap(Board& board, const Questions& open, bool alone);
    void climb(Board& board, const Questions& open, bool alone);
    Solver::Verdict ask(Board& board, int depth, const Questions& open, int conflicts);
    bool advance(const Board& board, int depth);
    void learn(const Board& board);

    const Policy policy;
    std::unique_ptr<Unrolled> unrolled;
    std::int64_t spent = 0;
    std::int64_t conflictsBefore = 0;
    int conflicts;  // what a query may cost by now
    int depth = -1; // that was asked last, where it leaps
    int stride = 1; // where it climbs
};

/// Relaxed ordered (E) steps to any depth: mostly a path within a few steps if there is one.
inline constexpr BoundedModelChecking::Policy seekingPolicy{StepKind::relaxed, true, false, 1000};
/// Independent (A) steps: refutes lengths where one action in a step costs the solver more than
/// many. Of `guests 4000 4 3` (bench), 562 lengths are refuted in 4 s with it, and 316 without.
inline constexpr BoundedModelChecking::Policy refutingPolicy{StepKind::independent, false, false,
                                                             2000};
/// Interleaving: refutes lengths one by one, and finds the least.
inline constexpr BoundedModelChecking::Policy leastPolicy{StepKind::interleaving, false, true,
                                                          2000};

} // namespace tervoxal
