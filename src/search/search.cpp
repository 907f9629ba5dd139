#include "search.h"

#include "conditionliterals.h"
#include "property.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <numeric>

/// An unrolling with its solver.
struct Search::Engine {
    Engine(const Search& search, Steps steps)
        : search(search), unrolling(search.tables, solver, steps), literals(unrolling, solver),
          met(search.all.size(), -unrolling.truth()) {
        if (search.listener.stop) solver.setStop(search.listener.stop);
    }

    /// Goes on to a depth; up to `busy` each step has an action.
    void advance(int depth, int busy) {
        while (unrolling.depth() < depth) {
            if (search.range.from > 0) meetAll();
            unrolling.step();
            if (unrolling.depth() <= busy) solver.add({unrolling.busy(unrolling.depth())});
        }
    }
    /// The condition is met: at the last position, or, where the path may have to go on behind it,
    /// anywhere.
    int goal(std::size_t question) {
        const int here = literals.literal(search.all[question].condition, unrolling.depth());
        return search.range.from == 0 ? here : literals.disjunction(met[question], here);
    }
    void meetAll() {
        for (std::size_t q = 0; q < met.size(); ++q) {
            if (!search.settled(search.all[q])) met[q] = goal(q);
        }
    }

    const Search& search;
    Solver solver;
    Unrolling unrolling;
    ConditionLiterals literals;
    std::vector<int> met; // of each condition, at positions ahead of the last one
};

namespace {

constexpr int unlimited = -1;

}

Search::Search(const NetTimedModel& model, std::vector<Condition> conditions, const Range& range,
               Listener listener)
    : tables(model), range(range), listener(std::move(listener)) {
    huntDepth = range.from;
    for (Condition& condition : conditions) {
        all.push_back({std::move(condition), range.from - 1});
    }
}

Search::~Search() = default;

bool Search::settled(const Finding& finding) const {
    if (finding.never || finding.refuted >= range.to) return true;
    return finding.found && (finding.least() || (range.any && finding.length() <= range.to));
}

bool Search::hunted(const Finding& finding) const { return !finding.found && !settled(finding); }

/// Asks whether one of the open conditions is met at the depth of the engine, and notes what comes
/// out of it: paths, or that none is met.
Solver::Verdict Search::ask(Engine& engine, const std::vector<std::size_t>& open, int conflicts) {
    const int depth = engine.unrolling.depth();
    std::vector<int> goals;
    for (const std::size_t q : open) goals.push_back(engine.goal(q));
    engine.solver.assume(engine.literals.some(goals));
    const Solver::Verdict verdict = engine.solver.solve(conflicts);
    if (verdict == Solver::Verdict::satisfiable) {
        const Run run = engine.unrolling.run(depth);
        std::vector<std::size_t> met;
        for (std::size_t i = 0; i < open.size(); ++i) {
            if (engine.solver.value(goals[i])) met.push_back(open[i]);
        }
        for (const std::size_t q : met) {
            Finding& finding = all[q];
            finding.path = shortened(tables, run, finding.condition,
                                     static_cast<std::size_t>(range.from));
            finding.found = true;
            listener.found(finding);
        }
    } else if (verdict == Solver::Verdict::unsatisfiable) {
        for (std::size_t i = 0; i < open.size(); ++i) {
            engine.solver.add({-goals[i]});
            all[open[i]].refuted = std::max(all[open[i]].refuted, depth);
        }
        listener.refuted();
    }
    return verdict;
}

/// Whether there are paths of that many steps. Where there are none, the greatest length is found.
bool Search::endless(Engine& engine, int depth) {
    constexpr int patience = 10000;
    const auto possible = [&](int steps) {
        engine.solver.assume(engine.unrolling.busy(steps));
        return engine.solver.solve(patience) != Solver::Verdict::unsatisfiable;
    };
    if (possible(depth)) {
        runnable = depth;
        return true;
    }
    for (greatest = runnable; possible(greatest + 1);) ++greatest;
    for (Finding& finding : all) finding.never = finding.never || !finding.found;
    return false;
}

/// Looks for a path to each open condition, with many actions in a step. False where it has given
/// up for now.
bool Search::hunt(int conflicts) {
    while (true) {
        std::vector<std::size_t> open;
        for (std::size_t q = 0; q < all.size(); ++q) {
            if (hunted(all[q])) open.push_back(q);
        }
        if (open.empty()) return true;
        if (!hunter) hunter = std::make_unique<Engine>(*this, Steps::parallel);
        hunter->advance(huntDepth, range.from);
        switch (ask(*hunter, open, conflicts)) {
        case Solver::Verdict::unknown: return false;
        case Solver::Verdict::satisfiable: break;
        case Solver::Verdict::unsatisfiable:
            if (!endless(*hunter, huntDepth)) return true;
            huntDepth = std::min(range.to, huntDepth + std::max(1, huntDepth / 2));
            break;
        }
    }
}

/// Goes up to the least lengths, with one action in a step.
bool Search::climb(int conflicts) {
    while (true) {
        std::vector<std::size_t> open;
        int depth = std::numeric_limits<int>::max();
        for (const Finding& finding : all) {
            if (!settled(finding)) depth = std::min(depth, finding.refuted + 1);
        }
        for (std::size_t q = 0; q < all.size(); ++q) {
            if (!settled(all[q]) && all[q].refuted + 1 == depth) open.push_back(q);
        }
        if (open.empty()) return true;
        if (!climber) climber = std::make_unique<Engine>(*this, Steps::serial);
        climber->advance(depth, depth);
        if (ask(*climber, open, conflicts) == Solver::Verdict::unknown) return false;
    }
}

void Search::offer(std::size_t question, Run path) {
    Finding& finding = all[question];
    const auto least = static_cast<std::size_t>(range.from);
    path = shortened(tables, std::move(path), finding.condition, least);
    if (path.size() < least || (finding.found && path.size() >= finding.path.size())) return;
    finding.path = std::move(path);
    finding.found = true;
    listener.found(finding);
}

void Search::exclude(std::size_t question) {
    all[question].never = true;
    all[question].proved = true;
    listener.proved(all[question]);
}

void Search::run() {
    const auto isSettled = [&](const Finding& finding) { return settled(finding); };
    const auto isHunted = [&](const Finding& finding) { return hunted(finding); };
    for (int conflicts = 20000;; conflicts *= 2) {
        const bool hunting = std::any_of(all.begin(), all.end(), isHunted);
        if (hunting) hunt(conflicts);
        if (!std::any_of(all.begin(), all.end(), isHunted)) hunter.reset();
        if (std::all_of(all.begin(), all.end(), isSettled)) return;
        if (listener.stop && listener.stop()) return;
        climb(hunter ? conflicts : unlimited);
        if (std::all_of(all.begin(), all.end(), isSettled)) return;
        if (listener.stop && listener.stop()) return;
    }
}
