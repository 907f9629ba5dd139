#include "clauses.h"

#include "boolform.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>
#include <utility>

Clause::Clause(int x, int y, int z) : l1(x), l2(y), l3(z) {
    if (std::abs(l2) < std::abs(l1)) std::swap(l1, l2);
    if (std::abs(l3) < std::abs(l1)) std::swap(l1, l3);
    if (std::abs(l3) < std::abs(l2)) std::swap(l2, l3);
    if (l3 == l1 || l3 == l2) l3 = 0;
    if (l2 == l1) l2 = 0;
}

namespace {

// The clauses of each gate, each written once, by the literal that they begin with when x is
// smaller than y. The sink takes one Clause at a time.

/// x holds.
Clause unitClause(int x) { return {x, 0, 0}; }

/// z = x & y: z implies x, and likewise y.
Clause impliedClause(int x, int z) { return {0, x, -z}; }

/// z = x & y: both imply z.
Clause implyingClause(int x, int y, int z) { return {-x, -y, z}; }

/// z = (x = y): the clauses with the literal x. Those with -x are the same for -x and -y.
template <class Sink>
void equClauses(int x, int y, int z, Sink&& sink) {
    sink(Clause(x, y, z));
    sink(Clause(x, -y, -z));
}

template <class Sink>
void gateClauses(const Triple& t, int z, Sink&& sink) {
    if (t.op == bfCon) {
        sink(impliedClause(t.left, z));
        sink(impliedClause(t.right, z));
        sink(implyingClause(t.left, t.right, z));
    } else {
        equClauses(t.left, t.right, z, sink);
        equClauses(-t.left, -t.right, z, sink);
    }
}

/// A sink that inserts into cs.
auto into(std::set<Clause>& cs) {
    return [&cs](const Clause& c) { cs.insert(c); };
}

constexpr int firstNode = BoolForm::maxVariable + 1;

/// The number of the node at index i of the store.
int nodeNr(std::size_t i) { return static_cast<int>(i) + firstNode; }

/// The operand that stands first in clauses.
int smaller(const Triple& t) { return std::abs(t.left) < std::abs(t.right) ? t.left : t.right; }
int larger(const Triple& t) { return std::abs(t.left) < std::abs(t.right) ? t.right : t.left; }

} // namespace

void BoolForm::addVar(std::set<Clause>& cs, int x) const { cs.insert(unitClause(x)); }
void BoolForm::addNeg(std::set<Clause>& cs, int x, int y) const {
    cs.insert({Clause(x, y, 0), Clause(-x, -y, 0)});
}
void BoolForm::addCon(std::set<Clause>& cs, int x, int y, int z) const {
    gateClauses(Triple(bfCon, x, y), z, into(cs));
}
void BoolForm::addEqu(std::set<Clause>& cs, int x, int y, int z) const {
    gateClauses(Triple(bfEqu, x, y), z, into(cs));
}

void BoolForm::toCNF(std::set<Clause>& cs) const {
    if (*this == BoolForm(true) || *this == BoolForm(false)) cs.clear();
    auto place = cs.begin();
    for (const Clause& c : clauses()) place = std::next(cs.insert(place, c));
}

ClauseRange BoolForm::clauses() const { return ClauseRange(*this); }

ClauseRange::ClauseRange(const BoolForm& f) : nr(f.nr) {
    if (f == BoolForm(true)) return;
    count = 1;
    if (f == BoolForm(false)) return;

    // An operand has a smaller number than its node, so one walk from the top down reaches all.
    const auto reach = [&](int literal) {
        const int n = std::abs(literal);
        if (BoolForm::isNode(n)) {
            reached[static_cast<std::size_t>(n - firstNode)] = true;
        } else {
            variables = std::max(variables, n);
            largestVariable = std::max(largestVariable, n < BoolForm::maxVariable ? n : 0);
        }
    };
    largest = std::abs(nr);
    if (BoolForm::isNode(largest))
        reached.resize(static_cast<std::size_t>(largest - firstNode) + 1);
    reach(nr);
    for (std::size_t i = reached.size(); i-- > 0;) {
        if (!reached[i]) continue;
        const Triple& t = BoolForm::tv[i];
        reach(t.left);
        reach(t.right);
        count += t.op == bfCon ? 3 : 4;
        ++nodes;
    }
}

template <class Use>
void ClauseRange::forEachNode(Use&& use) const {
    for (std::size_t i = 0; i < reached.size(); ++i) {
        if (reached[i]) use(i, BoolForm::tv[i]);
    }
}

ClauseRange::Walk ClauseRange::begin() const { return Walk(*this); }

ClauseRange::Walk::Walk(const ClauseRange& range)
    : range(&range), places(range.variables + static_cast<int>(range.reached.size())) {
    if (range.nodes < static_cast<std::size_t>(places) / 64) {
        makeAllReady();
    } else if (range.count > 0) {
        lists.resize(2 * static_cast<std::size_t>(places) + 1);
        links.resize(2 * range.reached.size());
        sign = -2;
        makeReady();
    }
}

void ClauseRange::Walk::makeAllReady() {
    ready = {unitClause(range->nr)};
    range->forEachNode([&](std::size_t i, const Triple& t) {
        gateClauses(t, nodeNr(i), [&](const Clause& c) { ready.push_back(c); });
    });
    std::sort(ready.begin(), ready.end());
    next = ready.data();
    readyEnd = next + ready.size();
}

void ClauseRange::Walk::makeReady() {
    constexpr std::size_t atLeast = 1024; // clauses, so few that they are still in the cache
    ready.clear();
    while (ready.size() < atLeast && (place <= lastPlace || sign < 1)) {
        if (place > lastPlace) {
            startSection(); // which is empty if no variable occurs
            continue;
        }
        const std::uint32_t link = listAt(place);
        const int n = std::abs(place);
        const int nr = n <= range->variables ? n : n - range->variables + firstNode - 1;
        const int literal = place < 0 ? -nr : nr;
        if (place == 0) ready.push_back(unitClause(range->nr));
        if (sign == 0) {
            makeBinary(link, literal);
        } else if (link != 0) {
            makeTernary(link, literal);
        }
        ++place;
    }
    next = ready.data();
    readyEnd = next + ready.size();
}

void ClauseRange::Walk::makeBinary(std::uint32_t link, int literal) {
    for (; link != 0; link = links[link - 1]) {
        ready.push_back(impliedClause(literal, nodeNr((link - 1) / 2)));
    }
}

void ClauseRange::Walk::makeTernary(std::uint32_t link, int literal) {
    const std::size_t begin = ready.size();
    for (; link != 0; link = links[link - 1]) {
        const int node = nodeNr(link - 1);
        const Triple& t = BoolForm::triple(node);
        const int second = larger(t);
        if (t.op == bfCon) {
            ready.push_back(implyingClause(-literal, second, node));
        } else {
            equClauses(literal, literal < 0 ? -second : second, node,
                       [&](const Clause& c) { ready.push_back(c); });
        }
    }
    if (ready.size() - begin > 1) {
        std::sort(ready.begin() + static_cast<std::ptrdiff_t>(begin), ready.end());
    }
}

void ClauseRange::Walk::startSection() {
    ++sign;
    place = sign > 0 ? 1 : -places;
    lastPlace = sign < 0 ? -1 : places;
    if (sign == 0) std::fill_n(lists.begin(), places, 0); // all others are still empty
    if (sign == 1) std::fill_n(lists.end() - places, places, 0);
    // All entries of the largest store have a link, so there is no limit of clauses to look after.
    static_assert(2 * std::uint64_t(BoolForm::maxNodes) <=
                  std::numeric_limits<std::uint32_t>::max());
    const auto put = [&](int literal, std::size_t entry) {
        const int n = std::abs(literal);
        const int at = BoolForm::isNode(n) ? n - firstNode + 1 + range->variables : n;
        links[entry] =
            std::exchange(listAt(literal < 0 ? -at : at), static_cast<std::uint32_t>(entry + 1));
    };
    // Later nodes go to the front, so clauses of two literals come in their order, -z ascending.
    if (sign == 0) {
        range->forEachNode([&](std::size_t i, const Triple& t) {
            if (t.op != bfCon) return;
            put(t.left, 2 * i);
            put(t.right, 2 * i + 1);
        });
    } else {
        range->forEachNode([&](std::size_t i, const Triple& t) {
            const int first = -smaller(t);
            if (t.op == bfEqu) {
                put(sign < 0 ? first : -first, i);
            } else if ((first < 0) == (sign < 0)) {
                put(first, i);
            }
        });
    }
}
