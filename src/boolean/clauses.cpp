#include "clauses.h"

#include "boolform.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>

namespace {

std::size_t nodeIndex(int node) {
    return static_cast<std::size_t>(node) - BoolForm::maxVariable - 1;
}

// The clauses of each gate, each written once. The sink takes one Clause at a time.

// x
template <class Sink>
void unitClauses(int x, Sink&& sink) {
    sink(Clause(x, 0, 0));
}

// x = !y
template <class Sink>
void negClauses(int x, int y, Sink&& sink) {
    sink(Clause(x, y, 0));
    sink(Clause(-x, -y, 0));
}

// z = x & y
template <class Sink>
void conClauses(int x, int y, int z, Sink&& sink) {
    sink(Clause(-z, x, 0));
    sink(Clause(-z, y, 0));
    sink(Clause(-x, -y, z));
}

// z = (x = y)
template <class Sink>
void equClauses(int x, int y, int z, Sink&& sink) {
    sink(Clause(-z, -x, y));
    sink(Clause(-z, -y, x));
    sink(Clause(x, y, z));
    sink(Clause(-x, -y, z));
}

/// A sink that inserts into cs.
auto into(std::set<Clause>& cs) {
    return [&cs](const Clause& c) { cs.insert(c); };
}

} // namespace

Clause::Clause(int x, int y, int z) : l1(x), l2(y), l3(z) {
    if (std::abs(l2) < std::abs(l1)) std::swap(l1, l2);
    if (std::abs(l3) < std::abs(l1)) std::swap(l1, l3);
    if (std::abs(l3) < std::abs(l2)) std::swap(l2, l3);
    if (l3 == l1 || l3 == l2) l3 = 0;
    if (l2 == l1) l2 = 0;
}

void BoolForm::addVar(std::set<Clause>& cs, int x) const { unitClauses(x, into(cs)); }
void BoolForm::addNeg(std::set<Clause>& cs, int x, int y) const { negClauses(x, y, into(cs)); }
void BoolForm::addCon(std::set<Clause>& cs, int x, int y, int z) const {
    conClauses(x, y, z, into(cs));
}
void BoolForm::addEqu(std::set<Clause>& cs, int x, int y, int z) const {
    equClauses(x, y, z, into(cs));
}

void BoolForm::toCNF(std::set<Clause>& cs) const {
    if (*this == BoolForm(true) || *this == BoolForm(false)) cs.clear();
    auto place = cs.begin();
    for (const Clause& c : clauses()) place = std::next(cs.insert(place, c));
}

namespace {

/// The clauses that forEach hands to a sink, in order. last is the largest number of a literal in
/// the file. Counting sort by the first literal, straight into the final places: no second copy of
/// the clauses, and no comparison but among the few that share their first literal.
template <class ForEach>
std::vector<Clause> countingSorted(const ForEach& forEach, std::ptrdiff_t last, int shift) {
    const auto bucket = [&](const Clause& c) {
        const std::ptrdiff_t block = c.l1 < 0 ? last : c.l1 == 0 ? 2 * last : 3 * last;
        return static_cast<std::size_t>(block + fileNr(c.l1 != 0 ? c.l1 : c.l2, shift));
    };
    std::vector<std::uint32_t> ends(static_cast<std::size_t>(4 * last) + 2);
    forEach([&](const Clause& c) { ++ends[bucket(c) + 1]; });
    std::uint64_t total = 0;
    for (std::uint32_t& end : ends) {
        total += end;
        assert(total <= std::numeric_limits<std::uint32_t>::max());
        end = static_cast<std::uint32_t>(total);
    }
    std::vector<Clause> sorted(total, Clause(0, 0, 0));
    forEach([&](const Clause& c) { sorted[ends[bucket(c)]++] = c; });
    std::uint32_t begin = 0;
    for (const std::uint32_t end : ends) {
        if (end - begin > 1) std::sort(sorted.begin() + begin, sorted.begin() + end);
        begin = end;
    }
    return sorted;
}

} // namespace

std::vector<Clause> BoolForm::clauses() const {
    if (*this == BoolForm(true)) return {};
    if (*this == BoolForm(false)) return {Clause(0, 0, 0)};

    // An operand has a smaller number than its node, so one walk from the top down reaches all.
    const int top = std::abs(nr);
    std::vector<bool> reached(isNode(top) ? nodeIndex(top) + 1 : 0);
    int variables = 0;
    const auto reach = [&](int literal) {
        const int n = std::abs(literal);
        if (isNode(n)) {
            reached[nodeIndex(n)] = true;
        } else {
            variables = std::max(variables, n);
        }
    };
    reach(nr);
    const auto forEachReached = [&](auto&& use) {
        for (std::size_t i = reached.size(); i-- > 0;) {
            if (reached[i]) use(static_cast<int>(i) + maxVariable + 1, tv[i]);
        }
    };
    std::size_t nodes = 0;
    forEachReached([&](int, const Triple& t) {
        reach(t.left);
        reach(t.right);
        ++nodes;
    });
    const auto forEachClause = [&](auto&& sink) {
        unitClauses(nr, sink);
        forEachReached([&](int n, const Triple& t) {
            if (t.op == bfCon) {
                conClauses(t.left, t.right, n, sink);
            } else {
                equClauses(t.left, t.right, n, sink);
            }
        });
    };

    const int shift = maxVariable - variables;
    const int last = fileNr(std::max(top, variables), shift);
    if (static_cast<std::size_t>(last) / 64 < nodes + 1) {
        return countingSorted(forEachClause, last, shift);
    }
    std::vector<Clause> sorted; // few clauses over many numbers
    forEachClause([&](const Clause& c) { sorted.push_back(c); });
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}
