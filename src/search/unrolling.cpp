#include "unrolling.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numeric>

namespace {

/// A move in the clauses of an automaton.
struct Mover {
    uint source;
    uint target;
    uint rank; // of its action
    int var;
};

} // namespace

/// The makers of the clauses of a step.
struct Unrolling::Template {
    Unrolling& made;
    const Tables& tables;
    std::vector<Mover> movers; // by automaton
    std::vector<uint> moversEnd;

    explicit Template(Unrolling& made) : made(made), tables(made.tables) {}

    void make();

    int newVar(uint late) {
        const bool soon = made.steps == Steps::ordered || made.without == Says::start;
        made.late.push_back(soon ? 0 : late);
        made.lastLate = std::max(made.lastLate, made.late.back());
        return static_cast<int>(made.late.size());
    }
    void say(Says what, std::initializer_list<int> clause) {
        say(what, std::span(clause.begin(), clause.size()));
    }
    void say(Says what, std::span<const int> clause) {
        if (what == made.without) return;
        made.clauses.insert(made.clauses.end(), clause.begin(), clause.end());
        made.clauses.push_back(0);
    }
    [[nodiscard]] int now(uint l) const { return made.locationVars[l]; }
    [[nodiscard]] int next(uint l) const {
        const int var = made.locationVars[l];
        return var < 0 ? var - made.stateSize : var + made.stateSize;
    }
    [[nodiscard]] uint lateness(int literal) const {
        return made.late[static_cast<std::size_t>(std::abs(literal)) - 1];
    }

    void atMostOne(Says what, std::span<const int> literals);
    void layOutState();
    void layOutStep();
    void state(uint a);
    void parallel(uint a);
    void ordered(uint a);
    [[nodiscard]] std::span<Mover> moversOf(uint a) {
        const uint begin = a == 0 ? 0 : moversEnd[a - 1];
        return std::span(movers).subspan(begin, moversEnd[a] - begin);
    }
};

/// Pairs of few; of many, each literal fixes the row and the column of a square in which it stands,
/// and of rows and columns one is at most.
void Unrolling::Template::atMostOne(Says what, std::span<const int> literals) {
    constexpr std::size_t few = 5;
    const std::size_t n = literals.size();
    if (n <= few) {
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < i; ++j) say(what, {-literals[j], -literals[i]});
        }
        return;
    }
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(n))));
    std::vector<int> rows((n + side - 1) / side);
    std::vector<int> columns(side);
    for (std::size_t i = 0; i < n; ++i) {
        for (int* line : {&rows[i / side], &columns[i % side]}) {
            if (*line == 0) *line = newVar(0);
            say(what, {-literals[i], *line});
        }
    }
    atMostOne(what, rows);
    atMostOne(what, columns);
}

void Unrolling::Template::layOutState() {
    for (const int next : {0, 1}) {
        for (uint a = 0; a < tables.automata.size(); ++a) {
            const uint begin = tables.locationsBegin(a);
            const uint end = tables.automata[a].locationsEnd;
            for (uint l = end - begin == 2 ? begin + 1 : begin; l < end; ++l) {
                const uint layer = tables.locations[l].layer;
                const int var = newVar(layer - (next != 0 && layer > 0 ? 1 : 0));
                if (next != 0) continue;
                if (end - begin == 2) made.locationVars.push_back(-var);
                made.locationVars.push_back(var);
            }
        }
        if (next == 0) made.stateSize = static_cast<int>(made.late.size());
    }
}

void Unrolling::Template::layOutStep() {
    made.order.resize(tables.actions.size());
    std::iota(made.order.begin(), made.order.end(), 0U);
    if (made.steps == Steps::ordered) {
        std::stable_sort(made.order.begin(), made.order.end(), [&](uint x, uint y) {
            return tables.actions[x].layer < tables.actions[y].layer;
        });
    }
    std::vector<uint> rank(tables.actions.size());
    for (uint i = 0; i < made.order.size(); ++i) rank[made.order[i]] = i;

    moversEnd.resize(tables.automata.size());
    for (uint p = 0; p < tables.participants.size(); ++p) {
        moversEnd[tables.participants[p].automaton] +=
            tables.participants[p].movesEnd - tables.movesBegin(p);
    }
    std::partial_sum(moversEnd.begin(), moversEnd.end(), moversEnd.begin());
    movers.resize(tables.moves.size());
    std::vector<uint> fill(moversEnd.size());
    for (uint a = 0; a < fill.size(); ++a) fill[a] = a == 0 ? 0 : moversEnd[a - 1];

    made.busyVar = newVar(0);
    std::vector<int> some = {-made.busyVar};
    for (uint x = 0; x < tables.actions.size(); ++x) {
        const int action = newVar(tables.actions[x].layer);
        made.actionVars.push_back(action);
        some.push_back(action);
        for (uint p = tables.participantsBegin(x); p < tables.actions[x].participantsEnd; ++p) {
            const uint begin = tables.movesBegin(p);
            const uint end = tables.participants[p].movesEnd;
            std::vector<int> choice = {-action};
            for (uint m = begin; m < end; ++m) {
                const Tables::Move& move = tables.moves[m];
                const uint layer =
                    std::max(tables.actions[x].layer, tables.locations[move.source].layer);
                const int var = end - begin == 1 ? action : newVar(layer);
                made.moveVars.push_back(var);
                choice.push_back(var);
                if (var != action) say(Says::taken, {-var, action});
                movers[fill[tables.participants[p].automaton]++] = {move.source, move.target,
                                                                    rank[x], var};
            }
            if (end - begin == 1) continue;
            say(Says::choice, choice);
            if (made.steps == Steps::ordered) {
                atMostOne(Says::exclusion, std::span(choice).subspan(1));
            }
        }
    }
    say(Says::busy, some);
    if (made.steps == Steps::serial) atMostOne(Says::exclusion, made.actionVars);
}

void Unrolling::Template::state(uint a) {
    std::vector<int> in;
    for (uint l = tables.locationsBegin(a); l < tables.automata[a].locationsEnd; ++l) {
        in.push_back(next(l));
    }
    if (in.size() == 2) return;
    say(Says::somewhere, in);
    atMostOne(Says::once, in);
}

/// Of moves that differ in source or target, one at most is possible, since the automaton is in one
/// location at a time.
void Unrolling::Template::parallel(uint a) {
    const std::span<Mover> moves = moversOf(a);
    const uint begin = tables.locationsBegin(a);
    const uint end = tables.automata[a].locationsEnd;
    std::vector<std::vector<int>> into(end - begin);
    std::vector<std::vector<int>> out(end - begin);
    std::stable_sort(moves.begin(), moves.end(), [](const Mover& x, const Mover& y) {
        return std::pair(x.source, x.target) < std::pair(y.source, y.target);
    });
    for (std::size_t i = 0; i < moves.size();) {
        const Mover& first = moves[i];
        std::vector<int> same;
        for (;
             i < moves.size() && moves[i].source == first.source && moves[i].target == first.target;
             ++i) {
            const Mover& move = moves[i];
            same.push_back(move.var);
            say(Says::source, {-move.var, now(move.source)});
            say(Says::target, {-move.var, next(move.target)});
        }
        if (first.source == first.target) continue;
        auto& here = into[first.target - begin];
        here.insert(here.end(), same.begin(), same.end());
        auto& there = out[first.source - begin];
        there.insert(there.end(), same.begin(), same.end());
        if (made.steps == Steps::parallel) atMostOne(Says::exclusion, same);
    }
    for (uint l = begin; l < end; ++l) {
        std::vector<int>& in = into[l - begin];
        in.insert(in.end(), {now(l), -next(l)});
        say(Says::frame, in);
        if (end - begin == 2) continue;
        std::vector<int>& from = out[l - begin];
        from.insert(from.end(), {-now(l), next(l)});
        say(Says::frame, from);
    }
}

/// What happens to each location in the order of the actions.
void Unrolling::Template::ordered(uint a) {
    enum class Kind { test, leave, come };
    struct Event {
        Kind kind;
        uint rank;
        int var;
        int sign; // of the location's literal in a test
    };
    const uint begin = tables.locationsBegin(a);
    const uint end = tables.automata[a].locationsEnd;
    const bool bit = end - begin == 2;
    std::vector<std::vector<Event>> events(end - begin);
    for (const Mover& move : moversOf(a)) {
        if (bit) {
            auto& all = events[1];
            if (move.source == move.target) {
                all.push_back({Kind::test, move.rank, move.var, move.source == begin ? -1 : 1});
            } else {
                all.push_back(
                    {move.source == begin ? Kind::come : Kind::leave, move.rank, move.var, 1});
            }
        } else if (move.source == move.target) {
            events[move.source - begin].push_back({Kind::test, move.rank, move.var, 1});
        } else {
            events[move.source - begin].push_back({Kind::leave, move.rank, move.var, 1});
            events[move.target - begin].push_back({Kind::come, move.rank, move.var, 1});
        }
    }
    for (uint l = bit ? begin + 1 : begin; l < end; ++l) {
        auto& all = events[l - begin];
        std::stable_sort(all.begin(), all.end(), [](const Event& x, const Event& y) {
            return std::pair(x.rank, x.kind) < std::pair(y.rank, y.kind);
        });
        std::size_t last = all.size(); // behind the last change
        while (last > 0 && all[last - 1].kind == Kind::test) --last;
        int value = now(l);
        if (last == 0) {
            say(Says::frame, {-value, next(l)});
            say(Says::frame, {value, -next(l)});
            value = next(l);
        }
        for (std::size_t i = 0; i < all.size();) {
            const Kind kind = all[i].kind;
            if (kind == Kind::test) {
                say(Says::source, {-all[i].var, all[i].sign * value});
                ++i;
                continue;
            }
            std::vector<int> same;
            for (; i < all.size() && all[i].kind == kind; ++i) same.push_back(all[i].var);
            const int then = i >= last ? next(l) : newVar(0);
            const int was = kind == Kind::come ? value : -value;
            const int is = kind == Kind::come ? then : -then;
            for (const int var : same) {
                if (bit || kind == Kind::leave) say(Says::source, {-var, -was});
                say(Says::target, {-var, is});
            }
            if (bit || kind == Kind::leave) atMostOne(Says::exclusion, same);
            say(Says::frame, {-was, is});
            same.insert(same.end(), {was, -is});
            say(Says::frame, same);
            value = then;
        }
    }
}

void Unrolling::Template::make() {
    layOutState();
    layOutStep();
    for (uint a = 0; a < tables.automata.size(); ++a) {
        if (made.steps == Steps::ordered) {
            ordered(a);
        } else {
            parallel(a);
        }
        state(a);
    }
    made.stepSize = static_cast<int>(made.late.size()) - 2 * made.stateSize;
}

Unrolling::Unrolling(const Tables& tables, Solver& solver, Steps steps, Says without)
    : tables(tables), solver(solver), steps(steps), without(without), verity(solver.newVariable()) {
    solver.add({verity});
    Template(*this).make();
    stateAt.push_back(solver.newVariables(stateSize));
    busyAt.push_back(verity);
    if (without == Says::start) return;
    for (uint l = 0; l < tables.locations.size(); ++l) {
        if (locationVars[l] < 0) continue;
        const int var = locationVars[l] + stateAt[0] - 1;
        solver.add({tables.locations[l].number == 0 ? var : -var});
    }
}

void Unrolling::step() {
    const auto position = static_cast<uint>(depth());
    const int before = stateAt.back() - 1;
    const int after = solver.newVariables(std::int64_t(stateSize) + stepSize) - 1 - stateSize;
    stateAt.push_back(after + stateSize + 1);
    given.clear();
    const auto shifted = [&](int var) { return var > stateSize ? var + after : var + before; };
    if (position >= lastLate) {
        for (const int literal : clauses) {
            given.push_back(literal == 0 ? 0 : literal < 0 ? -shifted(-literal) : shifted(literal));
        }
    } else {
        std::size_t begin = 0; // of the clause
        for (std::size_t i = 0; i < clauses.size(); ++i) {
            const int literal = clauses[i];
            if (literal == 0) {
                given.push_back(0);
                begin = given.size();
            } else if (late[static_cast<std::size_t>(std::abs(literal)) - 1] <= position) {
                given.push_back(literal < 0 ? -shifted(-literal) : shifted(literal));
            } else if (literal < 0) {
                given.resize(begin);
                while (clauses[i] != 0) ++i;
            }
        }
    }
    solver.add(given);
    const int busyNow = busyVar + after;
    if (without != Says::busy) solver.add({-busyNow, busyAt.back()});
    busyAt.push_back(busyNow);
}

int Unrolling::location(int position, uint l) const {
    const int var = locationVars[l];
    const uint layer = tables.locations[var > 0 ? l : l + 1].layer;
    const auto soonest = without == Says::start    ? 0
                         : steps == Steps::ordered ? std::min(layer, 1U)
                                                   : layer;
    if (static_cast<uint>(position) < soonest) return var < 0 ? verity : -verity;
    const int base = stateAt[static_cast<std::size_t>(position)] - 1;
    return var < 0 ? var - base : var + base;
}

Run Unrolling::run(int position) const {
    Run taken;
    for (int p = 0; p < position; ++p) {
        const int base = stateAt[static_cast<std::size_t>(p) + 1] - 1 - stateSize;
        const auto holds = [&](int var) {
            return late[static_cast<std::size_t>(var) - 1] <= static_cast<uint>(p) &&
                   solver.value(var + base);
        };
        for (const uint x : order) {
            if (!holds(actionVars[x])) continue;
            taken.push_back({x, {}});
            for (uint i = tables.participantsBegin(x); i < tables.actions[x].participantsEnd; ++i) {
                uint chosen = tables.movesBegin(i);
                // Where a move and a test are both marked, the move counts.
                for (uint m = chosen + 1; m < tables.participants[i].movesEnd; ++m) {
                    if (holds(moveVars[m]) && (!holds(moveVars[chosen]) ||
                                               tables.moves[m].source != tables.moves[m].target)) {
                        chosen = m;
                    }
                }
                taken.back().moves.push_back(chosen);
            }
        }
    }
    return taken;
}
