#include "search/markingequation.h"

#include "search/conditionliterals.h"
#include "search/solver.h"
#include "search/unrolling.h"
#include "search/weightfinder.h"

#include <algorithm>
#include <cassert>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tervoxal {

struct MarkingEquation::Work {
    explicit Work(const Board& board)
        : finder(board.network), unrolling(board.network, solver, {StepKind::interleaving, false}),
          literals(unrolling, solver), factsAt(board.network.locations.size()),
          placeOf(board.network.automata.size()), allowed(board.size()) {
        solver.setStop([&board] { return board.stopped(); });
    }

    void turn(Board& board, const Questions& open);
    void file(const Board& board);
    bool next(Board& board);
    [[nodiscard]] Solver::Verdict solve(const Condition& condition);
    [[nodiscard]] bool isUnderFact(const Board& board, const std::vector<uint>& cube);
    [[nodiscard]] bool exclude(Board& board) const;

    WeightFinder finder;
    Solver solver;
    Unrolling unrolling; // any state
    ConditionLiterals literals;
    std::vector<int> active; // of each fact, the literal under which the solver has it
    /// By location: the facts of whose set it is a location of the first automaton.
    std::vector<std::vector<std::size_t>> factsAt;
    std::vector<std::optional<uint>> placeOf; // of each automaton, in the cube at hand
    std::vector<bool> allowed;                // by question: the equation has a solution
    std::size_t question = 0;                 // at hand
    std::vector<std::size_t> used;            // facts, for it
    std::int64_t queries = 0;
};

MarkingEquation::MarkingEquation() = default;
MarkingEquation::~MarkingEquation() = default;

std::int64_t MarkingEquation::cost() const {
    // A query takes about as long as it takes to give the solver one of that many of its literals.
    constexpr std::int64_t share = 200;
    if (!work) return 0;
    const std::int64_t size = work->unrolling.size();
    return size + work->queries * (size / share + 1) + work->finder.cost();
}

Questions MarkingEquation::open(const Board& board, const Questions& among) const {
    Questions open;
    if (!LinearProgram::available) return open;
    for (const std::size_t q : among) {
        if (board.undecided(q) && !(work && work->allowed[q])) open.push_back(q);
    }
    return open;
}

void MarkingEquation::turn(Board& board, const Questions& open, bool /*alone*/) {
    if (!work) work = std::make_unique<Work>(board);
    work->turn(board, open);
}

/// Questions one after the other, going on with the one that was left.
void MarkingEquation::Work::turn(Board& board, const Questions& open) {
    constexpr std::int64_t share = 50;
    const std::int64_t end = queries + share;
    file(board);
    const auto first = std::ranges::lower_bound(open, question);
    for (auto q = first == open.end() ? open.begin() : first; q != open.end(); ++q) {
        if (*q != question) used.clear();
        question = *q;
        do {
            if (queries >= end || board.stopped()) return;
        } while (next(board));
        used.clear();
    }
}

/// What the board has learned since the last time, for the solver to use when it is told to.
void MarkingEquation::Work::file(const Board& board) {
    for (std::size_t f = active.size(); f < board.facts().size(); ++f) {
        const auto& [locations, proof] = board.facts()[f];
        active.push_back(solver.newVariable());
        std::vector<int> clause = {-active.back()};
        for (const uint l : locations) clause.push_back(unrolling.location(0, l));
        clause.push_back(0);
        solver.add(clause);
        if (proof.sets[0].empty()) continue;
        const Certificate::Places& first = proof.sets[0].front();
        for (const uint location : first.locations) {
            const auto l = board.network.place(first.automaton, location).location;
            if (l) factsAt[*l].push_back(f);
        }
    }
}

/// One cube of the question, or the end of it. False if there is no more to do for it.
bool MarkingEquation::Work::next(Board& board) {
    const Condition& condition = board[question].condition;
    const Solver::Verdict verdict = solve(condition);
    if (verdict == Solver::Verdict::unknown) return true;
    if (verdict == Solver::Verdict::unsatisfiable) {
        allowed[question] = !exclude(board);
        return false;
    }
    ++queries;
    const std::vector<uint> cube = literals.cube(condition);
    if (isUnderFact(board, cube)) return true;
    const auto weighed = finder.exclude(cube, [&board] { return board.stopped(); });
    if (board.stopped()) return true;
    if (weighed && board.learn(*weighed).empty()) {
        file(board);
        if (isUnderFact(board, cube)) return true;
    }
    allowed[question] = true;
    return false;
}

/// Whether some state meets the condition outside of what the facts in use exclude.
Solver::Verdict MarkingEquation::Work::solve(const Condition& condition) {
    ++queries;
    const int goal = literals.literal(condition, 0);
    for (const std::size_t f : used) solver.assume(active[f]);
    solver.assume(goal);
    return solver.solve(-1); // sat(facts & P)
}

/// Whether a fact excludes all states of the cube; it is used from then on.
bool MarkingEquation::Work::isUnderFact(const Board& board, const std::vector<uint>& cube) {
    const FlatNetwork& network = board.network;
    for (const uint l : cube) placeOf[network.locations[l].automaton] = network.locations[l].number;
    const auto isUnder = [&](std::size_t f) {
        return std::ranges::all_of(board.facts()[f].proof.sets[0], [&](const auto& places) {
            const auto a = network.automaton(places.automaton);
            return a && placeOf[*a] && places.has(*placeOf[*a]);
        });
    };
    std::optional<std::size_t> found;
    for (const uint l : cube) {
        const auto fact = std::ranges::find_if(factsAt[l], isUnder);
        if (fact == factsAt[l].end()) continue;
        found = *fact;
        break;
    }
    for (const uint l : cube) placeOf[network.locations[l].automaton].reset();
    if (found) used.push_back(*found);
    return found.has_value();
}

/// Tells the board that the question is unreachable, by the facts in use.
bool MarkingEquation::Work::exclude(Board& board) const {
    Certificate certificate;
    for (const std::size_t f : used) certificate.weighed.push_back(board.facts()[f].proof);
    certificate.weighed = merged(std::move(certificate.weighed));
    return board.exclude(std::span(&question, 1), std::move(certificate)).empty();
}

} // namespace tervoxal
