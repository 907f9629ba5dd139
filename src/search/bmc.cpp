#include "search/bmc.h"

#include "query/atoms.h"

#include <algorithm>
#include <vector>

namespace tervoxal {

namespace {

constexpr int unlimited = -1;

/// A conflict takes about as much time as it takes to give the solver so many literals, in clauses
/// of `size` literals: 22 to 90 us by network, against 0.2 us for one.
constexpr std::int64_t conflictCost(std::int64_t size) { return 100 + size / 2000; }

/// The cone of influence of the open questions.
std::vector<bool> coneOf(const Board& board, const Questions& open) {
    std::vector<bool> cone(board.network.automata.size());
    for (const std::size_t q : open) {
        const std::vector<bool> looked = lookedAt(board.network, board[q].condition);
        for (std::size_t a = 0; a < looked.size(); ++a) {
            if (looked[a]) cone[a] = true;
        }
    }
    return cone;
}

} // namespace

struct BoundedModelChecking::Unrolled {
    Unrolled(const FlatNetwork& network, const Scope& scope)
        : unrolling(network, solver, scope), literals(unrolling, solver) {}

    Solver solver;
    Unrolling unrolling;
    ConditionLiterals literals;
    std::size_t facts = 0; // of the board, told so far
};

BoundedModelChecking::BoundedModelChecking(const Policy& policy)
    : policy(policy), conflicts(policy.conflicts) {}

BoundedModelChecking::~BoundedModelChecking() = default;

std::string BoundedModelChecking::status() const {
    const int reached = unrolled ? unrolled->unrolling.depth() : 0;
    return "bounded model checking, depth " + std::to_string(reached);
}

Questions BoundedModelChecking::open(const Board& board, const Questions& among) const {
    Questions open;
    for (const std::size_t q : among) {
        if (!board.settled(q) && (policy.shortens || !board[q].found)) open.push_back(q);
    }
    return open;
}

void BoundedModelChecking::turn(Board& board, const Questions& open, bool alone) {
    if (!unrolled) {
        unrolled = std::make_unique<Unrolled>(board.network,
                                              Scope{policy.kind, true, coneOf(board, open)});
        unrolled->solver.setStop([&board] { return board.stopped(); });
    }
    if (policy.leaps) {
        leap(board, open, alone);
    } else {
        climb(board, open, alone);
    }
}

/// A path at all, at depths that grow whether or not they are refuted.
void BoundedModelChecking::leap(Board& board, const Questions& open, bool alone) {
    depth = std::min(depth < 0 ? 0 : depth + std::max(1, depth / 2), board.range.to);
    if (ask(board, depth, open, alone ? unlimited : conflicts) == Solver::Verdict::unknown) {
        conflicts += conflicts / 2;
    }
}

/// The next depth up, for those that it is open for. Strides grow as long as there are answers.
void BoundedModelChecking::climb(Board& board, const Questions& open, bool alone) {
    int base = board.range.to;
    for (const std::size_t q : open) base = std::min(base, board[q].refuted);
    int next = std::min(board.range.to, base + stride);
    for (const std::size_t q : open) {
        if (board[q].refuted == base) next = std::min(next, board.limit(q));
    }
    Questions asked;
    for (const std::size_t q : open) {
        if (board[q].refuted < next && board.limit(q) >= next) asked.push_back(q);
    }
    const bool patient = alone && stride == 1;
    if (ask(board, next, asked, patient ? unlimited : conflicts) == Solver::Verdict::unknown) {
        if (stride == 1) conflicts *= 2;
        stride = std::max(1, (next - base) / 2);
    } else {
        stride = std::min(2 * stride, std::max(1, next / 2));
    }
}

/// What holds always, as far as it is new.
void BoundedModelChecking::learn(const Board& board) {
    const std::int64_t before = unrolled->unrolling.size();
    for (; unrolled->facts < board.facts().size(); ++unrolled->facts) {
        unrolled->unrolling.always(board.facts()[unrolled->facts].locations);
    }
    spent += unrolled->unrolling.size() - before;
}

/// False if it was stopped before that.
bool BoundedModelChecking::advance(const Board& board, int depth) {
    while (unrolled->unrolling.depth() < depth) {
        if (board.stopped()) return false;
        const std::int64_t before = unrolled->unrolling.size();
        unrolled->unrolling.step();
        spent += unrolled->unrolling.size() - before;
    }
    return true;
}

/// Whether one of the questions is met at the depth; tells the board what comes out of it.
Solver::Verdict BoundedModelChecking::ask(Board& board, int depth, const Questions& open,
                                          int conflicts) {
    learn(board);
    if (!advance(board, depth)) return Solver::Verdict::unknown;
    auto& solver = unrolled->solver;
    auto& unrolling = unrolled->unrolling;
    auto& literals = unrolled->literals;
    std::vector<int> goals;
    for (const std::size_t q : open) goals.push_back(literals.literal(board[q].condition, depth));
    solver.assume(literals.some(goals));
    const Solver::Verdict verdict = solver.solve(conflicts);
    spent += (solver.conflicts() - conflictsBefore) * conflictCost(unrolling.size());
    conflictsBefore = solver.conflicts();
    if (verdict == Solver::Verdict::satisfiable) {
        board.offer(unrolling.run(depth));
    } else if (verdict == Solver::Verdict::unsatisfiable) {
        for (const int goal : goals) solver.add({-goal});
        board.refute(open, depth);
    }
    return verdict;
}

} // namespace tervoxal
