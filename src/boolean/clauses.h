// Clauses of formulas (Tseitin encoding), before they are renumbered for a file.
//
// A literal is a formula number: that of a variable or a composed node, or the negative of one for
// its negation. 0 stands for no literal. boolform.h tells the number space.
//
// Invariant: the clauses that a node is defined by hold the node's number as their last literal,
// since operands have smaller absolute values than their node. So no two nodes share a clause.

#pragma once

/// A clause of at most three literals in normal form: ascending absolute values, a repeated literal
/// removed, 0 for no literal. Literals are formula numbers of variables and composed nodes.
struct Clause {
    int l1;
    int l2;
    int l3;

    /// Takes the literals in any order; 0 stands for none.
    Clause(int x, int y, int z);
};

/// Lexicographic over l1, l2, l3 as signed numbers: the order of the clauses in the file.
inline bool operator<(const Clause& a, const Clause& b) {
    if (a.l1 != b.l1) return a.l1 < b.l1;
    if (a.l2 != b.l2) return a.l2 < b.l2;
    return a.l3 < b.l3;
}

inline bool operator==(const Clause& a, const Clause& b) {
    return a.l1 == b.l1 && a.l2 == b.l2 && a.l3 == b.l3;
}
