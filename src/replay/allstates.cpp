#include "replay/allstates.h"

#include <algorithm>

namespace tervoxal {

bool canTake(const NetTimedModel& model, const State& state, uint action) {
    const auto automata = model.actionAutomata.find(action);
    if (automata == model.actionAutomata.end()) return false;
    return std::ranges::all_of(automata->second, [&](uint a) {
        const auto& moves = model.actionEdges.at({a, action});
        const auto move = moves.lower_bound({state[a], 0});
        return move != moves.end() && move->first == state[a];
    });
}

namespace {

/// What holds in a state, as an algebra for conditions.
struct Here {
    static bool constant(bool value) { return value; }
    static bool negation(bool a) { return !a; }
    static bool conjunction(bool a, bool b) { return a && b; }
    static bool disjunction(bool a, bool b) { return a || b; }
    [[nodiscard]] bool atom(const Condition::Token& token) const {
        switch (token.term) {
        case Condition::Term::initial: return !action;
        case Condition::Term::after: return action == token.number;
        case Condition::Term::at: return state[token.number] == token.location;
        case Condition::Term::enabled: return canTake(model, state, token.number);
        case Condition::Term::sum: {
            std::int64_t sum = 0;
            for (const auto& [part, weight] : *token.parts) sum += atom(part) ? weight : 0;
            return sum >= token.least;
        }
        case Condition::Term::deadlock:
            return std::ranges::none_of(model.actionAutomata, [&](const auto& entry) {
                return canTake(model, state, entry.first);
            });
        default:
            for (uint a = 1; a < state.size(); ++a) {
                if (model.valuation.contains({{a, state[a]}, token.number})) return true;
            }
            return false;
        }
    }

    const NetTimedModel& model;
    const State& state;
    std::optional<uint> action;
};

/// Calls use with each state that the action leads to.
template <class Use>
void forEachSuccessor(const NetTimedModel& model, const State& state, uint action, Use&& use) {
    if (!canTake(model, state, action)) return;
    std::vector<State> next = {state};
    for (const uint a : model.actionAutomata.at(action)) {
        std::vector<State> moved;
        const auto& moves = model.actionEdges.at({a, action});
        for (auto m = moves.lower_bound({state[a], 0}); m != moves.end() && m->first == state[a];
             ++m) {
            for (State& s : next) {
                s[a] = m->second;
                moved.push_back(s);
            }
        }
        next.swap(moved);
    }
    for (const State& s : next) use(s);
}

} // namespace

bool holdsIn(const NetTimedModel& model, const Condition& condition, const State& state,
             std::optional<uint> action) {
    return valueOf(condition, Here{model, state, action});
}

AllStates::AllStates(const NetTimedModel& model, const TemporalFormula& formula,
                     const Fairness& fairness)
    : model(model), fairness(fairness) {
    const auto collect = [&](const Condition& condition) {
        marked = marked || !isOfState(condition);
        for (const Condition::Token& token : condition.tokens) {
            if (token.term == Condition::Term::after) asked.insert(token.number);
        }
    };
    for (const TemporalFormula::Node& node : formula.nodes) collect(node.condition);
    for (const Condition& condition : fairness.conditions) collect(condition);
    find();
    for (const Condition& condition : fairness.conditions) fairSets.push_back(where(condition));
    fair.assign(nodes.size(), true);
    if (!fairSets.empty()) fair = always(fair);
    for (const TemporalFormula::Node& node : formula.nodes) {
        using Term = TemporalFormula::Term;
        if (node.term == Term::condition) {
            sets.push_back(where(node.condition));
        } else if (isTemporal(node.term)) {
            sets.push_back(temporal(node));
        } else {
            Set set(nodes.size());
            for (std::size_t n = 0; n < set.size(); ++n) {
                const bool left = sets[node.left][n];
                const bool right = sets[node.right][n];
                set[n] = node.term == Term::conjunction ? left && right : left || right;
            }
            sets.push_back(std::move(set));
        }
    }
}

/// Before any step 0, after an action that is not asked for 1, else one for each action.
uint AllStates::mark(std::optional<uint> action) const {
    if (!marked || !action) return marked ? 0 : 1;
    const auto found = asked.find(*action);
    return found == asked.end() ? 1 : 2 + static_cast<uint>(std::distance(asked.begin(), found));
}

void AllStates::find() {
    const auto number = [&](const State& state, std::optional<uint> action) {
        const auto [entry, isNew] = numbers.try_emplace({state, mark(action)}, nodes.size());
        if (isNew) {
            nodes.push_back(&entry->first);
            latest.push_back(action);
        }
        return entry->second;
    };
    number(initialState(model), {});
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        steps.emplace_back();
        for (const auto& [action, automata] : model.actionAutomata) {
            forEachSuccessor(model, nodes[n]->first, action, [&, x = action](const State& s) {
                steps[n].push_back({x, number(s, x)});
            });
        }
    }
}

std::size_t AllStates::states() const {
    std::size_t count = 0;
    const State* before = nullptr;
    for (const auto& [key, number] : numbers) {
        if (before == nullptr || *before != key.first) ++count;
        before = &key.first;
    }
    return count;
}

std::size_t AllStates::node(const State& state, std::optional<uint> action) const {
    return numbers.at({state, mark(action)});
}

AllStates::Set AllStates::where(const Condition& condition) const {
    Set set(nodes.size());
    for (std::size_t n = 0; n < set.size(); ++n) {
        set[n] = holdsIn(model, condition, nodes[n]->first, latest[n]);
    }
    return set;
}

AllStates::Set AllStates::before(const Set& set) const {
    Set result(set.size());
    for (std::size_t n = 0; n < set.size(); ++n) {
        result[n] = std::ranges::any_of(steps[n], [&](const Step& s) { return set[s.target]; });
    }
    return result;
}

/// Those found late lead to those found early as seldom as not, so they are gone over first.
AllStates::Set AllStates::until(const Set& left, Set right) const {
    for (bool changed = true; changed;) {
        changed = false;
        for (std::size_t n = right.size(); n-- > 0;) {
            if (right[n] || !left[n]) continue;
            right[n] =
                std::ranges::any_of(steps[n], [&](const Step& s) { return right[s.target]; });
            changed = changed || right[n];
        }
    }
    return right;
}

AllStates::Set AllStates::always(const Set& set) const {
    Set within = set;
    Set before;
    const auto leads = [&](const Step& s) { return within[s.target]; };
    const auto restrict = [&](Set reached) {
        reached = until(within, std::move(reached));
        for (std::size_t n = 0; n < within.size(); ++n) within[n] = within[n] && reached[n];
    };
    while (within != before) {
        before = within;
        for (std::size_t n = within.size(); n-- > 0;) {
            within[n] = within[n] && std::ranges::any_of(steps[n], leads);
        }
        for (const Set& condition : fairSets) {
            Set met = within;
            for (std::size_t n = 0; n < met.size(); ++n) met[n] = met[n] && condition[n];
            restrict(std::move(met));
        }
        if (!fairness.weak) continue;
        for (const auto& [action, automata] : model.actionAutomata) {
            Set met = within;
            for (std::size_t n = 0; n < met.size(); ++n) {
                met[n] = met[n] && (!canTake(model, nodes[n]->first, action) ||
                                    std::ranges::any_of(steps[n], [&, x = action](const Step& s) {
                                        return s.action == x && leads(s);
                                    }));
            }
            restrict(std::move(met));
        }
    }
    for (std::size_t n = 0; n < set.size(); ++n) {
        within[n] = within[n] || (set[n] && steps[n].empty());
    }
    return until(set, std::move(within));
}

AllStates::Set AllStates::temporal(const TemporalFormula::Node& node) const {
    using Term = TemporalFormula::Term;
    // Of all paths it is the negation of what is asked of one, of operands that are negated.
    const auto operand = [&](std::size_t n) {
        Set set = sets[n];
        if (node.universal) set.flip();
        return set;
    };
    const bool isUntil = (node.term == Term::until) != node.universal;
    const Set left = operand(node.left);
    Set right = operand(node.right);
    Set last = right;
    for (std::size_t n = 0; n < last.size(); ++n) last[n] = last[n] && fair[n];
    Set result;
    if (node.term == Term::next) {
        result = before(last);
    } else if (isUntil) {
        result = until(left, std::move(last));
    } else {
        const Set ever = always(right);
        for (std::size_t n = 0; n < last.size(); ++n) last[n] = (last[n] && left[n]) || ever[n];
        result = until(right, std::move(last));
    }
    if (node.universal) result.flip();
    return result;
}

} // namespace tervoxal
