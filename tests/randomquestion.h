// Random expressions about the states of a network, with their answers as plainly as it can be
// said.

#pragma once

#include "plain.h"
#include "query/vocabulary.h"

#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tervoxal {

struct RandomQuestion {
    std::string text;
    std::function<bool(const State&)> holds;
};

/// A name for each action and automaton.
inline Names namesOf(const NetTimedModel& model) {
    Names names;
    for (const auto& [x, automata] : model.actionAutomata)
        names.actions[x] = "x " + std::to_string(x);
    for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a)
        names.automata[a] = "a, " + std::to_string(a);
    return names;
}

/// Counts of propositions and places are compared.
inline RandomQuestion randomCount(const NetTimedModel& model, Random& random) {
    using Holds = std::function<bool(const State&)>;
    std::string text;
    std::vector<std::pair<int, Holds>> counted;
    int number = 0;
    std::string relation;
    for (const int side : {1, -1}) {
        for (auto terms = 1 + random() % 2; terms > 0; --terms) {
            if (random() % 4 == 0) {
                const int n = static_cast<int>(random() % 3);
                text += std::to_string(n);
                number += side * n;
            } else if (random() % 4 == 0) {
                text += "count(at(\"a*\", 0))";
                for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a)
                    counted.emplace_back(side, [=](const State& s) { return s[a] == 0; });
            } else {
                text += "count(";
                std::set<std::string> props;
                for (auto n = 1 + random() % 4; n > 0; --n)
                    props.insert('p' + commonProps.at(random() % 4));
                for (const std::string& prop : props) {
                    text += (prop == *props.begin() ? "" : ", ") + prop;
                    counted.emplace_back(
                        side, [=, &model](const State& s) { return meets(model, s, prop); });
                }
                text += ')';
            }
            if (terms > 1) text += " + ";
        }
        if (side < 0) break;
        static const std::array relations = {"<", "<=", "=", "!=", ">=", ">"};
        relation = relations.at(random() % relations.size());
        text += ' ' + relation + ' ';
    }
    return {'(' + text + ')', [=](const State& s) {
                int sum = number;
                for (const auto& [side, holds] : counted) sum += holds(s) ? side : 0;
                if (relation == "!=") return sum != 0;
                if (sum == 0) return relation.ends_with('=');
                return relation.starts_with(sum < 0 ? '<' : '>');
            }};
}

/// An expression with the names of namesOf; there is an automaton.
inline RandomQuestion randomQuestion(const NetTimedModel& model, Random& random, int depth) {
    const auto possible = [&model](const State& s) {
        return [&model, s](const auto& entry) { return isPossible(model, s, entry.first); };
    };
    if (depth > 0 && random() % 7 < 3) {
        const RandomQuestion q = randomQuestion(model, random, depth - 1);
        if (random() % 3 == 0)
            return {"!(" + q.text + ')', [q](const State& s) { return !q.holds(s); }};
        const RandomQuestion r = randomQuestion(model, random, depth - 1);
        const bool implies = random() % 2 == 0;
        return {'(' + q.text + (implies ? " -> " : " & ") + r.text + ')', [=](const State& s) {
                    return implies ? !q.holds(s) || r.holds(s) : q.holds(s) && r.holds(s);
                }};
    }
    const uint x = random() % 8;
    const auto a = 1 + static_cast<uint>(random() % static_cast<uint>(model.nrOfAutomata));
    const auto kind = random() % 5;
    if (kind == 4) return randomCount(model, random);
    if (kind == 0) {
        return {"deadlock", [=, &model](const State& s) {
                    return std::ranges::none_of(model.actionAutomata, possible(s));
                }};
    }
    if (kind == 1 && model.actionAutomata.contains(x)) {
        return {"enabled(\"x " + std::to_string(x) + "\")",
                [=, &model](const State& s) { return isPossible(model, s, x); }};
    }
    if (kind == 2) {
        uint l = 0;
        while (model.verts.contains({a, l + 1}) && random() % 3 > 0) ++l;
        return {"at(\"a, " + std::to_string(a) + "\", " + std::to_string(l) + ')',
                [=](const State& s) { return s[a] == l; }};
    }
    const std::string prop = 'p' + commonProps.at(random() % 4);
    return {prop, [=, &model](const State& s) { return meets(model, s, prop); }};
}

} // namespace tervoxal
