#include "boolean/clauses.h"

#include "boolean/boolform.h"
#include "boolean/reached.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>
#include <utility>

using namespace tervoxal;

Clause::Clause(int x, int y, int z) : l1(x), l2(y), l3(z) {
    if (std::abs(l2) < std::abs(l1)) std::swap(l1, l2);
    if (std::abs(l3) < std::abs(l1)) std::swap(l1, l3);
    if (std::abs(l3) < std::abs(l2)) std::swap(l2, l3);
    if (l3 == l1 || l3 == l2) l3 = 0;
    if (l2 == l1) l2 = 0;
}

namespace {

// The clauses of each gate, each written once. The sink takes one Clause at a time.

/// x holds.
Clause unitClause(int x) { return {x, 0, 0}; }

/// z implies x.
Clause impliedClause(int x, int z) { return {0, x, -z}; }

/// z and x imply y.
Clause equalClause(int x, int y, int z) { return {-z, -x, y}; }

/// x and y imply z.
Clause implyingClause(int x, int y, int z) { return {-x, -y, z}; }

/// z = x & y, or z = (x = y).
template <class Sink>
void gateClauses(const Triple& t, int z, Sink&& sink) {
    const int x = t.left;
    const int y = t.right;
    if (t.op == bfCon) {
        sink(impliedClause(x, z));
        sink(impliedClause(y, z));
        sink(implyingClause(x, y, z));
    } else {
        sink(equalClause(x, y, z));
        sink(equalClause(y, x, z));
        sink(implyingClause(-x, -y, z));
        sink(implyingClause(x, y, z));
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

/// Whether con or equ can have made the node, whatever the order of its operands.
bool isPlain(const Triple& t) {
    const bool different = t.left != 0 && t.right != 0 && std::abs(t.left) != std::abs(t.right);
    return different && (t.op == bfCon || (t.left > 0 && t.right > 0));
}

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

    const auto see = [&](int operand) {
        const int n = std::abs(operand);
        if (BoolForm::isNode(n)) return;
        variables = std::max(variables, n);
        largestVariable = std::max(largestVariable, n < BoolForm::maxVariable ? n : 0);
    };
    largest = std::abs(nr);
    see(nr);
    reached = reachedNodes({f}, [&](const Triple& t) {
        see(t.left);
        see(t.right);
        count += t.op == bfCon ? 3 : 4;
        ++nodes;
        plain = plain && isPlain(t);
    });
    if (!plain) count = all().size();
}

template <class Use>
void ClauseRange::forEachNode(Use&& use) const {
    for (std::size_t i = 0; i < reached.size(); ++i) {
        if (reached[i]) use(i, BoolForm::tv[i]);
    }
}

std::vector<Clause> ClauseRange::all() const {
    std::vector<Clause> clauses = {unitClause(nr)};
    forEachNode([&](std::size_t i, const Triple& t) {
        gateClauses(t, nodeNr(i), [&](const Clause& c) { clauses.push_back(c); });
    });
    std::sort(clauses.begin(), clauses.end());
    clauses.erase(std::unique(clauses.begin(), clauses.end()), clauses.end());
    return clauses;
}

ClauseRange::Walk ClauseRange::begin() const { return Walk(*this); }

ClauseRange::Walk::Walk(const ClauseRange& range)
    : range(&range), places(range.variables + static_cast<int>(range.reached.size())) {
    if (!range.plain || range.nodes < static_cast<std::size_t>(places) / 64) {
        ready = range.all();
        next = ready.data();
        readyEnd = next + ready.size();
    } else if (range.count > 0) {
        lists.resize(2 * static_cast<std::size_t>(places) + 1);
        links.resize(2 * range.reached.size());
        startSection(Section::negative);
        makeReady();
    }
}

void ClauseRange::Walk::makeReady() {
    constexpr std::size_t atLeast = 1024; // clauses, so few that they are still in the cache
    ready.clear();
    while (ready.size() < atLeast) {
        if (place > lastPlace) {
            if (section == Section::positive) break;
            startSection(section == Section::negative ? Section::binary : Section::positive);
            continue; // it is empty if no variable occurs
        }
        const std::uint32_t link = listAt(place);
        const int n = std::abs(place);
        const int nr = n <= range->variables ? n : n - range->variables + firstNode - 1;
        const int literal = place < 0 ? -nr : nr;
        if (place == 0) ready.push_back(unitClause(range->nr));
        if (section == Section::binary) {
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
            const int same = literal < 0 ? -second : second; // as the literal
            ready.push_back(equalClause(same, literal, node));
            ready.push_back(implyingClause(-literal, -same, node));
        }
    }
    if (ready.size() - begin > 1) {
        std::sort(ready.begin() + static_cast<std::ptrdiff_t>(begin), ready.end());
    }
}

void ClauseRange::Walk::startSection(Section started) {
    section = started;
    place = section == Section::positive ? 1 : -places;
    lastPlace = section == Section::negative ? -1 : places;
    // The lists of the section before are used up. All others are still empty.
    if (section == Section::binary) std::fill_n(lists.begin(), places, 0);
    if (section == Section::positive) std::fill_n(lists.end() - places, places, 0);
    // A link can tell any entry, also of the largest store.
    static_assert(2 * std::uint64_t(BoolForm::maxNodes) <=
                  std::numeric_limits<std::uint32_t>::max());
    const auto put = [&](int literal, std::size_t entry) {
        const int n = std::abs(literal);
        const int at = BoolForm::isNode(n) ? n - firstNode + 1 + range->variables : n;
        links[entry] =
            std::exchange(listAt(literal < 0 ? -at : at), static_cast<std::uint32_t>(entry + 1));
    };
    // Later nodes go to the front, so clauses of two literals come in their order, -z ascending.
    if (section == Section::binary) {
        range->forEachNode([&](std::size_t i, const Triple& t) {
            if (t.op != bfCon) return;
            put(t.left, 2 * i);
            put(t.right, 2 * i + 1);
        });
    } else {
        const bool negative = section == Section::negative;
        range->forEachNode([&](std::size_t i, const Triple& t) {
            const int first = -smaller(t);
            if (t.op == bfEqu) {
                put(negative ? first : -first, i);
            } else if ((first < 0) == negative) {
                put(first, i);
            }
        });
    }
}
