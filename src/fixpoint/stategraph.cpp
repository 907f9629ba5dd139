#include "fixpoint/stategraph.h"

#include "query/temporalformula.h"
#include "statespace/labelling.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

namespace tervoxal {

StateGraph::StateGraph(const StateSpace& space, const std::vector<const Condition*>& conditions)
    : space(space), network(space.network) {
    assert(space.complete() && space.automata().size() == network.automata.size());
    bool marked = false;
    for (const Condition* condition : conditions) {
        marked = marked || !isOfState(*condition);
        for (const Condition::Token& token : condition->tokens) {
            if (token.term != Condition::Term::after) continue;
            if (const auto x = network.action(token.number)) asked.push_back(*x);
        }
    }
    std::ranges::sort(asked);
    asked.erase(std::unique(asked.begin(), asked.end()), asked.end());
    if (marked) {
        takeMarkedSteps();
    } else {
        takeSteps();
    }
    reverse();
}

StateGraph::Mark StateGraph::markOf(uint action) const {
    const auto found = std::ranges::lower_bound(asked, action);
    if (found == asked.end() || *found != action) return 1;
    return static_cast<Mark>(found - asked.begin()) + 2;
}

void StateGraph::takeSteps() {
    begins.push_back(0);
    for (StateSpace::State s = 0; s < space.size(); ++s) {
        for (const auto& [action, target] : space.steps(s)) {
            targets.push_back(target);
            labels.push_back(action);
        }
        begins.push_back(targets.size());
    }
}

void StateGraph::takeMarkedSteps() {
    constexpr Node unknown = std::numeric_limits<Node>::max();
    const std::size_t width = asked.size() + 2;
    std::vector<Node> nodes(space.size() * width, unknown);
    states.push_back(0);
    marks.push_back(0);
    nodes[0] = 0;
    begins.push_back(0);
    for (std::size_t n = 0; n < states.size(); ++n) {
        for (const auto& [action, target] : space.steps(states[n])) {
            const Mark mark = markOf(action);
            Node& node = nodes[target * width + mark];
            if (node == unknown) {
                assert(states.size() < unknown);
                node = static_cast<Node>(states.size());
                states.push_back(target);
                marks.push_back(mark);
            }
            targets.push_back(node);
            labels.push_back(action);
        }
        begins.push_back(targets.size());
    }
}

void StateGraph::reverse() {
    sourceBegins.assign(size() + 1, 0);
    for (const Node target : targets) ++sourceBegins[target + 1];
    for (std::size_t n = 1; n < sourceBegins.size(); ++n) sourceBegins[n] += sourceBegins[n - 1];
    sources.resize(targets.size());
    std::vector<std::size_t> end(sourceBegins.begin(), sourceBegins.end() - 1);
    for (Node n = 0; n < size(); ++n) {
        for (const Node target : successors(n)) sources[end[target]++] = n;
    }
}

/// Sets of nodes are an algebra for conditions.
struct WhereAlgebra {
    using Set = StateGraph::Set;

    [[nodiscard]] Set constant(bool value) const {
        Set set;
        set.assign(graph.size(), value);
        return set;
    }
    [[nodiscard]] Set atom(const Condition::Token& token) {
        using Term = Condition::Term;
        Set set(graph.size());
        if (token.term == Term::initial) {
            set[0] = true;
        } else if (token.term == Term::after) {
            const auto x = graph.network.action(token.number);
            for (std::size_t n = 0; x && n < set.size(); ++n) {
                set[n] = graph.marks[n] == graph.markOf(*x);
            }
        } else {
            constexpr std::size_t bits = 64;
            const Condition condition{{token}};
            std::vector<Labelling::Word> words;
            for (std::size_t w = 0; w * bits < graph.space.size(); ++w) {
                words.push_back(labelling.label(condition, w).must);
            }
            for (std::size_t n = 0; n < set.size(); ++n) {
                const StateSpace::State s = graph.state(static_cast<StateGraph::Node>(n));
                set[n] = (words[s / bits] >> (s % bits) & 1U) != 0;
            }
        }
        return set;
    }
    static Set negation(Set a) {
        a.flip();
        return a;
    }
    static Set conjunction(Set a, const Set& b) {
        for (std::size_t n = 0; n < a.size(); ++n) a[n] = a[n] && b[n];
        return a;
    }
    static Set disjunction(Set a, const Set& b) {
        for (std::size_t n = 0; n < a.size(); ++n) a[n] = a[n] || b[n];
        return a;
    }

    const StateGraph& graph;
    Labelling labelling;
};

StateGraph::Set StateGraph::where(const Condition& condition) const {
    return valueOf(condition, WhereAlgebra{*this, Labelling(space)});
}

} // namespace tervoxal
