#include "unrolling.h"

#include <algorithm>
#include <iterator>

Unrolling::Unrolling(const Tables& tables, Solver& solver, const Scope& scope, Says without)
    : tables(tables), solver(solver), scope(scope), without(without),
      clauses(tables, this->scope, without), verity(solver.newVariable()) {
    solver.add({verity});
    // The clauses of a state alone have variables of the step that leads to it.
    stateAt.push_back(solver.newVariables(
        scope.initial ? clauses.stateSize : std::ssize(clauses.variables) - clauses.stateSize));
    busyAt.push_back(verity);
    if (!scope.initial) {
        const int shift =
            stateAt[0] - 1 - clauses.stateSize; // they are about the state behind a step
        for (const int literal : clauses.stateClauses) {
            shifted.push_back(literal > 0 ? literal + shift : literal < 0 ? literal - shift : 0);
        }
        solver.add(shifted);
    } else if (without != Says::start) {
        for (uint l = 0; l < tables.locations.size(); ++l) {
            if (clauses.locations[l] < 0) continue;
            const int var = clauses.locations[l] + stateAt[0] - 1;
            solver.add({tables.locations[l].number == 0 ? var : -var});
        }
    }
}

void Unrolling::step() {
    const auto size = static_cast<std::int64_t>(clauses.variables.size());
    stateAt.push_back(solver.newVariables(size - clauses.stateSize));
    given += size;
    std::size_t begin = 0;
    for (int step = depth() - 1; const std::size_t end : clauses.clausesEnd) {
        if (step < 0) break;
        give(step--, std::span(clauses.clauses).subspan(begin, end - begin));
        begin = end;
    }
    const int busyNow = clauses.busy + stateAt.back() - 1 - clauses.stateSize;
    if (without != Says::busy) solver.add({-busyNow, busyAt.back()});
    busyAt.push_back(busyNow);
}

/// Gives the clauses to the solver as those of a step. A clause with a variable that is still false
/// there lacks the variable, or is left out.
void Unrolling::give(int step, std::span<const int> literals) {
    const auto at = static_cast<std::size_t>(step);
    const int before = stateAt[at] - 1;
    const int after = stateAt[at + 1] - 1 - clauses.stateSize;
    const auto shift = [&](int var) {
        return var > clauses.stateSize ? var + after : var + before;
    };
    shifted.clear();
    std::size_t begin = 0; // of the clause
    const bool filtered = static_cast<uint>(step) < clauses.lastLate;
    for (std::size_t i = 0; i < literals.size(); ++i) {
        const int literal = literals[i];
        if (literal == 0) {
            shifted.push_back(0);
            begin = shifted.size();
        } else if (!filtered || clauses.variable(literal).late <= static_cast<uint>(step)) {
            shifted.push_back(literal < 0 ? -shift(-literal) : shift(literal));
        } else if (literal < 0) {
            shifted.resize(begin);
            while (literals[i] != 0) ++i;
        }
    }
    given += static_cast<std::int64_t>(shifted.size());
    solver.add(shifted);
}

int Unrolling::location(int position, uint l) const {
    const int var = clauses.locations[l];
    const uint layer = tables.locations[var > 0 ? l : l + 1].layer;
    const bool anywhere = !scope.initial || without == Says::start;
    const uint first = anywhere ? 0 : scope.steps == Steps::ordered ? std::min(layer, 1U) : layer;
    if (static_cast<uint>(position) < first) return var < 0 ? verity : -verity;
    const int base = stateAt[static_cast<std::size_t>(position)] - 1;
    return var < 0 ? var - base : var + base;
}

Run Unrolling::run(int position) const {
    Run run;
    for (int p = 0; p < position; ++p) {
        const int base = stateAt[static_cast<std::size_t>(p) + 1] - 1 - clauses.stateSize;
        const auto holds = [&](int var) {
            const auto [late, ahead] = clauses.variable(var);
            return late <= static_cast<uint>(p) && ahead <= static_cast<uint>(position - p) &&
                   solver.value(var + base);
        };
        for (const uint x : clauses.order) {
            if (!holds(clauses.actions[x])) continue;
            run.push_back({x, {}});
            for (uint i = tables.participantsBegin(x); i < tables.actions[x].participantsEnd; ++i) {
                uint chosen = tables.movesBegin(i);
                for (uint m = chosen + 1; m < tables.participants[i].movesEnd; ++m) {
                    if (holds(clauses.moves[m])) chosen = m;
                }
                run.back().moves.push_back(chosen);
            }
        }
    }
    return run;
}
