#include "fixpoint/witness.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

namespace tervoxal {

namespace {

using Term = TemporalFormula::Term;
using Node = StateGraph::Node;
constexpr int infinite = std::numeric_limits<int>::max();

/// A step of a path.
struct Edge {
    uint action;
    Node target;
};

class Search {
public:
    Search(const Fixpoints& fixpoints, const TemporalFormula& formula, bool any)
        : fixpoints(fixpoints), graph(fixpoints.graph), formula(formula), any(any),
          along(alongPath(formula)), under(formula.nodes.size()), root(formula.nodes.size() - 1),
          prefix(root + 1), fairly(root + 2), layers(root + 3) {
        for (std::size_t n = formula.nodes.size(); n-- > 0;) {
            const TemporalFormula::Node& node = formula.nodes[n];
            if (node.term == Term::condition) continue;
            for (const std::size_t operand : {node.left, node.right}) {
                under[operand] = under[operand] || under[n] || (isTemporal(node.term) && along[n]);
            }
        }
    }

    std::optional<Witness> run(bool initially) {
        if (!initially) {
            reach(prefix, 0, {prefix, 0}, 0);
        } else if (fixpoints.where()[0]) {
            reach(root, 0, {root, 0}, 0);
        }
        while (!open.empty()) {
            const auto [layer, node, distance] = open.front();
            open.pop_front();
            if (distance >= best) break;
            if (layers[layer].done[node]) continue;
            layers[layer].done[node] = true;
            expand(layer, node, distance);
        }
        if (best == infinite) return {};
        return Witness{path(), exact};
    }

private:
    /// What is to be shown, and where.
    struct Place {
        std::size_t layer; // a node of the formula; or the first path to it, or a fair end of it
        Node node;
    };
    struct Layer {
        std::vector<Place> from; // by node; empty where nothing is reached yet
        std::vector<int> distance;
        StateGraph::Set done;
        std::vector<Node> components; // of release
    };
    struct Open {
        std::size_t layer;
        Node node;
        int distance;
    };

    void reach(std::size_t layer, Node node, Place from, int distance) {
        Layer& reached = layers[layer];
        if (reached.from.empty()) {
            reached.from.resize(graph.size());
            reached.distance.assign(graph.size(), infinite);
            reached.done.resize(graph.size());
        }
        if (reached.distance[node] <= distance) return;
        reached.distance[node] = distance;
        reached.from[node] = from;
        const Open next{layer, node, distance};
        if (distance == current) {
            open.push_front(next);
        } else {
            open.push_back(next);
        }
    }

    void expand(std::size_t layer, Node node, int distance) {
        current = distance;
        const Place here{layer, node};
        const auto stay = [&](std::size_t to) { reach(to, node, here, distance); };
        const auto step = [&](std::size_t to, const auto& allowed) {
            for (const Node n : graph.successors(node)) {
                if (allowed(n)) reach(to, n, here, distance + 1);
            }
        };
        const auto holds = [&](std::size_t n) { return fixpoints.where(n)[node]; };
        const auto within = [&](std::size_t n) {
            return [&, n](Node m) -> bool { return fixpoints.where(n)[m]; };
        };
        if (layer == prefix) {
            if (holds(root)) stay(root);
            step(prefix, [](Node) { return true; });
            return;
        }
        if (layer == fairly) {
            const StateGraph::Set& fair = fixpoints.fair();
            finish(here, distance, fair);
            step(fairly, [&](Node m) -> bool { return fair[m]; });
            return;
        }
        if (!along[layer]) {
            if (under[layer] && !fixpoints.fairSets().empty()) {
                stay(fairly);
            } else {
                end(here, distance, {});
            }
            return;
        }
        const TemporalFormula::Node& n = formula.nodes[layer];
        const std::size_t next = followed(formula, along, layer);
        switch (n.term) {
        case Term::conjunction: stay(next); break;
        case Term::disjunction:
            if (holds(n.left)) stay(n.left);
            if (holds(n.right)) stay(n.right);
            break;
        case Term::next:
            step(next, [&](Node m) { return fixpoints.where(next)[m] && fixpoints.fair()[m]; });
            break;
        case Term::until:
            if (holds(next) && fixpoints.fair()[node]) stay(next);
            if (holds(n.left)) step(layer, within(layer));
            break;
        default:
            if (holds(next) && fixpoints.fair()[node]) stay(next);
            finish(here, distance, fixpoints.where(n.right));
            step(layer, within(layer));
        }
    }

    /// The path ends here, or goes on in a loop.
    void end(const Place& place, int distance, std::vector<Edge> more) {
        const int length = distance + static_cast<int>(more.size());
        if (length >= best) return;
        best = length;
        last = place;
        loop = std::move(more);
    }

    /// Ends the path where it can stay in the set for ever, if that is here.
    void finish(const Place& place, int distance, const StateGraph::Set& set) {
        std::vector<Node>& components = layers[place.layer].components;
        if (components.empty()) components = fixpoints.fairComponents(set);
        if (components[place.node] == 0) return;
        if (graph.successors(place.node).empty()) {
            end(place, distance, {});
            return;
        }
        if (best < infinite && (any || !exact)) return;
        const bool fairness = !fixpoints.fairSets().empty() || fixpoints.fairness.weak;
        exact = exact && !fairness;
        const int most = best == infinite ? infinite : best - distance - 1;
        std::vector<Edge> cycle =
            fairness ? fairLoop(place.node, components)
                     : shortest(place.node, components, most,
                                [&](Node, Edge e) { return e.target == place.node; });
        if (!cycle.empty()) end(place, distance, std::move(cycle));
        if (work > greatestWork) exact = false;
    }

    /// The steps of a shortest path of one step or more in the component of a node, whose last step
    /// is one that is wanted; none if it would be longer.
    template <class Wanted>
    std::vector<Edge> shortest(Node from, const std::vector<Node>& components, int most,
                               const Wanted& wanted) {
        struct Reached {
            Node before;
            uint action;
        };
        std::unordered_map<Node, Reached> reached;
        std::vector<Node> level = {from};
        for (int distance = 0; !level.empty() && distance < most; ++distance) {
            std::vector<Node> next;
            for (const Node n : level) {
                const auto targets = graph.successors(n);
                for (std::size_t e = 0; e < targets.size(); ++e) {
                    ++work;
                    const Edge edge{graph.actions(n)[e], targets[e]};
                    if (components[edge.target] != components[from]) continue;
                    if (wanted(n, edge)) {
                        std::vector<Edge> steps = {edge};
                        for (Node m = n; m != from; m = reached.at(m).before) {
                            steps.push_back({reached.at(m).action, m});
                        }
                        std::ranges::reverse(steps);
                        return steps;
                    }
                    if (edge.target == from) continue;
                    if (reached.try_emplace(edge.target, Reached{n, edge.action}).second) {
                        next.push_back(edge.target);
                    }
                }
            }
            level.swap(next);
        }
        return {};
    }

    [[nodiscard]] std::set<uint> possible(Node node) const {
        const auto actions = graph.actions(node);
        return {actions.begin(), actions.end()};
    }

    std::vector<Edge> fairLoop(Node from, const std::vector<Node>& components) {
        std::vector<Edge> steps;
        Node here = from;
        std::set<uint> owed; // actions that are possible everywhere and not taken
        if (fixpoints.fairness.weak) owed = possible(from);
        std::vector<bool> met;
        for (const StateGraph::Set& set : fixpoints.fairSets()) met.push_back(set[from]);
        const auto go = [&](const std::vector<Edge>& more) {
            assert(!more.empty()); // the component is fair
            for (const Edge& edge : more) {
                steps.push_back(edge);
                here = edge.target;
                const std::set<uint> can = possible(here);
                std::erase_if(owed, [&](uint x) { return x == edge.action || !can.contains(x); });
                for (std::size_t i = 0; i < met.size(); ++i) {
                    met[i] = met[i] || fixpoints.fairSets()[i][here];
                }
            }
        };
        for (std::size_t i = 0; i < met.size(); ++i) {
            if (met[i]) continue;
            go(shortest(here, components, infinite,
                        [&](Node, Edge e) { return fixpoints.fairSets()[i][e.target]; }));
        }
        while (!owed.empty()) {
            go(shortest(here, components, infinite, [&](Node, Edge e) {
                return owed.contains(e.action) || !std::ranges::includes(possible(e.target), owed);
            }));
        }
        if (here != from || steps.empty()) {
            go(shortest(here, components, infinite,
                        [&](Node, Edge e) { return e.target == from; }));
        }
        return steps;
    }

    /// The action of a step between two nodes.
    [[nodiscard]] uint actionBetween(Node from, Node to) const {
        const auto targets = graph.successors(from);
        const auto edge = std::ranges::find(targets, to);
        return graph.actions(from)[static_cast<std::size_t>(edge - targets.begin())];
    }

    [[nodiscard]] Path path() const {
        std::vector<Edge> steps;
        Place place = last;
        while (true) {
            const Layer& layer = layers[place.layer];
            const Place from = layer.from[place.node];
            if (from.layer == place.layer && from.node == place.node) break;
            if (layers[from.layer].distance[from.node] < layer.distance[place.node]) {
                steps.push_back({actionBetween(from.node, place.node), place.node});
            }
            place = from;
        }
        std::ranges::reverse(steps);
        const auto stem = static_cast<int>(steps.size());
        steps.insert(steps.end(), loop.begin(), loop.end());
        const FlatNetwork& network = graph.network;
        Path path{static_cast<int>(steps.size()), initialState(network.model), {}};
        Node before = 0;
        for (std::size_t i = 0; i < steps.size(); ++i) {
            path.actions.push_back(network.actions[steps[i].action].number);
            for (uint slot = 0; slot < network.automata.size(); ++slot) {
                const uint source = graph.space.location(graph.state(before), slot);
                const uint target = graph.space.location(graph.state(steps[i].target), slot);
                if (source == target) continue;
                path.changes.push_back(
                    {static_cast<int>(i) + 1,
                     {network.automata[slot].number, network.locations[source].number,
                      network.locations[target].number}});
            }
            before = steps[i].target;
        }
        if (!loop.empty()) path.loop = stem;
        path.ends = graph.successors(before).empty();
        return path;
    }

    static constexpr std::int64_t greatestWork = 100'000'000;

    const Fixpoints& fixpoints;
    const StateGraph& graph;
    const TemporalFormula& formula;
    const bool any;
    const std::vector<bool> along;
    std::vector<bool> under; // by node, whether it is in a temporal operator of one path
    const std::size_t root;
    const std::size_t prefix;
    const std::size_t fairly;
    std::vector<Layer> layers;
    std::deque<Open> open; // by ascending distance
    int current = 0;       // distance that is expanded
    int best = infinite;
    Place last{};
    std::vector<Edge> loop; // from there
    bool exact = true;
    std::int64_t work = 0;
};

} // namespace

std::optional<Witness> witness(const Fixpoints& fixpoints, const TemporalFormula& formula,
                               bool initially, bool any) {
    return Search(fixpoints, formula, any).run(initially);
}

} // namespace tervoxal
