#include "search.h"

#include "conditionliterals.h"
#include "stroll.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <optional>
#include <utility>

namespace {

constexpr int unlimited = -1;

/// What the end of all runs is worth, in literals that are given to a solver: 0.2 s as it goes, and
/// 4 s where nothing else is left to find out.
constexpr std::int64_t little = 1000000;
constexpr std::int64_t much = 20 * little;

/// A conflict takes about as much time as it takes to give the solver so many literals, in clauses
/// of `size` literals: 22 to 90 us by network, against 0.2 us for one.
constexpr std::int64_t conflictWork(std::int64_t size) { return 100 + size / 2000; }

} // namespace

/// An unrolling with its solver, and where it stands.
struct Search::Engine {
    Engine(const Search& search, const Scope& scope)
        : search(search), steps(scope.steps), unrolling(search.tables, solver, scope),
          literals(unrolling, solver), met(search.all.size()) {
        if (search.listener.stop) solver.setStop(search.listener.stop);
    }

    /// Goes on to a depth; up to `busy` each step has an action. False if it was stopped ahead of
    /// that.
    bool advance(int depth, int busy) {
        while (unrolling.depth() < depth) {
            if (search.stopped()) return false;
            const std::int64_t before = unrolling.size();
            unrolling.step();
            work += unrolling.size() - before;
            if (unrolling.depth() <= busy) solver.add({unrolling.busy(unrolling.depth())});
        }
        return true;
    }

    /// The condition is met at the position; where a path may have to go on behind it, there or
    /// before.
    int goal(std::size_t question, int position) {
        const Condition& condition = search.all[question].condition;
        if (search.range.from == 0) return literals.literal(condition, position);
        std::vector<int>& known = met[question];
        while (static_cast<int>(known.size()) <= position) {
            const int here = literals.literal(condition, static_cast<int>(known.size()));
            known.push_back(known.empty() ? here : literals.disjunction(known.back(), here));
        }
        return known[static_cast<std::size_t>(position)];
    }

    /// Adds to the work what the last question has cost.
    void count() {
        const std::int64_t now = solver.conflicts();
        work += (now - conflictsBefore) * conflictWork(unrolling.size());
        conflictsBefore = now;
    }

    const Search& search;
    const Steps steps;
    Solver solver;
    Unrolling unrolling;
    ConditionLiterals literals;
    std::vector<std::vector<int>> met; // of each condition, by position
    std::int64_t work = 0;             // in literals that are given to the solver
    std::int64_t conflictsBefore = 0;
    int conflicts = steps == Steps::ordered ? 1000 : 2000; // what a question may cost
    int depth = -1;                                        // of the hunter: the last one asked
    int stride = 1;                                        // of the others
};

Search::Search(const NetTimedModel& model, std::vector<Condition> conditions, const Range& range,
               Listener listener)
    : tables(model), range(range), listener(std::move(listener)) {
    for (Condition& condition : conditions) all.push_back({std::move(condition), range.from - 1});
}

Search::~Search() = default;

bool Search::settled(const Finding& finding) const {
    if (finding.never || finding.refuted >= range.to) return true;
    return finding.found && (finding.least() || (range.any && finding.length() <= range.to));
}

/// The greatest length at which a shorter path is to be looked for.
int Search::limit(const Finding& finding) const {
    return finding.found ? std::min(finding.length() - 1, range.to) : range.to;
}

/// Where there is a path, what is left is whether there is a shorter one. Frames know nothing of
/// paths that have to go on.
Search::Open Search::openFor(Worker worker) const {
    Open open;
    if (worker == learner && range.from > 0) return open;
    const bool proving = worker == learner && listener.proving && listener.proving();
    for (std::size_t q = 0; q < all.size(); ++q) {
        const bool left = proving ? !all[q].never : !settled(all[q]);
        if (left && (worker == climber || !all[q].found)) open.push_back(q);
    }
    return open;
}

/// Leaves out what the open conditions cannot depend of, unless a path may have to go on with it.
Scope Search::scopeOf(Steps steps) const {
    Scope scope{steps};
    if (range.from > 0) return scope;
    scope.lookedAt.resize(tables.automata.size());
    for (const Finding& finding : all) {
        if (settled(finding)) continue;
        const std::vector<bool> looked = tables.lookedAt(finding.condition);
        for (std::size_t a = 0; a < looked.size(); ++a) {
            if (looked[a]) scope.lookedAt[a] = true;
        }
    }
    return scope;
}

void Search::keep(std::size_t question, const Run& run) {
    Finding& finding = all[question];
    Run path = shortened(tables, run, finding.condition, static_cast<std::size_t>(range.from));
    if (finding.found && path.size() >= finding.path.size()) return;
    finding.found = true;
    finding.path = std::move(path);
    if (listener.found) listener.found(finding);
}

void Search::refute(const Open& open, int depth) {
    for (const std::size_t q : open) all[q].refuted = std::max(all[q].refuted, depth);
    if (listener.refuted) listener.refuted();
    lookForEnd(depth, little);
}

/// Whether one of the conditions is met at the depth, and notes what comes out of it.
Solver::Verdict Search::ask(Engine& engine, int depth, const Open& open, int conflicts) {
    if (!engine.advance(depth, range.from)) return Solver::Verdict::unknown;
    std::vector<int> goals;
    for (const std::size_t q : open) goals.push_back(engine.goal(q, depth));
    engine.solver.assume(engine.literals.some(goals));
    const Solver::Verdict verdict = engine.solver.solve(conflicts);
    engine.count();
    if (verdict == Solver::Verdict::satisfiable) {
        const Run run = engine.unrolling.run(depth);
        std::vector<bool> met;
        met.reserve(goals.size());
        for (const int goal : goals) met.push_back(engine.solver.value(goal));
        for (std::size_t i = 0; i < open.size(); ++i) {
            if (met[i]) keep(open[i], run);
        }
    } else if (verdict == Solver::Verdict::unsatisfiable) {
        for (const int goal : goals) engine.solver.add({-goal});
        refute(open, depth);
    }
    return verdict;
}

/// A path at all, at depths that grow whether or not they are refuted.
void Search::hunt(const Open& open, bool alone) {
    Engine& hunting = engine(hunter);
    const int next =
        hunting.depth < range.from ? range.from : hunting.depth + std::max(1, hunting.depth / 2);
    hunting.depth = std::min(next, range.to);
    const int conflicts = alone ? unlimited : hunting.conflicts;
    if (ask(hunting, hunting.depth, open, conflicts) == Solver::Verdict::unknown) {
        hunting.conflicts += hunting.conflicts / 2;
    }
}

/// The next depth up, for those that it is open for. The strides of the climber grow while answers
/// are easy: on hard ones, a few depths at a time are refuted deeper in the same time than more.
/// Those of the refuter grow as long as there are answers, since it may come upon a path.
void Search::climb(Worker worker, const Open& open, bool alone) {
    Engine& climbing = engine(worker);
    int base = range.to;
    for (const std::size_t q : open) base = std::min(base, all[q].refuted);
    int depth = std::min(range.to, base + climbing.stride);
    for (const std::size_t q : open) {
        if (all[q].refuted == base) depth = std::min(depth, limit(all[q]));
    }
    Open asked;
    for (const std::size_t q : open) {
        if (all[q].refuted < depth && limit(all[q]) >= depth) asked.push_back(q);
    }
    const bool patient = alone && climbing.stride == 1;
    const std::int64_t before = climbing.solver.conflicts();
    if (ask(climbing, depth, asked, patient ? unlimited : climbing.conflicts) ==
        Solver::Verdict::unknown) {
        if (climbing.stride == 1) climbing.conflicts *= 2;
        climbing.stride = std::max(1, (depth - base) / 2);
    } else if (worker == refuter || climbing.solver.conflicts() - before < climbing.conflicts / 4) {
        climbing.stride = std::min(2 * climbing.stride, std::max(1, depth / 2));
    }
}

/// What can never be met, and what can.
void Search::learn(const Open& open) {
    if (!frames) frames = std::make_unique<Frames>(tables, listener.stop);
    std::vector<Frames::Asked> asked;
    for (const std::size_t q : open) asked.push_back({q, &all[q].condition});
    switch (frames->work(asked)) {
    case Frames::Event::pause: break;
    case Frames::Event::refuted: refute(open, std::min(frames->refuted(), range.to)); break;
    case Frames::Event::met: keep(frames->question(), frames->run()); break;
    case Frames::Event::closed:
        const std::string fault = exclude(open, frames->invariant());
        assert(fault.empty());
        break;
    }
}

/// Looks for the end of all runs, where strolls have come to one and the depth is beyond it. That
/// is no more work than what it is for, but for so much in advance.
void Search::lookForEnd(int depth, std::int64_t advance) {
    constexpr int patience = 10000;
    if (depth <= possible || lost || greatest >= 0) return;
    if (depth > strolled) {
        strolled = depth + std::min(depth, range.to - depth);
        possible = std::max(possible, strollLength(tables, strolled));
        if (depth <= possible) return;
    }
    if (!walker) walker = std::make_unique<Engine>(*this, Scope{Steps::serial});
    const std::int64_t next =
        (depth - walker->unrolling.depth()) * walker->unrolling.stepLiterals();
    if (walker->work + next > advance + work(refuter) + work(climber)) return;
    if (!walker->advance(depth, 0)) return;
    const auto endsBefore = [&](int steps) {
        walker->solver.assume(walker->unrolling.busy(steps));
        const Solver::Verdict verdict = walker->solver.solve(patience);
        walker->count();
        lost = lost || verdict == Solver::Verdict::unknown;
        return verdict == Solver::Verdict::unsatisfiable;
    };
    if (!endsBefore(depth)) {
        possible = depth;
        return;
    }
    while (!endsBefore(possible + 1)) ++possible;
    greatest = possible;
    for (Finding& finding : all) finding.never = finding.never || !finding.found;
}

void Search::run() {
    while (!stopped()) {
        std::optional<Worker> next;
        std::array<Open, 4> open;
        int working = 0;
        for (const Worker worker : {hunter, refuter, climber, learner}) {
            open[worker] = openFor(worker);
            if (open[worker].empty()) {
                dismiss(worker);
                continue;
            }
            ++working;
            if (!next || work(worker) < work(*next)) next = worker;
        }
        if (!next) {
            const bool undecided = std::ranges::any_of(
                all, [](const Finding& finding) { return !finding.found && !finding.never; });
            if (undecided) lookForEnd(range.to, much);
            return;
        }
        switch (*next) {
        case hunter: hunt(open[hunter], working == 1); break;
        case refuter:
        case climber: climb(*next, open[*next], working == 1); break;
        case learner: learn(open[learner]); break;
        }
    }
}

void Search::dismiss(Worker worker) {
    if (worker == learner) {
        frames.reset();
    } else {
        engines[worker].reset();
    }
}

Search::Engine& Search::engine(Worker worker) {
    std::unique_ptr<Engine>& one = engines[worker];
    if (!one) {
        constexpr std::array steps{Steps::ordered, Steps::parallel, Steps::serial};
        one = std::make_unique<Engine>(*this, scopeOf(steps[worker]));
    }
    return *one;
}

void Search::offer(std::size_t question, Run path) {
    const auto least = static_cast<std::size_t>(range.from);
    if (path.size() >= least) keep(question, path);
}

std::string Search::exclude(const std::vector<std::size_t>& questions,
                            const Certificate& certificate) {
    std::vector<const Condition*> conditions;
    conditions.reserve(questions.size());
    for (const std::size_t q : questions) conditions.push_back(&all[q].condition);
    std::string fault = certificateFault(tables, certificate, conditions);
    if (!fault.empty()) return fault;
    const auto shared = std::make_shared<const Certificate>(certificate);
    for (const std::size_t q : questions) {
        all[q].never = true;
        all[q].certificate = shared;
        if (listener.proved) listener.proved(all[q]);
    }
    return fault;
}

/// What one has done, as it counts for whose turn it is. The hunter has first call: mostly it finds
/// a path within a few steps if there is one. After that it has half the time of others.
std::int64_t Search::work(Worker worker) const {
    if (worker == learner && frames) return frames->effort();
    if (worker != learner && engines[worker]) {
        return engines[worker]->work * (worker == hunter ? 2 : 1);
    }
    if (worker == hunter) return 0;
    return engines[hunter] ? 4 * engines[hunter]->unrolling.stepLiterals() : 0;
}
