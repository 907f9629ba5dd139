// Where formulas about paths hold, computed on the graph of all states: CTL model checking by
// fixpoints (Clarke, Emerson and Sistla, 1986).
//
// EX is one step back. E[f U g] is a least fixpoint: g, and from there backwards through f. EG f
// holds where a path through f leads to a node without a step, or into a strongly connected
// component of the nodes with f that has a cycle; with fairness, to one that meets it:
//
//  - each condition holds at some node of it;
//  - if weak, each action is not possible at some node of it, or taken by a step inside of it.
//
// With conditions that have to hold again and again, only paths count that can be gone on with
// fairly: fair nodes are those with EG true, and EX f is EX (f & fair), E[f U g] is
// E[f U (g & fair)]. Weak fairness alone leaves every node fair. What speaks of all paths is the
// negation of what speaks of one.

#pragma once

#include "fixpoint/stategraph.h"
#include "query/temporalformula.h"

#include <cstddef>
#include <span>
#include <vector>

namespace tervoxal {

class Fixpoints {
public:
    using Node = StateGraph::Node;
    using Set = StateGraph::Set;

    /// The graph must outlive it, and has to know the conditions of both. Time and memory are
    /// linear in the graph times the formula, with conditions of fairness the same.
    Fixpoints(const StateGraph& graph, const TemporalFormula& formula, const Fairness& fairness);

    /// Where the formula's node holds, by its index.
    [[nodiscard]] const Set& where(std::size_t formulaNode) const { return sets[formulaNode]; }
    /// Where the formula holds.
    [[nodiscard]] const Set& where() const { return sets.back(); }
    /// The nodes from which a path goes on fairly; all without conditions.
    [[nodiscard]] const Set& fair() const { return fairNodes; }

    /// Where a path in the set can end or go on for ever, fairly: nodes without a step, and those
    /// of components that are fair. By node, 0 for all others, else the number of its component,
    /// from 1 on; nodes without a step are components of their own.
    [[nodiscard]] std::vector<Node> fairComponents(const Set& set) const;
    /// The nodes from which such a node is reached within the set.
    [[nodiscard]] Set always(const Set& set) const;
    /// Whether no path goes on for ever fairly.
    [[nodiscard]] bool endsAlways() const;
    /// Where each condition of the fairness holds.
    [[nodiscard]] const std::vector<Set>& fairSets() const { return conditions; }

    const StateGraph& graph;
    const Fairness& fairness;

private:
    [[nodiscard]] Set before(const Set& set) const;
    [[nodiscard]] Set until(const Set& left, Set right) const;
    [[nodiscard]] Set temporal(const TemporalFormula::Node& node) const;
    [[nodiscard]] bool isFair(std::span<const Node> component,
                              const std::vector<Node>& numbers) const;

    std::vector<Set> conditions; // of fairness
    Set fairNodes;
    std::vector<Set> sets; // by node of the formula
};

} // namespace tervoxal
