// The DIMACS file: a sorted set of clauses, renumbered for a solver.
//
// With m the largest variable below 1000000 that occurs, a variable keeps its number and node n
// becomes n - 1000000 + m. So variables and nodes leave no gap between them. The map keeps the
// order of signed numbers. No run has a variable 1000000: it becomes m, and 1000000 if m is 0.

#pragma once

#include "boolean/clauses.h"

#include <set>
#include <string>
#include <vector>

/// The largest absolute value of any literal, 0 if there is none.
[[nodiscard]] int maxCNFVarNr(const std::set<Clause>& cs);
/// The largest variable below 1000000 that occurs, 0 if there is none.
[[nodiscard]] int maxCNFOrgVarNr(const std::set<Clause>& cs);
/// Writes cs to name + ".cnf", renumbered. A file that cannot be written is not reported.
void showCNF(const std::set<Clause>& cs, std::string name);
void showCNF(const tervoxal::ClauseRange& cs, std::string name);
/// Writes cs to "test.cnf" in the current directory with the numbers of the store.
void showCNF(const std::set<Clause>& cs);
/// Appends to v one vector of renumbered literals for each clause. Returns the largest absolute
/// value among them, 0 if there is none.
int createClauseVect(const std::set<Clause>& cs, std::vector<std::vector<int>>& v);
