// What holds on the paths of a small graph, as plainly as it can be said, and random questions
// about that. A node is a state with the action that has led to it, so whatever is taken or
// possible can be read off the nodes.

#pragma once

#include "plain.h"
#include "query/temporalformula.h"
#include "randomquestion.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tervoxal {

using PlainNode = std::pair<State, std::optional<uint>>;
using Nodes = std::vector<bool>;

struct PlainGraph {
    std::vector<PlainNode> nodes;
    std::vector<std::vector<std::size_t>> next;
    bool open = false; // the last node is where the graph is cut off

    [[nodiscard]] Nodes where(const std::function<bool(const PlainNode&)>& holds) const {
        Nodes set;
        for (const PlainNode& node : nodes) set.push_back(holds(node));
        return set;
    }
    /// Those that are reached from a node by one step or more, within the set from the start on.
    [[nodiscard]] Nodes reached(std::size_t from, const Nodes& within) const {
        Nodes set(nodes.size());
        for (std::vector<std::size_t> todo = {from}; !todo.empty();) {
            const std::size_t n = todo.back();
            todo.pop_back();
            for (const std::size_t m : next[n]) {
                if (!within[n] || !within[m] || set[m]) continue;
                set[m] = true;
                todo.push_back(m);
            }
        }
        return set;
    }
};

/// Everything, or nothing where there are more than `most` nodes.
inline std::optional<PlainGraph> plainGraph(const NetTimedModel& model, std::size_t most) {
    PlainGraph graph{{{initialState(model), {}}}, {}};
    std::map<PlainNode, std::size_t> numbers = {{graph.nodes[0], 0}};
    for (std::size_t n = 0; n < graph.nodes.size(); ++n) {
        if (graph.nodes.size() > most) return {};
        graph.next.emplace_back();
        for (const State& to : successors(model, graph.nodes[n].first)) {
            for (const uint x : actionsBetween(model, graph.nodes[n].first, to)) {
                const auto [entry, isNew] = numbers.try_emplace({to, x}, graph.nodes.size());
                if (isNew) graph.nodes.emplace_back(to, x);
                graph.next[n].push_back(entry->second);
            }
        }
    }
    return graph;
}

/// Which paths count: those that go on for ever in a strongly connected set of nodes only if it has
/// one of each of the sets, and, if weak, no action that is possible in all and has led to none.
struct PlainFairness {
    std::vector<Nodes> sets;
    const NetTimedModel* weak = nullptr;
};

inline Nodes plainEG(const PlainGraph& graph, const PlainFairness& fairness, const Nodes& f) {
    std::vector<Nodes> reached;
    for (std::size_t n = 0; n < f.size(); ++n) reached.push_back(graph.reached(n, f));
    const auto canStay = [&](std::size_t n) {
        if (!f[n]) return false;
        if (graph.next[n].empty()) return !graph.open || n + 1 < f.size();
        if (!reached[n][n]) return false;
        Nodes around(f.size());
        for (std::size_t m = 0; m < f.size(); ++m) around[m] = reached[n][m] && reached[m][n];
        const auto some = [&](const std::function<bool(std::size_t)>& holds) {
            for (std::size_t m = 0; m < f.size(); ++m)
                if (around[m] && holds(m)) return true;
            return false;
        };
        for (const Nodes& set : fairness.sets) {
            if (!some([&](std::size_t m) -> bool { return set[m]; })) return false;
        }
        if (fairness.weak == nullptr) return true;
        return std::ranges::all_of(fairness.weak->actionAutomata, [&](const auto& entry) {
            return some([&](std::size_t m) {
                return graph.nodes[m].second == entry.first ||
                       !isPossible(*fairness.weak, graph.nodes[m].first, entry.first);
            });
        });
    };
    Nodes stays;
    for (std::size_t n = 0; n < f.size(); ++n) stays.push_back(canStay(n));
    Nodes set = stays;
    for (std::size_t n = 0; n < f.size(); ++n) {
        for (std::size_t m = 0; m < f.size(); ++m) set[n] = set[n] || (reached[n][m] && stays[m]);
    }
    return set;
}

/// A question about paths, and where it holds.
struct PathQuestion {
    std::string text;
    std::function<Nodes(const PlainGraph&, const PlainFairness&)> where;
};

/// About one node.
inline PathQuestion randomNodeQuestion(const NetTimedModel& model, Random& random) {
    const auto of = [](const std::string& text, const std::function<bool(const PlainNode&)>& f) {
        return PathQuestion{text,
                            [f](const PlainGraph& g, const PlainFairness&) { return g.where(f); }};
    };
    if (random() % 6 == 0) return of("initial", [](const PlainNode& n) { return !n.second; });
    if (random() % 4 == 0 && !model.actionAutomata.empty()) {
        const uint x =
            std::next(model.actionAutomata.begin(),
                      static_cast<std::ptrdiff_t>(random() % model.actionAutomata.size()))
                ->first;
        return of("after(" + std::to_string(x) + ")",
                  [x](const PlainNode& n) { return n.second == x; });
    }
    const RandomQuestion q = randomQuestion(model, random, 1);
    return of('(' + q.text + ')', [q](const PlainNode& n) { return q.holds(n.first); });
}

inline PathQuestion randomPathQuestion(const NetTimedModel& model, Random& random, int depth) {
    if (depth == 0) return randomNodeQuestion(model, random);
    const PathQuestion a = randomPathQuestion(
        model, random, static_cast<int>(random() % static_cast<unsigned>(depth)));
    const PathQuestion b = randomPathQuestion(model, random, depth - 1);
    const auto flipped = [](Nodes set) {
        set.flip();
        return set;
    };
    /// Of nodes a and b.
    using Meaning = std::function<Nodes(const PlainGraph&, const PlainFairness&, Nodes, Nodes)>;
    const Meaning both = [](const PlainGraph&, const PlainFairness&, Nodes x, const Nodes& y) {
        for (std::size_t n = 0; n < x.size(); ++n) x[n] = x[n] && y[n];
        return x;
    };
    const Meaning nextTo = [both](const PlainGraph& g, const PlainFairness& f, const Nodes&,
                                  const Nodes& y) {
        const Nodes goal = both(g, f, y, plainEG(g, f, Nodes(y.size(), true)));
        Nodes set(y.size());
        for (std::size_t n = 0; n < set.size(); ++n)
            for (const std::size_t m : g.next[n]) set[n] = set[n] || goal[m];
        return set;
    };
    const Meaning until = [both](const PlainGraph& g, const PlainFairness& f, const Nodes& x,
                                 const Nodes& y) {
        Nodes set = f.sets.empty() ? y : both(g, f, y, plainEG(g, f, Nodes(y.size(), true)));
        for (bool more = true; more;) {
            more = false;
            for (std::size_t n = 0; n < set.size(); ++n) {
                for (const std::size_t m : g.next[n]) {
                    if (set[n] || !x[n] || !set[m]) continue;
                    set[n] = true;
                    more = true;
                }
            }
        }
        return set;
    };
    const Meaning next = [=](const PlainGraph& g, const PlainFairness& f, const Nodes& x,
                             const Nodes& y) {
        if (!f.sets.empty()) return nextTo(g, f, x, y);
        Nodes set(y.size());
        for (std::size_t n = 0; n < set.size(); ++n)
            for (const std::size_t m : g.next[n]) set[n] = set[n] || y[m];
        return set;
    };
    const auto of = [&](const std::string& text, const Meaning& meaning) {
        return PathQuestion{text, [=](const PlainGraph& g, const PlainFairness& f) {
                                return meaning(g, f, a.where(g, f), b.where(g, f));
                            }};
    };
    switch (random() % 9) {
    case 0: return of("(" + a.text + " & " + b.text + ")", both);
    case 1:
        return of("(" + a.text + " -> " + b.text + ")",
                  [=](const auto& g, const auto& f, const Nodes& x, const Nodes& y) {
                      return flipped(both(g, f, x, flipped(y)));
                  });
    case 2:
        return of("!" + b.text, [=](const auto&, const auto&, const Nodes&, const Nodes& y) {
            return flipped(y);
        });
    case 3: return of("EX " + b.text, next);
    case 4:
        return of("EF " + b.text, [=](const auto& g, const auto& f, const Nodes&, const Nodes& y) {
            return until(g, f, Nodes(y.size(), true), y);
        });
    case 5:
        return of("EG " + b.text, [=](const auto& g, const auto& f, const Nodes&, const Nodes& y) {
            return plainEG(g, f, y);
        });
    case 6: return of("E[" + a.text + " U " + b.text + "]", until);
    case 7:
        return of("AX " + b.text,
                  [=](const auto& g, const auto& f, const Nodes& x, const Nodes& y) {
                      return flipped(next(g, f, x, flipped(y)));
                  });
    default: // all paths come to b by a: none stays out of b, or leaves a before
        return of("A[" + a.text + " U " + b.text + "]", [=](const auto& g, const auto& f,
                                                            const Nodes& x, const Nodes& y) {
            const Nodes never = plainEG(g, f, flipped(y));
            const Nodes left = until(g, f, flipped(y), both(g, f, flipped(x), flipped(y)));
            Nodes set(y.size());
            for (std::size_t n = 0; n < set.size(); ++n) set[n] = !never[n] && !left[n];
            return set;
        });
    }
}

} // namespace tervoxal
