#include "replay/temporalreplay.h"

#include "replay/walk.h"
#include "text/fatal.h"

#include <algorithm>
#include <string>

namespace tervoxal {

namespace {

using Term = TemporalFormula::Term;

class Evaluation {
public:
    Evaluation(const NetTimedModel& model, const Path& path, const TemporalFormula& formula,
               const Fairness& fairness, const AllStates* all)
        : model(model), path(path), formula(formula), fairness(fairness), all(all),
          along(alongPath(formula)), under(formula.nodes.size()) {
        states.push_back(path.first);
        auto change = path.changes.begin();
        for (int p = 1; p <= path.k; ++p) {
            states.push_back(states.back());
            for (; change != path.changes.end() && change->position == p; ++change) {
                states.back()[change->change.automaton] = change->change.target;
            }
        }
        for (std::size_t n = formula.nodes.size(); n-- > 0;) {
            const TemporalFormula::Node& node = formula.nodes[n];
            if (node.term == Term::condition) continue;
            for (const std::size_t operand : {node.left, node.right}) {
                under[operand] = under[operand] || under[n] || (isTemporal(node.term) && along[n]);
            }
        }
    }

    void refuseFalseEnd() const {
        const auto last = static_cast<std::size_t>(path.k);
        if (path.ends && std::ranges::any_of(model.actionAutomata, [&](const auto& entry) {
                return canTake(model, states[last], entry.first);
            })) {
            error("the path does not end at position " + std::to_string(path.k) +
                  ": an action is possible there");
        }
        if (!path.loop) return;
        const auto first = static_cast<std::size_t>(*path.loop);
        if (*path.loop >= path.k || states[first] != states[last] || !samePast(first, last)) {
            error("position " + std::to_string(path.k) +
                  " of the path is not the same as position " + std::to_string(*path.loop));
        }
        for (const Condition& condition : fairness.conditions) {
            bool met = false;
            for (std::size_t p = first + 1; p <= last; ++p) met = met || holds(condition, p);
            if (!met) error("the loop of the path is not fair: a condition holds nowhere in it");
        }
        for (const auto& [action, automata] : model.actionAutomata) {
            bool met = !fairness.weak;
            for (std::size_t p = first + 1; p <= last && !met; ++p) {
                met = path.actions[p - 1] == action || !canTake(model, states[p], action);
            }
            if (!met) {
                error("the loop of the path is not fair: action " + std::to_string(action) +
                      " is always possible in it and never taken");
            }
        }
    }

    void evaluate() {
        for (std::size_t n = 0; n < formula.nodes.size(); ++n) {
            const Term term = formula.nodes[n].term;
            values.emplace_back(states.size(), term == Term::release);
            // Around the loop once more, for what the first round has found behind it.
            for (int round = 0; round < (path.loop && isTemporal(term) ? 2 : 1); ++round) {
                for (std::size_t p = states.size(); p-- > 0;) values[n][p] = value(n, p);
            }
        }
    }

    [[nodiscard]] bool holdsAt(std::size_t position) const { return values.back()[position]; }

    /// What is met from a position on, where the formula holds.
    [[nodiscard]] std::vector<MetPart> parts(std::size_t p) const {
        std::vector<MetPart> parts;
        const auto mark = [&](std::size_t node) { parts.push_back({static_cast<int>(p), node}); };
        for (std::size_t n = formula.nodes.size() - 1;;) {
            const TemporalFormula::Node& node = formula.nodes[n];
            const std::size_t next = followed(formula, along, n);
            if (!along[n]) {
                mark(n);
                return parts;
            }
            switch (node.term) {
            case Term::conjunction:
                mark(next == node.left ? node.right : node.left);
                n = next;
                break;
            case Term::disjunction: n = values[node.left][p] ? node.left : node.right; break;
            case Term::next:
                n = next;
                p = successor(p);
                break;
            case Term::until:
                if (values[next][p]) {
                    n = next;
                } else {
                    p = successor(p);
                }
                break;
            default:
                if (isForEver(node, p)) {
                    mark(n);
                    return parts;
                }
                if (values[next][p]) {
                    mark(node.right);
                    n = next;
                } else {
                    p = successor(p);
                }
            }
        }
    }

private:
    [[nodiscard]] std::optional<uint> actionTo(std::size_t position) const {
        if (position == 0) return {};
        return path.actions[position - 1];
    }
    [[nodiscard]] bool holds(const Condition& condition, std::size_t position) const {
        return holdsIn(model, condition, states[position], actionTo(position));
    }
    /// The successor in the loop of the last position, else the next one.
    [[nodiscard]] std::size_t successor(std::size_t position) const {
        return position + 1 < states.size() ? position + 1
                                            : static_cast<std::size_t>(*path.loop) + 1;
    }

    /// Whether nothing that is asked tells the steps apart that led to two positions.
    [[nodiscard]] bool samePast(std::size_t p, std::size_t q) const {
        const auto same = [&](const Condition& condition) {
            return std::ranges::all_of(condition.tokens, [&](const Condition::Token& token) {
                return (token.term != Condition::Term::after &&
                        token.term != Condition::Term::initial) ||
                       holds({{token}}, p) == holds({{token}}, q);
            });
        };
        return std::ranges::all_of(fairness.conditions, same) &&
               std::ranges::all_of(formula.nodes, [&](const TemporalFormula::Node& node) {
                   return same(node.condition);
               });
    }

    /// Whether the formula's node holds, whatever path goes on from there.
    [[nodiscard]] bool truth(std::size_t n, std::size_t p) const {
        const TemporalFormula::Node& node = formula.nodes[n];
        if (node.term == Term::condition) return holds(node.condition, p);
        return all->where(n)[all->node(states[p], actionTo(p))];
    }

    [[nodiscard]] bool value(std::size_t n, std::size_t p) const {
        const TemporalFormula::Node& node = formula.nodes[n];
        const bool open = fairness.conditions.empty() || path.loop || path.ends;
        if (!along[n]) return truth(n, p) && (open || !under[n]);
        const bool last = p + 1 == states.size() && !path.loop;
        const auto goesOn = [&](std::size_t m) { return !last && values[m][successor(p)]; };
        const std::size_t next = followed(formula, along, n);
        switch (node.term) {
        case Term::conjunction:
            return values[next][p] && truth(next == node.left ? node.right : node.left, p);
        case Term::disjunction: return values[node.left][p] || values[node.right][p];
        case Term::next: return goesOn(next);
        case Term::until: return values[next][p] || (truth(node.left, p) && goesOn(n));
        default:
            return truth(node.right, p) &&
                   (values[next][p] || (last ? path.ends : values[n][successor(p)]));
        }
    }

    /// Whether release is met by what holds on the whole path from a position on.
    [[nodiscard]] bool isForEver(const TemporalFormula::Node& node, std::size_t p) const {
        if (!path.loop && !path.ends) return false;
        const std::size_t first =
            path.loop ? std::min(p, static_cast<std::size_t>(*path.loop) + 1) : p;
        for (std::size_t q = first; q < states.size(); ++q) {
            if (!truth(node.right, q)) return false;
        }
        return true;
    }

    const NetTimedModel& model;
    const Path& path;
    const TemporalFormula& formula;
    const Fairness& fairness;
    const AllStates* all;
    const std::vector<bool> along;
    std::vector<bool> under; // by node, whether it is in a temporal operator of one path
    std::vector<State> states;
    std::vector<std::vector<bool>> values; // by node and position
};

} // namespace

std::set<uint> namedAutomata(const NetTimedModel& model, const TemporalFormula& formula) {
    std::set<uint> automata;
    std::set<uint> props;
    const auto name = [&](const Condition::Token& atom) {
        switch (atom.term) {
        case Condition::Term::at: automata.insert(atom.number); break;
        case Condition::Term::prop: props.insert(atom.number); break;
        case Condition::Term::enabled:
        case Condition::Term::after: {
            const auto found = model.actionAutomata.find(atom.number);
            if (found != model.actionAutomata.end()) {
                automata.insert(found->second.begin(), found->second.end());
            }
            break;
        }
        default: break;
        }
    };
    for (const TemporalFormula::Node& node : formula.nodes) {
        for (const Condition::Token& token : node.condition.tokens) forEachAtom(token, name);
    }
    for (const auto& [location, prop] : model.valuation) {
        if (props.contains(prop)) automata.insert(location.first);
    }
    return automata;
}

std::vector<MetPart> replay(const Transitions& transitions, const Path& path, const Names& names,
                            const TemporalFormula& formula, const Fairness& fairness,
                            bool initially, const AllStates* all) {
    const Condition truth{{{Condition::Term::truth}}};
    replay(Walk(transitions, path, truth), names);
    Evaluation evaluation(transitions.model, path, formula, fairness, all);
    evaluation.refuseFalseEnd();
    evaluation.evaluate();
    for (std::size_t p = 0; p <= static_cast<std::size_t>(initially ? 0 : path.k); ++p) {
        if (evaluation.holdsAt(p)) return evaluation.parts(p);
    }
    error("the formula holds at no position of the path");
}

} // namespace tervoxal
