// The meaning of a network as plainly as it can be said: each action against each automaton, each
// proposition against the whole valuation.

#pragma once

#include "network.h"
#include "replay/property.h"

#include <cctype>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tervoxal {

inline bool leads(const NetTimedModel& model, uint action, const State& from, const State& to) {
    const std::set<uint>& owners = model.actionAutomata.at(action);
    for (uint a = 1; a < to.size(); ++a) {
        const NetTimedModel::Move move(from[a], to[a]);
        if (owners.contains(a) ? !model.edges.contains({{a, action}, move})
                               : move.first != move.second) {
            return false;
        }
    }
    return true;
}

inline std::vector<uint> actionsBetween(const NetTimedModel& model, const State& from,
                                        const State& to) {
    std::vector<uint> all;
    for (const auto& [action, automata] : model.actionAutomata) {
        if (leads(model, action, from, to)) all.push_back(action);
    }
    return all;
}

/// Whether all automata of the action can take it.
inline bool isPossible(const NetTimedModel& model, const State& state, uint action) {
    for (const uint a : model.actionAutomata.at(action)) {
        bool here = false;
        for (const auto& [edge, ignored] : model.edges)
            here = here || (edge.first == std::pair(a, action) && edge.second.first == state[a]);
        if (!here) return false;
    }
    return true;
}

/// The states that one step leads to.
inline std::set<State> successors(const NetTimedModel& model, const State& state) {
    std::set<State> all;
    for (const auto& [action, automata] : model.actionAutomata) {
        std::vector<State> next = {state};
        for (const uint a : automata) {
            std::vector<State> moved;
            for (State& s : next) {
                for (const auto& [source, target] : model.actionEdges.at({a, action})) {
                    if (source != state[a]) continue;
                    s[a] = target;
                    moved.push_back(s);
                }
            }
            next.swap(moved);
        }
        all.insert(next.begin(), next.end());
    }
    return all;
}

/// All states that are ever reached, with the least number of steps to each.
inline std::map<State, int> distances(const NetTimedModel& model) {
    std::map<State, int> all = {{initialState(model), 0}};
    std::vector<State> layer = {all.begin()->first};
    for (int k = 1; !layer.empty(); ++k) {
        std::vector<State> next;
        for (const State& state : layer) {
            for (const State& s : successors(model, state)) {
                if (all.try_emplace(s, k).second) next.push_back(s);
            }
        }
        layer.swap(next);
    }
    return all;
}

/// The least number of steps to a state in which it holds, -1 if no such state is ever reached.
template <class Holds>
int least(const std::map<State, int>& distances, Holds&& holds) {
    int least = -1;
    for (const auto& [state, k] : distances) {
        if ((least < 0 || k < least) && holds(state)) least = k;
    }
    return least;
}

/// Whether a formula of randomFormula holds in the state.
inline bool meets(const NetTimedModel& model, const State& state, const std::string& formula) {
    std::vector<bool> values;
    for (std::size_t i = 0; i < formula.size();) {
        const char c = formula[i++];
        if (c == 'E') return false;
        if (c == 'T') {
            values.push_back(true);
        } else if (c == 'p') {
            const bool negated = formula[i] == '-';
            std::size_t digits = 0;
            const auto prop = static_cast<uint>(std::stoul(formula.substr(i + negated), &digits));
            i += digits + negated;
            bool carried = false;
            for (uint a = 1; a < state.size(); ++a)
                carried = carried || model.valuation.contains({{a, state[a]}, prop});
            values.push_back(carried != negated);
        } else {
            const bool right = values.back();
            values.pop_back();
            values.back() = c == '&' ? values.back() && right : values.back() || right;
        }
    }
    return values.back();
}

/// Whether the condition holds in the state, which the replay is brought to at one go.
inline bool holds(const NetTimedModel& model, const Condition& condition, const State& state) {
    Property property(model, condition);
    for (uint a = 1; a < state.size(); ++a) property.change({a, 0, state[a]});
    return property.holds();
}

/// A state that some action leads to, any of them; the same state where the actions tried lead
/// nowhere.
inline State randomStep(const NetTimedModel& model, Random& random, const State& from) {
    for (int attempt = 0; attempt < 20 && !model.actionAutomata.empty(); ++attempt) {
        const auto action =
            std::next(model.actionAutomata.begin(),
                      static_cast<std::ptrdiff_t>(random() % model.actionAutomata.size()));
        State to = from;
        for (const uint a : action->second) {
            std::vector<uint> targets;
            for (const auto& [source, target] : model.actionEdges.at({a, action->first})) {
                if (source == from[a]) targets.push_back(target);
            }
            if (targets.empty()) break;
            to[a] = targets[random() % targets.size()];
        }
        if (leads(model, action->first, from, to)) return to;
    }
    return from;
}

/// Any bits, also those of locations that are not declared.
inline State randomState(const NetTimedModel& model, Random& random) {
    State state(model.nrOfBits.size());
    for (uint a = 1; a < state.size(); ++a)
        state[a] = static_cast<uint>(random() % (1UL << static_cast<uint>(model.nrOfBits[a])));
    return state;
}

inline std::string list(const auto& numbers) {
    std::string text;
    for (const auto number : numbers) text += (text.empty() ? "" : ",") + std::to_string(number);
    return '[' + text + ']';
}

/// The positions as tervoxal-path shows them, empty if the path is no run that meets the formula.
inline std::string shown(const NetTimedModel& model, const std::vector<State>& path,
                         const std::string& formula) {
    bool met = false;
    std::string text = "\"positions\":[";
    for (std::size_t p = 0; p < path.size(); ++p) {
        const State& to = path[p];
        std::vector<uint> actions;
        if (p > 0) actions = actionsBetween(model, path[p - 1], to);
        if (p == 0 ? to != State(to.size()) : actions.empty()) return "";
        const bool here = meets(model, to, formula);
        met = met || here;
        text += (p == 0 ? "\n{\"position\":" : ",\n{\"position\":") + std::to_string(p) +
                (p == 0 ? "" : ",\"actions\":" + list(actions)) +
                ",\"locations\":" + list(State(to.begin() + 1, to.end())) +
                (here ? ",\"holds\":true}" : ",\"holds\":false}");
    }
    return met ? text + "]}\n" : "";
}

} // namespace tervoxal
