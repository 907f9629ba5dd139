#include "search/stepclauses.h"

#include "model/rows.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace tervoxal {

namespace {

constexpr uint never = std::numeric_limits<uint>::max();

/// A move in the clauses of an automaton.
struct Mover {
    uint source;
    uint target;
    uint rank; // of its action
    int var;
};

/// What happens to a location.
struct Effect {
    enum class Kind { test, leave, come };

    Kind kind;
    uint rank;
    int var;
    int sign; // of the location's literal in a test
};

/// A clause, by how far from the last position it matters.
struct Clause {
    uint distance;
    std::size_t end;
    Says what;
};

class Maker {
public:
    Maker(StepClauses& made, const FlatNetwork& network)
        : made(made), network(network), scope(made.scope) {}

    void make();

private:
    int newVar(uint level, uint distance);
    void say(Says what, std::initializer_list<int> clause) {
        say(what, std::span(clause.begin(), clause.size()));
    }
    void say(Says what, std::span<const int> clause);
    void atMostOne(Says what, std::span<const int> literals);

    void measureDistances();
    void layOutState();
    void layOutActions();
    void layOutMovers();
    void state(uint a);
    void unordered(uint a);
    void ordered(uint a);
    void ordered(uint l, std::vector<Effect>& events, bool bit);
    void sortClauses();
    void countVariables();

    [[nodiscard]] int now(uint l) const { return made.locations[l]; }
    [[nodiscard]] int next(uint l) const {
        const int var = made.locations[l];
        return var < 0 ? var - made.stateSize : var + made.stateSize;
    }
    [[nodiscard]] uint participantsEnd(uint x) const { return network.actions[x].participantsEnd; }

    StepClauses& made;
    const FlatNetwork& network;
    const Scope& scope;
    std::vector<uint> distances; // of each automaton
    Rows<Mover> movers;          // of each automaton
    std::vector<Clause> clauses;
};

int Maker::newVar(uint level, uint distance) {
    if (scope.kind == StepKind::relaxed || !scope.initial) level = 0;
    made.variables.push_back({level, distance, 0});
    if (level != never) made.lastLevel = std::max(made.lastLevel, level);
    return static_cast<int>(made.variables.size());
}

void Maker::say(Says what, std::span<const int> clause) {
    uint distance = 1;
    for (const int literal : clause) distance = std::max(distance, made.variable(literal).distance);
    if (distance == never) return;
    made.clauses.insert(made.clauses.end(), clause.begin(), clause.end());
    made.clauses.push_back(0);
    clauses.push_back({distance, made.clauses.size(), what});
}

/// Pairs of few. Of many, each literal fixes the row and the column of a square in which it stands,
/// and of rows and of columns there is one at most.
void Maker::atMostOne(Says what, std::span<const int> literals) {
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
        const uint distance = made.variable(literals[i]).distance;
        for (int* line : {&rows[i / side], &columns[i % side]}) {
            if (*line == 0) *line = newVar(0, distance);
            uint& least = made.variables[static_cast<std::size_t>(*line) - 1].distance;
            least = std::min(least, distance);
            say(what, {-literals[i], *line});
        }
    }
    atMostOne(what, rows);
    atMostOne(what, columns);
}

/// The distance of an automaton from the roots of the cone, in actions that two automata share. In
/// a relaxed step the values of an automaton are chained through all of its actions, so there the
/// whole cone is at distance 0.
void Maker::measureDistances() {
    distances.assign(network.automata.size(), 0);
    if (scope.cone.empty()) return;
    std::vector<std::vector<uint>> actionsOf(network.automata.size());
    for (uint x = 0; x < network.actions.size(); ++x) {
        for (const uint p : network.participantsOf(x)) {
            actionsOf[network.participants[p].automaton].push_back(x);
        }
    }
    std::vector<uint> queue;
    std::vector<bool> seen(network.actions.size());
    for (uint a = 0; a < distances.size(); ++a) {
        distances[a] = scope.cone[a] ? 0 : never;
        if (scope.cone[a]) queue.push_back(a);
    }
    for (std::size_t i = 0; i < queue.size(); ++i) {
        const uint further = distances[queue[i]] + 1;
        for (const uint x : actionsOf[queue[i]]) {
            if (seen[x]) continue;
            seen[x] = true;
            for (const uint p : network.participantsOf(x)) {
                const uint other = network.participants[p].automaton;
                if (distances[other] != never) continue;
                distances[other] = further;
                queue.push_back(other);
            }
        }
    }
    if (scope.kind != StepKind::relaxed) return;
    for (uint& a : distances) a = a == never ? never : 0;
}

void Maker::layOutState() {
    for (const uint next : {0U, 1U}) {
        for (uint a = 0; a < network.automata.size(); ++a) {
            const uint begin = network.locationsBegin(a);
            const uint end = network.automata[a].locationsEnd;
            for (uint l = end - begin == 2 ? begin + 1 : begin; l < end; ++l) {
                const uint level = network.locations[l].level;
                const int var = newVar(level - std::min(level, next), distances[a]);
                if (next == 1) continue;
                if (end - begin == 2) made.locations.push_back(-var);
                made.locations.push_back(var);
            }
        }
        if (next == 0) made.stateSize = static_cast<int>(made.variables.size());
    }
}

void Maker::layOutActions() {
    made.order.resize(network.actions.size());
    std::iota(made.order.begin(), made.order.end(), 0U);
    if (scope.kind == StepKind::relaxed) {
        std::stable_sort(made.order.begin(), made.order.end(), [&](uint x, uint y) {
            return network.actions[x].level < network.actions[y].level;
        });
    }
    const uint apart = scope.kind == StepKind::relaxed ? 0 : 1; // an action and what it moves
    for (uint x = 0; x < network.actions.size(); ++x) {
        uint distance = scope.cone.empty() ? 0 : never;
        for (const uint p : network.participantsOf(x)) {
            const uint near = distances[network.participants[p].automaton];
            if (near != never) distance = std::min(distance, near + apart);
        }
        const uint level = network.actions[x].level;
        const int action = newVar(level, distance);
        made.actions.push_back(action);
        for (const uint p : network.participantsOf(x)) {
            const uint begin = network.movesBegin(p);
            const uint end = network.participants[p].movesEnd;
            if (end - begin == 1) {
                made.moves.push_back(action);
                continue;
            }
            std::vector<int> choice = {-action};
            for (uint m = begin; m < end; ++m) {
                const uint source = network.locations[network.moves[m].source].level;
                choice.push_back(newVar(std::max(level, source), distance));
                made.moves.push_back(choice.back());
                say(Says::taken, {-choice.back(), action});
            }
            say(Says::choice, choice);
            if (scope.kind == StepKind::relaxed) {
                atMostOne(Says::exclusion, std::span(choice).subspan(1));
            }
        }
    }
    if (scope.kind == StepKind::interleaving) atMostOne(Says::exclusion, made.actions);
}

void Maker::layOutMovers() {
    std::vector<uint> rank(made.order.size());
    for (uint i = 0; i < rank.size(); ++i) rank[made.order[i]] = i;
    std::vector<std::pair<uint, Mover>> entries;
    entries.reserve(network.moves.size());
    for (uint x = 0; x < network.actions.size(); ++x) {
        for (const uint p : network.participantsOf(x)) {
            for (const uint m : network.movesOf(p)) {
                entries.push_back(
                    {network.participants[p].automaton,
                     {network.moves[m].source, network.moves[m].target, rank[x], made.moves[m]}});
            }
        }
    }
    movers = Rows<Mover>(network.automata.size(), entries);
}

void Maker::state(uint a) {
    std::vector<int> in;
    for (const uint l : network.locationsOf(a)) {
        in.push_back(next(l));
    }
    if (in.size() == 2) return;
    say(Says::somewhere, in);
    if (scope.kind != StepKind::relaxed) atMostOne(Says::once, in);
}

/// Of moves that differ in source or target one at most is possible, since the automaton is in one
/// location at a time. So only those that are the same have to exclude each other, and tests of a
/// location need not.
void Maker::unordered(uint a) {
    const std::span<Mover> moves = movers[a];
    const uint begin = network.locationsBegin(a);
    const uint end = network.automata[a].locationsEnd;
    std::vector<std::vector<int>> into(end - begin);
    std::vector<std::vector<int>> outOf(end - begin);
    std::stable_sort(moves.begin(), moves.end(), [](const Mover& x, const Mover& y) {
        return std::pair(x.source, x.target) < std::pair(y.source, y.target);
    });
    for (std::size_t i = 0; i < moves.size();) {
        const Mover first = moves[i];
        std::vector<int> same;
        for (;
             i < moves.size() && moves[i].source == first.source && moves[i].target == first.target;
             ++i) {
            same.push_back(moves[i].var);
            say(Says::source, {-moves[i].var, now(first.source)});
            say(Says::target, {-moves[i].var, next(first.target)});
        }
        if (first.source == first.target) continue;
        for (auto* list : {&into[first.target - begin], &outOf[first.source - begin]}) {
            list->insert(list->end(), same.begin(), same.end());
        }
        if (scope.kind == StepKind::independent) atMostOne(Says::exclusion, same);
    }
    for (uint l = begin; l < end; ++l) {
        std::vector<int>& in = into[l - begin];
        in.insert(in.end(), {now(l), -next(l)});
        say(Says::frame, in);
        if (end - begin == 2) continue; // to come to one is to leave the other
        std::vector<int>& out = outOf[l - begin];
        out.insert(out.end(), {-now(l), next(l)});
        say(Says::frame, out);
    }
}

void Maker::ordered(uint a) {
    using Kind = Effect::Kind;
    const uint begin = network.locationsBegin(a);
    const uint end = network.automata[a].locationsEnd;
    const bool bit = end - begin == 2;
    std::vector<std::vector<Effect>> events(end - begin);
    for (const Mover& move : movers[a]) {
        const bool test = move.source == move.target;
        if (bit) {
            const bool first = move.source == begin;
            const Kind kind = test ? Kind::test : first ? Kind::come : Kind::leave;
            events[1].push_back({kind, move.rank, move.var, first ? -1 : 1});
        } else if (test) {
            events[move.source - begin].push_back({Kind::test, move.rank, move.var, 1});
        } else {
            events[move.source - begin].push_back({Kind::leave, move.rank, move.var, 1});
            events[move.target - begin].push_back({Kind::come, move.rank, move.var, 1});
        }
    }
    for (uint l = bit ? begin + 1 : begin; l < end; ++l) ordered(l, events[l - begin], bit);
}

/// Whether an automaton is in a location, from one event to the next. Events of one kind in a row
/// are one: of those that leave it only one can be, and of those that come to it as well, since the
/// automaton is elsewhere before.
void Maker::ordered(uint l, std::vector<Effect>& events, bool bit) {
    using Kind = Effect::Kind;
    std::stable_sort(events.begin(), events.end(), [](const Effect& x, const Effect& y) {
        return std::pair(x.rank, x.kind) < std::pair(y.rank, y.kind);
    });
    std::size_t last = events.size(); // after the last change
    while (last > 0 && events[last - 1].kind == Kind::test) --last;
    int value = now(l);
    if (last == 0) {
        say(Says::frame, {-value, next(l)});
        say(Says::frame, {value, -next(l)});
    }
    for (std::size_t i = 0; i < events.size();) {
        const Kind kind = events[i].kind;
        if (kind == Kind::test) {
            say(Says::source, {-events[i].var, events[i].sign * value});
            ++i;
            continue;
        }
        std::vector<int> same;
        for (; i < events.size() && events[i].kind == kind; ++i) same.push_back(events[i].var);
        const int then = i >= last ? next(l) : newVar(0, made.variable(value).distance);
        const int was = kind == Kind::come ? value : -value;
        const int is = kind == Kind::come ? then : -then;
        const bool alone = bit || kind == Kind::leave;
        for (const int var : same) {
            if (alone) say(Says::source, {-var, -was});
            say(Says::target, {-var, is});
        }
        if (alone) atMostOne(Says::exclusion, same);
        say(Says::frame, {-was, is});
        same.insert(same.end(), {was, -is});
        say(Says::frame, same);
        value = then;
    }
}

void Maker::sortClauses() {
    std::vector<std::size_t> order(clauses.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return clauses[i].distance; });
    std::vector<int> sorted;
    sorted.reserve(made.clauses.size());
    for (const std::size_t i : order) {
        made.clausesEnd.resize(clauses[i].distance, sorted.size());
        const std::size_t begin = i == 0 ? 0 : clauses[i - 1].end;
        sorted.insert(sorted.end(), made.clauses.begin() + static_cast<std::ptrdiff_t>(begin),
                      made.clauses.begin() + static_cast<std::ptrdiff_t>(clauses[i].end));
        made.clausesEnd.back() = sorted.size();
        made.said.push_back(clauses[i].what);
    }
    made.clauses.swap(sorted);
}

/// Those of the state that the step comes to are numbered as those of the state that it leaves.
void Maker::countVariables() {
    const auto size = static_cast<std::size_t>(made.stateSize);
    for (std::size_t v = 0; v < made.variables.size(); ++v) {
        StepClauses::Variable& variable = made.variables[v];
        if (variable.distance == never) continue;
        if (v >= size && v < 2 * size) {
            variable.offset = made.variables[v - size].offset;
            continue;
        }
        std::vector<uint>& blocks = v < size ? made.stateBlocks : made.stepBlocks;
        blocks.resize(std::max<std::size_t>(blocks.size(), variable.distance + 1));
        variable.offset = blocks[variable.distance]++;
    }
}

void Maker::make() {
    measureDistances();
    layOutState();
    layOutActions();
    layOutMovers();
    for (uint a = 0; a < network.automata.size(); ++a) {
        if (scope.kind == StepKind::relaxed) {
            ordered(a);
        } else {
            unordered(a);
        }
    }
    const std::size_t before = clauses.size();
    const auto end = static_cast<std::ptrdiff_t>(made.clauses.size());
    for (uint a = 0; a < network.automata.size(); ++a) state(a);
    if (!scope.initial) {
        made.stateClauses.assign(made.clauses.begin() + end, made.clauses.end());
        for (std::size_t i = before; i < clauses.size(); ++i) {
            made.saidOfStates.push_back(clauses[i].what);
        }
    }
    sortClauses();
    countVariables();
}

} // namespace

StepClauses::StepClauses(const FlatNetwork& network, Scope scope) : scope(std::move(scope)) {
    Maker(*this, network).make();
}

} // namespace tervoxal
