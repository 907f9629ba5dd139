#include "fixpoint/fixpoint.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace tervoxal {

using Term = TemporalFormula::Term;

namespace {

StateGraph::Set both(StateGraph::Set a, const StateGraph::Set& b) {
    for (std::size_t n = 0; n < a.size(); ++n) a[n] = a[n] && b[n];
    return a;
}

StateGraph::Set either(StateGraph::Set a, const StateGraph::Set& b) {
    for (std::size_t n = 0; n < a.size(); ++n) a[n] = a[n] || b[n];
    return a;
}

StateGraph::Set without(StateGraph::Set a) {
    a.flip();
    return a;
}

} // namespace

Fixpoints::Fixpoints(const StateGraph& graph, const TemporalFormula& formula,
                     const Fairness& fairness)
    : graph(graph), fairness(fairness), fairNodes(graph.size(), true) {
    for (const Condition& condition : fairness.conditions) {
        conditions.push_back(graph.where(condition));
    }
    if (!conditions.empty()) fairNodes = always(fairNodes);
    for (const TemporalFormula::Node& node : formula.nodes) {
        switch (node.term) {
        case Term::condition: sets.push_back(graph.where(node.condition)); break;
        case Term::conjunction: sets.push_back(both(sets[node.left], sets[node.right])); break;
        case Term::disjunction: sets.push_back(either(sets[node.left], sets[node.right])); break;
        case Term::next:
        case Term::until:
        case Term::release: sets.push_back(temporal(node)); break;
        }
    }
}

/// A formula of all paths is the negation of one of a path, of operands that are negated.
Fixpoints::Set Fixpoints::temporal(const TemporalFormula::Node& node) const {
    const auto operand = [&](std::size_t n) { return node.universal ? without(sets[n]) : sets[n]; };
    const Set right = operand(node.right);
    Set result;
    if (node.term == Term::next) {
        result = before(both(right, fairNodes));
    } else if ((node.term == Term::until) != node.universal) {
        result = until(operand(node.left), both(right, fairNodes));
    } else {
        Set last = both(both(operand(node.left), right), fairNodes);
        result = until(right, either(std::move(last), always(right)));
    }
    return node.universal ? without(std::move(result)) : result;
}

/// The nodes with a step into the set.
Fixpoints::Set Fixpoints::before(const Set& set) const {
    Set result(graph.size());
    for (Node n = 0; n < graph.size(); ++n) {
        result[n] = std::ranges::any_of(graph.successors(n), [&](Node m) { return set[m]; });
    }
    return result;
}

Fixpoints::Set Fixpoints::until(const Set& left, Set right) const {
    std::vector<Node> open;
    for (Node n = 0; n < graph.size(); ++n) {
        if (right[n]) open.push_back(n);
    }
    while (!open.empty()) {
        const Node node = open.back();
        open.pop_back();
        for (const Node source : graph.predecessors(node)) {
            if (right[source] || !left[source]) continue;
            right[source] = true;
            open.push_back(source);
        }
    }
    return right;
}

Fixpoints::Set Fixpoints::always(const Set& set) const {
    const std::vector<Node> numbers = fairComponents(set);
    Set ends(graph.size());
    for (std::size_t n = 0; n < ends.size(); ++n) ends[n] = numbers[n] != 0;
    return until(set, std::move(ends));
}

/// Tarjan, Depth-First Search and Linear Graph Algorithms, 1972.
std::vector<StateGraph::Node> Fixpoints::fairComponents(const Set& set) const {
    constexpr Node closed = std::numeric_limits<Node>::max();
    struct Visit {
        Node node;
        std::size_t next; // of its edges
    };
    std::vector<Node> numbers(graph.size());
    std::vector<Node> low(graph.size()); // the order of the visits; closed where a component is
    std::vector<Node> stack;             // nodes whose component is not known
    std::vector<Visit> visits;
    Node order = 0;
    Node components = 0;
    const auto enter = [&](Node n) {
        low[n] = ++order;
        stack.push_back(n);
        visits.push_back({n, 0});
    };
    for (Node first = 0; first < graph.size(); ++first) {
        if (!set[first] || low[first] != 0) continue;
        enter(first);
        std::vector<Node> orders = {low[first]}; // of the visits
        while (!visits.empty()) {
            auto& [node, next] = visits.back();
            const auto successors = graph.successors(node);
            if (next < successors.size()) {
                const Node to = successors[next++];
                if (!set[to]) continue;
                if (low[to] == 0) {
                    enter(to);
                    orders.push_back(low[to]);
                } else if (low[to] != closed) {
                    low[node] = std::min(low[node], low[to]);
                }
                continue;
            }
            const Node done = node;
            const bool root = low[done] == orders.back();
            visits.pop_back();
            orders.pop_back();
            if (!visits.empty()) {
                Node& above = low[visits.back().node];
                above = std::min(above, low[done]);
            }
            if (!root) continue;
            auto begin = stack.end();
            do {
                --begin;
                low[*begin] = closed;
                numbers[*begin] = components + 1;
            } while (*begin != done);
            const std::span<const Node> component(begin, stack.end());
            if (isFair(component, numbers)) {
                ++components;
            } else {
                for (const Node n : component) numbers[n] = 0;
            }
            stack.erase(begin, stack.end());
        }
    }
    return numbers;
}

bool Fixpoints::endsAlways() const {
    const std::vector<Node> numbers = fairComponents(Set(graph.size(), true));
    for (Node n = 0; n < graph.size(); ++n) {
        if (numbers[n] != 0 && !graph.successors(n).empty()) return false;
    }
    return true;
}

/// Whether paths in the component, which has its number, count.
bool Fixpoints::isFair(std::span<const Node> component, const std::vector<Node>& numbers) const {
    const Node number = numbers[component.front()];
    const auto isInside = [&](Node n) { return numbers[n] == number; };
    if (component.size() == 1) {
        const auto successors = graph.successors(component.front());
        if (successors.empty()) return true;
        if (std::ranges::none_of(successors, isInside)) return false;
    }
    for (const Set& condition : conditions) {
        if (std::ranges::none_of(component, [&](Node n) { return condition[n]; })) return false;
    }
    if (!fairness.weak) return true;
    struct Count {
        std::size_t nodes = 0; // where it is possible
        Node latest = 0;
        bool taken = false;
    };
    std::map<uint, Count> counts;
    for (const Node n : component) {
        const auto actions = graph.actions(n);
        for (std::size_t e = 0; e < actions.size(); ++e) {
            Count& count = counts[actions[e]];
            if (count.nodes == 0 || count.latest != n) ++count.nodes;
            count.latest = n;
            count.taken = count.taken || isInside(graph.successors(n)[e]);
        }
    }
    return std::ranges::none_of(counts, [&](const auto& entry) {
        return entry.second.nodes == component.size() && !entry.second.taken;
    });
}

} // namespace tervoxal
