#include "observer/observednetwork.h"

#include "observer/cubes.h"
#include "query/expressiontext.h"
#include "query/sum.h"

#include <algorithm>
#include <cassert>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace tervoxal {

namespace {

using Term = TemporalFormula::Term;
using Moves = std::set<NetTimedModel::Move>;

/// What the observer has to show at one of its locations.
struct Stage {
    std::size_t node; // of the formula
    bool waiting;     // of until and release: its condition holds, and is kept
    auto operator<=>(const Stage&) const = default; // NOLINT(modernize-use-nullptr)
};

/// A location of the observer.
struct Place {
    Stage stage;
    std::vector<uint> next;    // after any step
    std::vector<uint> leaving; // after a step that may end what is kept
};

TemporalFormula::Node constant(bool value) {
    using Atom = Condition::Term;
    return {Term::condition, false, 0, 0, {{{value ? Atom::truth : Atom::falsity}}}};
}

bool isFalse(const Condition& condition) {
    return condition.tokens.size() == 1 && condition.tokens[0].term == Condition::Term::falsity;
}

/// The formula where a path counts only if it can be gone on with so that it counts: what is shown
/// last, after operators, holds where EG true does.
TemporalFormula goingOn(const TemporalFormula& formula) {
    const std::vector<bool> along = alongPath(formula);
    std::vector<bool> under(formula.nodes.size());
    for (std::size_t n = formula.nodes.size(); n-- > 0;) {
        const TemporalFormula::Node& node = formula.nodes[n];
        if (!along[n]) continue;
        const bool passes = under[n] || isTemporal(node.term);
        under[followed(formula, along, n)] = passes;
        if (node.term == Term::disjunction) under[node.left] = under[node.right] = passes;
    }
    TemporalFormula result;
    std::vector<std::size_t> numbers; // the new ones
    const auto add = [&](TemporalFormula::Node node) {
        result.nodes.push_back(std::move(node));
        return result.nodes.size() - 1;
    };
    for (std::size_t n = 0; n < formula.nodes.size(); ++n) {
        TemporalFormula::Node node = formula.nodes[n];
        if (node.term != Term::condition) {
            node.left = numbers[node.left];
            node.right = numbers[node.right];
        }
        std::size_t number = add(std::move(node));
        if (under[n] && !along[n] && !isFalse(result.nodes[number].condition)) {
            const std::size_t left = add(constant(false));
            const std::size_t right = add(constant(true));
            const std::size_t always = add({Term::release, false, left, right});
            number = add({Term::conjunction, false, number, always});
        }
        numbers.push_back(number);
    }
    return result;
}

/// The formula as a question about the initial state, whose conditions have no sums; nothing if
/// these are too long without.
std::optional<TemporalFormula> fromTheStart(const TemporalFormula& formula, bool isFair,
                                            bool initially, std::size_t most) {
    TemporalFormula whole = isFair ? goingOn(formula) : formula;
    for (TemporalFormula::Node& node : whole.nodes) {
        if (node.term != Term::condition) continue;
        std::optional<Condition> own = writtenOut(node.condition, most);
        if (!own) return {};
        node.condition = std::move(*own);
    }
    if (initially) return whole;
    const std::size_t root = whole.nodes.size() - 1;
    whole.nodes.push_back(constant(true));
    whole.nodes.push_back({Term::until, false, root + 1, root});
    return whole;
}

LatestStep latestStepOf(const NetTimedModel& model, const TemporalFormula& formula,
                        const std::vector<Condition>& fair) {
    LatestStep latest;
    std::set<uint> actions;
    const auto look = [&](const Condition& condition) {
        if (isOfState(condition)) return;
        latest.automaton = static_cast<uint>(model.nrOfAutomata) + 2;
        for (const Condition::Token& token : condition.tokens) {
            if (token.term == Condition::Term::after) actions.insert(token.number);
            if (token.term == Condition::Term::initial) latest.tellsInitial = true;
        }
    };
    for (const TemporalFormula::Node& node : formula.nodes) look(node.condition);
    for (const Condition& condition : fair) look(condition);
    latest.actions.assign(actions.begin(), actions.end());
    return latest;
}

class Builder {
public:
    Builder(const NetTimedModel& model, const Names& names, TemporalFormula whole,
            std::vector<Condition> fair, std::size_t most)
        : model(model), names(names), formula(std::move(whole)), fair(std::move(fair)),
          latest(latestStepOf(model, formula, this->fair)), cubes(model, latest, most), left(most),
          along(alongPath(formula)), checked(formula.nodes.size()),
          result(std::make_unique<ObservedNetwork>()) {}

    std::unique_ptr<ObservedNetwork> build() {
        result->observer = static_cast<uint>(model.nrOfAutomata) + 1;
        result->shown.tokens = {{Condition::Term::falsity}};
        if (!findCubes() || !findFair()) return {};
        countSilent();
        findPlaces();
        if (tooLarge) return {};
        addAutomata();
        result->looping.assign(looping.begin(), looping.end());
        for (const Silent& silent : silents) addSilent(silent);
        for (const auto& [action, automata] : model.actionAutomata) addAction(action);
        if (tooLarge) return {};
        result->model.compNrOfBits(0);
        return std::move(result);
    }

private:
    /// Silent steps of one cube.
    struct Silent {
        const LocationCube* cube;
        Moves moves; // of the observer
    };

    [[nodiscard]] bool isKept(std::size_t node) const {
        return formula.nodes[node].term == Term::until || formula.nodes[node].term == Term::release;
    }
    /// The operand of a node that is looked at as the path goes.
    [[nodiscard]] std::size_t lookedAt(std::size_t node) const {
        const TemporalFormula::Node& own = formula.nodes[node];
        return followed(formula, along, node) == own.left ? own.right : own.left;
    }
    [[nodiscard]] std::size_t followedBy(std::size_t node) const {
        return followed(formula, along, node);
    }

    bool findCubes() {
        for (std::size_t n = 0; n < formula.nodes.size(); ++n) {
            if (!along[n] || (!isKept(n) && formula.nodes[n].term != Term::conjunction)) continue;
            std::optional<LocationCubes> own = cubes.of(formula.nodes[lookedAt(n)].condition);
            if (!own) return false;
            // True, if one of them is.
            for (const LocationCube& cube : *own) {
                if (!cube.empty()) continue;
                own = LocationCubes(1);
                break;
            }
            checked[n] = std::move(*own);
        }
        return true;
    }
    bool findFair() {
        return std::ranges::all_of(fair, [&](const Condition& condition) {
            const std::optional<Condition> plain = writtenOut(condition, left);
            std::optional<Condition> here = plain ? cubes.located(*plain) : plain;
            if (here) result->fair.push_back(std::move(*here));
            return here.has_value();
        });
    }

    /// Whether what a node checks or keeps holds everywhere.
    [[nodiscard]] bool isFree(std::size_t node) const {
        return checked[node].size() == 1 && checked[node][0].empty();
    }

    void countSilent() {
        std::vector<int> counts;
        for (std::size_t n = 0; n < formula.nodes.size(); ++n) {
            const TemporalFormula::Node& node = formula.nodes[n];
            int count = 0;
            if (node.term == Term::disjunction) {
                count = std::max(counts[node.left], counts[node.right]);
            } else if (along[n]) {
                const bool checks = node.term != Term::next && !isFree(n);
                count = counts[followedBy(n)] + (checks ? 1 : 0);
            }
            if (node.term == Term::release) result->loopless = false;
            counts.push_back(count);
        }
        result->silent = counts.back();
    }

    /// What is to be shown first for a node.
    [[nodiscard]] std::vector<Stage> entries(std::size_t node) const {
        std::set<Stage> all;
        std::vector<std::size_t> open = {node};
        while (!open.empty()) {
            const std::size_t n = open.back();
            open.pop_back();
            if (along[n] && formula.nodes[n].term == Term::disjunction) {
                open.insert(open.end(), {formula.nodes[n].left, formula.nodes[n].right});
            } else if (along[n] && formula.nodes[n].term == Term::conjunction && isFree(n)) {
                open.push_back(followedBy(n));
            } else {
                all.insert({n, along[n] && isKept(n) && isFree(n)});
            }
        }
        return {all.begin(), all.end()};
    }

    /// What can be shown in place of a stage, without a step; with itself.
    [[nodiscard]] std::set<Stage> inPlaceOf(const Stage& stage) {
        std::set<Stage> all = {stage};
        std::vector<Stage> open = {stage};
        while (!open.empty()) {
            const Stage s = open.back();
            open.pop_back();
            if (!s.waiting) continue;
            for (const Stage& entry : entries(followedBy(s.node))) {
                if (all.insert(entry).second) open.push_back(entry);
            }
        }
        spend(all.size());
        return all;
    }

    void spend(std::size_t amount) {
        tooLarge = tooLarge || left < amount;
        left -= std::min(left, amount);
    }

    uint placeOf(const Stage& stage) {
        const auto [entry, isNew] = numbers.try_emplace(stage, static_cast<uint>(places.size()));
        if (isNew) places.push_back({stage, {}, {}});
        return entry->second;
    }

    std::vector<uint> placesOf(const std::vector<Stage>& stages) {
        std::vector<uint> all;
        all.reserve(stages.size());
        for (const Stage& stage : stages) all.push_back(placeOf(stage));
        return all;
    }

    void findPlaces() {
        const std::vector<Stage> first = entries(formula.nodes.size() - 1);
        if (first.size() > 1) {
            placeOf({formula.nodes.size(), false}); // which shows nothing by itself
            ++result->silent;
            for (const uint to : placesOf(first))
                addSilentMove(0, nothing, {formula.nodes.size(), true}, to);
        } else {
            placeOf(first.front());
        }
        for (uint place = 0; place < places.size() && !tooLarge; ++place) {
            const Stage own = places[place].stage;
            if (own.node == formula.nodes.size()) continue;
            for (const Stage& stage : inPlaceOf(own)) show(place, own, stage);
        }
    }

    /// What the observer does at a place to show a stage.
    void show(uint place, const Stage& own, const Stage& stage) {
        const std::size_t n = stage.node;
        if (!along[n]) {
            addShown(place, formula.nodes[n].condition);
            return;
        }
        const auto targets = [&] { return placesOf(entries(followedBy(n))); };
        const auto check = [&](const std::vector<uint>& to) {
            for (const uint t : to) {
                for (const LocationCube& cube : checked[n])
                    addSilentMove(place, cube, {n, false}, t);
            }
        };
        if (formula.nodes[n].term == Term::next) {
            const std::vector<uint> to = targets();
            places[place].next.insert(places[place].next.end(), to.begin(), to.end());
        } else if (!isKept(n)) {
            check(targets());
        } else if (!stage.waiting) {
            if (!checked[n].empty()) check({placeOf({n, true})});
            if (formula.nodes[n].term == Term::release) return;
            for (const uint to : targets()) addSilentMove(place, nothing, {n, true}, to);
        } else {
            if (formula.nodes[n].term == Term::release) {
                addShown(place, {{{Condition::Term::deadlock}}});
                looping.insert(place);
            }
            if (stage != own) { // what the place keeps may end, since it is not needed any more
                const uint to = placeOf(stage);
                places[place].leaving.push_back(to);
            } else if (formula.nodes[n].term == Term::until && !isFree(n)) {
                const std::vector<uint> to = targets();
                places[place].leaving.insert(places[place].leaving.end(), to.begin(), to.end());
            }
        }
    }

    void addShown(uint place, const Condition& condition) {
        const std::optional<Condition> here = cubes.located(condition);
        if (!here) tooLarge = true;
        if (tooLarge) return;
        spend(here->tokens.size());
        std::vector<Condition::Token>& tokens = result->shown.tokens;
        tokens.push_back({Condition::Term::at, result->observer, place});
        tokens.insert(tokens.end(), here->tokens.begin(), here->tokens.end());
        tokens.push_back({Condition::Term::conjunction});
        tokens.push_back({Condition::Term::disjunction});
    }

    /// Silent steps of one stage and cube are one action.
    void addSilentMove(uint from, const LocationCube& cube, const Stage& stage, uint to) {
        const auto [entry, isNew] = silentNumbers.try_emplace({stage, &cube}, silents.size());
        if (isNew) silents.push_back({&cube, {}});
        silents[entry->second].moves.emplace(from, to);
        spend(1);
    }

    void addAutomata() {
        NetTimedModel& own = result->model;
        own.nrOfAutomata = model.nrOfAutomata + (latest.automaton == 0 ? 1 : 2);
        own.verts = model.verts;
        own.valuation = model.valuation;
        result->names = names;
        result->names.actions.clear();
        result->names.automata[result->observer] = "observer";
        const ExpressionText text(model, names);
        constexpr std::size_t named = 100; // each may be as long as the formula
        for (uint l = 0; l < places.size(); ++l) {
            own.verts.emplace(NetTimedModel::Location(result->observer, l), Vertex());
            const auto& [node, waiting] = places[l].stage;
            if (places.size() > named || node == formula.nodes.size()) continue;
            result->names.locations[{result->observer, l}] =
                (waiting ? "shows " : "to show ") + text.of(formula, node);
        }
        if (latest.automaton == 0) return;
        result->names.automata[latest.automaton] = "latest step";
        for (const uint l : cubes.locations(latest.automaton)) {
            own.verts.emplace(NetTimedModel::Location(latest.automaton, l), Vertex());
        }
        const auto name = [&](uint l, const std::string& as) {
            result->names.locations[{latest.automaton, l}] = as;
        };
        name(0, latest.tellsInitial ? "none" : "another action");
        if (latest.tellsInitial) name(1, "another action");
        for (const uint x : latest.actions) name(latest.location(x), names.action(x));
    }

    void add(const std::map<uint, Moves>& participants, std::optional<uint> original) {
        for (const auto& [a, moves] : participants) {
            if (moves.empty()) return;
        }
        const auto action = static_cast<uint>(result->actions.size());
        result->actions.push_back(original);
        if (original) {
            const auto name = names.actions.find(*original);
            if (name != names.actions.end()) result->names.actions[action] = name->second;
        } else {
            result->names.actions[action] = "silent";
        }
        NetTimedModel& own = result->model;
        for (const auto& [a, moves] : participants) {
            own.actionAutomata[action].insert(a);
            own.actionEdges[{a, action}] = moves;
            for (const auto& move : moves)
                own.edges.emplace(std::pair(std::pair(a, action), move), Edge());
            spend(moves.size());
        }
    }

    [[nodiscard]] static Moves staying(const std::set<uint>& locations) {
        Moves moves;
        for (const uint l : locations) moves.emplace(l, l);
        return moves;
    }

    void addSilent(const Silent& silent) {
        std::map<uint, Moves> participants = {{result->observer, silent.moves}};
        for (const auto& [a, in] : *silent.cube) participants[a] = staying(in);
        if (!tooLarge) add(participants, {});
    }

    /// What an action moves, with the automaton that knows it.
    [[nodiscard]] std::map<uint, Moves> movesOf(uint action) const {
        std::map<uint, Moves> all;
        for (const uint a : model.actionAutomata.at(action))
            all[a] = model.actionEdges.at({a, action});
        if (latest.automaton == 0) return all;
        for (const uint l : cubes.locations(latest.automaton)) {
            all[latest.automaton].emplace(l, latest.location(action));
        }
        return all;
    }

    /// Whether a step may lead out of what a node keeps.
    [[nodiscard]] bool mayEnd(const std::map<uint, Moves>& participants, std::size_t node) const {
        for (const LocationCube& cube : checked[node]) {
            for (const auto& [a, in] : cube) {
                const auto moves = participants.find(a);
                if (moves == participants.end()) continue;
                for (const auto& [source, target] : moves->second) {
                    if (in.contains(source) && !in.contains(target)) return true;
                }
            }
        }
        return false;
    }

    void addAction(uint action) {
        if (tooLarge) return;
        const std::map<uint, Moves> moves = movesOf(action);
        Moves observers; // where the step may do what it likes
        bool free = true;
        for (uint l = 0; l < places.size(); ++l) {
            const auto& [stage, next, leaving] = places[l];
            for (const uint to : next) observers.emplace(l, to);
            free = free && next.empty();
            if (!stage.waiting) {
                free = false;
            } else if (!mayEnd(moves, stage.node)) {
                observers.emplace(l, l);
            } else {
                free = false;
                for (const uint to : leaving) observers.emplace(l, to);
                addKeeping(action, moves, l);
            }
        }
        spend(places.size());
        std::map<uint, Moves> participants = moves;
        if (!free) participants[result->observer] = std::move(observers);
        add(participants, action);
    }

    /// The action with those moves that lead to where the condition of the place holds.
    void addKeeping(uint action, const std::map<uint, Moves>& moves, uint place) {
        const LocationCubes& kept = checked[places[place].stage.node];
        for (const LocationCube& cube : kept) {
            std::map<uint, Moves> participants = moves;
            participants[result->observer] = {{place, place}};
            for (const auto& [a, in] : cube) {
                const auto own = participants.find(a);
                if (own != participants.end()) {
                    std::erase_if(own->second, [&in = in](const auto& move) {
                        return !in.contains(move.second);
                    });
                } else if (kept.size() > 1) { // else it is there
                    participants[a] = staying(in);
                }
            }
            add(participants, action);
        }
    }

    const NetTimedModel& model;
    const Names& names;
    const TemporalFormula formula;
    const std::vector<Condition> fair;
    const LatestStep latest;
    CubeAlgebra cubes;
    std::size_t left; // transitions that may still be made, and such
    bool tooLarge = false;
    const std::vector<bool> along;
    const LocationCube nothing;
    std::vector<LocationCubes> checked; // by node
    std::map<Stage, uint> numbers;
    std::vector<Place> places; // by location
    std::set<uint> looping;
    std::map<std::pair<Stage, const LocationCube*>, std::size_t> silentNumbers;
    std::vector<Silent> silents;
    std::unique_ptr<ObservedNetwork> result;
};

} // namespace

std::unique_ptr<ObservedNetwork> observed(const NetTimedModel& model, const Names& names,
                                          const TemporalFormula& formula,
                                          const std::vector<Condition>& fair, bool initially,
                                          std::size_t most) {
    assert(!needsSeveralPaths(formula));
    std::optional<TemporalFormula> whole = fromTheStart(formula, !fair.empty(), initially, most);
    if (!whole) return {};
    return Builder(model, names, std::move(*whole), fair, most).build();
}

} // namespace tervoxal
