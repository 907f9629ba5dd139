// Shared propositional formulas: their store and the rules that build them. This header also gives
// the clauses of a formula (clauses.h) and the file of clauses (dimacs.h).
//
// A formula is a signed number. The composed formulas live in one store of the process, a directed
// acyclic graph with structural hashing: building the same formula twice gives the same number.
// Negation flips the sign and costs nothing.
//
//                    0   the constant false
//          -2147483648   the constant true
//         1 to 1000000   the variable of that number
//     1000001 to maxNr   a composed node, numbered in the order of creation
//         the negative   the negation of that variable or node
//
// Invariants of the store:
//  - the triple of node n stands at index n - 1000001 of tv, and mti maps it back to n;
//  - no two nodes have the same triple, and the operands of a node have smaller absolute values;
//  - no constant stands inside a node, nor two operands that are equal or complementary;
//  - a conjunction has left < right as signed numbers, an equivalence 0 < left < right.
//
// The store only grows. Node numbers show in the output files, so callers that need the same bytes
// for the same input must create their formulas in the same order.

#pragma once

#include "boolean/clauses.h"
#include "boolean/dimacs.h"

#include <cstddef>
#include <limits>
#include <map>
#include <set>
#include <vector>

/// The kinds of composed nodes. Disjunction, implication and inequality are derived from them.
enum NodeKind { bfCon = 1, bfEqu = 2 };

/// A composed node: its kind and its two operands, signed formula numbers.
struct Triple {
    int op;
    int left;
    int right;

    Triple(int op, int left, int right) : op(op), left(left), right(right) {}
};

/// Lexicographic over op, left, right as signed numbers.
inline bool operator<(const Triple& a, const Triple& b) {
    if (a.op != b.op) return a.op < b.op;
    if (a.left != b.left) return a.left < b.left;
    return a.right < b.right;
}

inline bool operator==(const Triple& a, const Triple& b) {
    return a.op == b.op && a.left == b.left && a.right == b.right;
}

namespace tervoxal {

/// The nodes of the store as an ordered map from triples to numbers. It is a view of tv: when it is
/// looked at, it takes over what tv has gained. A run never looks, since it finds its nodes through
/// a hash table. With an ordered map in place of that table, a run took up to half as long again
/// and 13 bytes more for each clause.
class TripleMap {
public:
    using Map = std::map<Triple, int>;

    operator const Map&() const { return all(); }
    [[nodiscard]] Map::const_iterator begin() const { return all().begin(); }
    [[nodiscard]] Map::const_iterator end() const { return all().end(); }
    [[nodiscard]] Map::const_iterator find(const Triple& t) const { return all().find(t); }
    [[nodiscard]] bool contains(const Triple& t) const { return all().contains(t); }
    [[nodiscard]] std::size_t count(const Triple& t) const { return all().count(t); }
    [[nodiscard]] int at(const Triple& t) const { return all().at(t); }
    [[nodiscard]] std::size_t size() const { return all().size(); }
    [[nodiscard]] bool empty() const { return all().empty(); }
    /// Forgets what was taken over. BoolForm::clear does it.
    void clear() { nodes.clear(); }

private:
    [[nodiscard]] const Map& all() const;
    mutable Map nodes;
};

} // namespace tervoxal

/// A propositional formula: a number into the store. Copying it copies the number.
class BoolForm {
public:
    // Constants and variables may stand where formulas are due: equ(bit, false).

    /// The constant b.
    BoolForm(bool b) : nr(b ? trueNr : 0) {}
    /// The variable nr. Precondition, asserted: nr > 0. The caller keeps it at most maxVariable.
    BoolForm(int nr);
    /// Finds or creates the node (op, l, r). Preconditions, asserted: op is bfCon or bfEqu, and
    /// neither operand is true, whose number has no negative. Orders and folds nothing, which is
    /// the part of con and equ. Other callers may break the last two invariants of the store: their
    /// nodes have the right clauses, but it takes longer to make them.
    BoolForm(const BoolForm& l, const BoolForm& r, int op);

    /// Whether f is the negation of this formula, constants included.
    [[nodiscard]] bool isNeg(const BoolForm& f) const;
    /// The number of the latest composed node; 1000000 while there is none.
    [[nodiscard]] int maxVarNr() const { return maxNr; }

    /// Adds the clauses of this formula to cs (Tseitin encoding with both directions): a unit
    /// clause that asserts it, and for each composed node reached the clauses that define the
    /// node's number. A constant empties cs first; false leaves the empty clause, true none.
    void toCNF(std::set<Clause>& cs) const;
    /// The clauses that toCNF adds to an empty set, in the order of the set.
    [[nodiscard]] tervoxal::ClauseRange clauses() const;

    /// x holds.
    void addVar(std::set<Clause>& cs, int x) const;
    /// x = !y.
    void addNeg(std::set<Clause>& cs, int x, int y) const;
    /// z = x & y.
    void addCon(std::set<Clause>& cs, int x, int y, int z) const;
    /// z = (x = y).
    void addEqu(std::set<Clause>& cs, int x, int y, int z) const;

    static constexpr int maxVariable = 1000000;
    static constexpr int maxNodes = std::numeric_limits<int>::max() - maxVariable;
    static constexpr int trueNr = std::numeric_limits<int>::min();

    int nr;

    /// Whether nr is the number of a composed node, without negation.
    [[nodiscard]] static bool isNode(int nr) { return nr > maxVariable; }
    /// The triple of a node of the store.
    [[nodiscard]] static const Triple& triple(int node) {
        return tv[static_cast<std::size_t>(node) - maxVariable - 1];
    }
    /// Makes room for that many nodes in all. A hint: whoever knows it saves the store from growing
    /// in steps, hashing and copying what it has each time.
    static void reserve(std::size_t nodes);
    /// Empties the store: no node is left, the next one gets number 1000001, and memory is given
    /// back. Formulas that are no constant or variable lose their meaning. A run never does this.
    static void clear();

    /// The number of the latest node; the next one gets maxNr + 1.
    static int maxNr;
    static std::vector<Triple> tv;
    static tervoxal::TripleMap mti;
};

[[nodiscard]] BoolForm neg(const BoolForm& a);
[[nodiscard]] BoolForm con(const BoolForm& a, const BoolForm& b);
[[nodiscard]] BoolForm dis(const BoolForm& a, const BoolForm& b);
[[nodiscard]] BoolForm equ(const BoolForm& a, const BoolForm& b);
/// a implies b.
[[nodiscard]] BoolForm imp(const BoolForm& a, const BoolForm& b);
[[nodiscard]] BoolForm notequ(const BoolForm& a, const BoolForm& b);
/// a with the constant b in place of variable v, under negations too. Visits a shared node once,
/// right operand before left, without recursion.
[[nodiscard]] BoolForm value(const BoolForm& a, int v, bool b);
/// Identity in the store, not logical equivalence.
[[nodiscard]] inline bool operator==(const BoolForm& a, const BoolForm& b) { return a.nr == b.nr; }
