#include "search/unrolling.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <utility>

namespace tervoxal {

Unrolling::Unrolling(const FlatNetwork& network, Solver& solver, const Scope& scope)
    : Unrolling(network, solver, StepClauses(network, scope)) {}

Unrolling::Unrolling(const FlatNetwork& network, Solver& solver, StepClauses made)
    : network(network), solver(solver), clauses(std::move(made)), verity(solver.newVariable()),
      states(1), steps(1) {
    solver.add({verity});
    allot(states[0], clauses.stateBlocks, 0);
    if (!clauses.scope.initial) {
        // The clauses of a state alone have variables of the step that leads to it.
        for (std::size_t d = 0; d < clauses.stepBlocks.size(); ++d) {
            allot(steps[0], clauses.stepBlocks, d);
        }
        give(-1, clauses.stateClauses);
    } else {
        for (uint l = 0; l < network.locations.size(); ++l) {
            if (clauses.locations[l] > 0) starting.push_back(l);
        }
        const auto distance = [&](uint l) {
            return clauses.variable(clauses.locations[l]).distance;
        };
        std::stable_sort(starting.begin(), starting.end(),
                         [&](uint l, uint m) { return distance(l) < distance(m); });
    }
    start();
}

/// Gives variables to those that matter so many steps before the last position.
void Unrolling::allot(Blocks& blocks, const std::vector<uint>& sizes, std::size_t distance) {
    if (distance >= sizes.size()) return;
    assert(blocks.size() == distance);
    blocks.push_back(solver.newVariables(sizes[distance]));
    given += sizes[distance];
}

/// The initial state, as far as it matters by now.
void Unrolling::start() {
    for (; started < starting.size(); ++started) {
        const uint l = starting[started];
        if (clauses.variable(clauses.locations[l]).distance > static_cast<uint>(depth())) return;
        const int var = number(clauses.locations[l], 0);
        solver.add({network.locations[l].number == 0 ? var : -var});
    }
}

void Unrolling::step() {
    states.emplace_back();
    steps.emplace_back();
    const auto last = static_cast<std::size_t>(depth());
    const std::size_t furthest = std::max(clauses.stateBlocks.size(), clauses.stepBlocks.size());
    for (std::size_t p = last; p > 0; --p) {
        const std::size_t distance = last - p + 1; // of the step that comes to it
        if (distance >= furthest && p < last) break;
        for (std::size_t d = p == last ? 0 : distance; d <= distance; ++d) {
            allot(states[p], clauses.stateBlocks, d);
            allot(steps[p], clauses.stepBlocks, d);
        }
    }
    allot(states[0], clauses.stateBlocks, last);
    start();
    std::size_t begin = 0;
    for (int step = depth() - 1; const std::size_t end : clauses.clausesEnd) {
        if (step < 0) break;
        give(step--, std::span(clauses.clauses).subspan(begin, end - begin));
        begin = end;
    }
    for (const Fact& fact : facts) hold(fact, depth() - static_cast<int>(fact.distance));
}

void Unrolling::always(const std::vector<uint>& locations) {
    Fact fact{locations, 0};
    for (const uint l : locations) {
        const uint distance = clauses.variable(clauses.locations[l]).distance;
        if (distance >= clauses.stateBlocks.size()) return; // it never matters
        fact.distance = std::max(fact.distance, distance);
    }
    const int last = depth() - static_cast<int>(fact.distance);
    for (int position = 0; position <= last; ++position) hold(fact, position);
    facts.push_back(std::move(fact));
}

/// At a position where all of the fact matters by now; none if it is negative.
void Unrolling::hold(const Fact& fact, int position) {
    if (position < 0) return;
    shifted.clear();
    for (const uint l : fact.locations) {
        const int literal = location(position, l);
        if (literal == verity) return;
        if (literal != -verity) shifted.push_back(literal);
    }
    shifted.push_back(0);
    given += static_cast<std::int64_t>(shifted.size());
    solver.add(shifted);
}

/// Of a variable of the clauses, as that of a step from a position.
int Unrolling::number(int var, int step) const {
    const StepClauses::Variable& variable = clauses.variable(var);
    const auto to = static_cast<std::size_t>(step) + 1;
    const Blocks& blocks = var <= clauses.stateSize       ? states[to - 1]
                           : var <= 2 * clauses.stateSize ? states[to]
                                                          : steps[to];
    assert(variable.distance < blocks.size());
    return blocks[variable.distance] + static_cast<int>(variable.offset);
}

/// Gives the clauses to the solver as those of a step. A clause with a variable that is still false
/// there lacks the variable, or is left out.
void Unrolling::give(int step, std::span<const int> literals) {
    shifted.clear();
    std::size_t begin = 0; // of the clause
    const bool filtered = step < static_cast<int>(clauses.lastLevel);
    for (std::size_t i = 0; i < literals.size(); ++i) {
        const int literal = literals[i];
        if (literal == 0) {
            shifted.push_back(0);
            begin = shifted.size();
        } else if (!filtered || clauses.variable(literal).level <= static_cast<uint>(step)) {
            shifted.push_back(literal < 0 ? -number(-literal, step) : number(literal, step));
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
    const uint level = network.locations[var > 0 ? l : l + 1].level;
    const Scope& scope = clauses.scope;
    const uint first = !scope.initial                    ? 0
                       : scope.kind == StepKind::relaxed ? std::min(level, 1U)
                                                         : level;
    if (static_cast<uint>(position) < first) return var < 0 ? verity : -verity;
    return var < 0 ? -number(-var, position) : number(var, position);
}

Run Unrolling::run(int position) const {
    Run run;
    for (int p = 0; p < position; ++p) {
        const auto holds = [&](int var) {
            const auto& [level, distance, offset] = clauses.variable(var);
            return level <= static_cast<uint>(p) && distance <= static_cast<uint>(position - p) &&
                   solver.value(number(var, p));
        };
        for (const uint x : clauses.order) {
            if (!holds(clauses.actions[x])) continue;
            std::vector<uint> moves;
            for (const uint i : network.participantsOf(x)) {
                uint chosen = network.movesBegin(i);
                for (uint m = chosen + 1; m < network.participants[i].movesEnd; ++m) {
                    if (holds(clauses.moves[m])) chosen = m;
                }
                moves.push_back(chosen);
            }
            run.push_back({x, std::move(moves)});
        }
    }
    return run;
}

} // namespace tervoxal
