// Random expressions about the states of a network, with their answers as plainly as it can be
// said.

#pragma once

#include "plain.h"
#include "query/vocabulary.h"

#include <algorithm>
#include <functional>
#include <string>

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
    const auto kind = random() % 4;
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
