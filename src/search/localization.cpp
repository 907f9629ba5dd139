#include "search/localization.h"

#include "query/atoms.h"
#include "replay/property.h"
#include "search/firing.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

namespace tervoxal {

namespace {

using Number = StateSpace::State; // of a state

constexpr std::size_t wordBits = 64;

/// What a state space counts as work takes so little of the unit of Engine::cost: a thirtieth.
constexpr std::int64_t workPerUnit = 30;
/// So much more takes the check of a certificate.
constexpr std::int64_t checkCost = 10;

/// The automata that a condition looks at by its other atoms than deadlocks.
std::vector<uint> firstAutomata(const FlatNetwork& network, Condition condition) {
    for (Condition::Token& token : condition.tokens) {
        if (token.term == Condition::Term::deadlock) token.term = Condition::Term::truth;
    }
    const std::vector<bool> looked = lookedAt(network, condition);
    std::vector<uint> list;
    for (uint a = 0; a < looked.size(); ++a) {
        if (looked[a]) list.push_back(a);
    }
    return list;
}

/// Automata that are not in the list and may tell whether a state is a deadlock: the participants
/// of an action that those in the list can take there. It is one that all can take if there is one,
/// and has as few of them as there are. Precondition, asserted: there are some.
std::vector<uint> waitedFor(const FlatNetwork& network, const std::vector<uint>& state,
                            const std::vector<uint>& list) {
    std::pair<bool, std::size_t> best;
    std::vector<uint> missing;
    for (uint x = 0; x < network.actions.size(); ++x) {
        std::vector<uint> others;
        bool waits = false; // for one of the others
        bool possible = true;
        for (const uint p : network.participantsOf(x)) {
            const uint a = network.participants[p].automaton;
            bool ready = false;
            for (const uint m : network.movesOf(p)) {
                ready = ready || network.moves[m].source == state[a];
            }
            const bool listed = std::ranges::binary_search(list, a);
            if (!listed) others.push_back(a);
            possible = possible && (ready || !listed);
            waits = waits || !ready;
        }
        const std::pair key(waits, others.size());
        if (possible && !others.empty() && (missing.empty() || key < best)) {
            best = key;
            missing = std::move(others);
        }
    }
    assert(!missing.empty());
    return missing;
}

/// A path of some automata on the whole network.
class Replay {
public:
    Replay(const StateSpace& space, Number state);

    std::vector<uint> blocking; // automata, by the first step at which they do
    /// Precondition: there are none.
    [[nodiscard]] Run run() const;

private:
    /// What an automaton does at a step.
    struct Role {
        std::size_t step;
        uint participant;
    };

    [[nodiscard]] std::optional<std::size_t> follow(uint automaton, const std::vector<Role>& roles);
    [[nodiscard]] uint& moveOf(const Role& role) {
        return moves[role.step][role.participant - network.participantsBegin(actions[role.step])];
    }

    const FlatNetwork& network;
    std::vector<uint> actions;
    std::vector<std::vector<uint>> moves; // of the participants of each
};

Replay::Replay(const StateSpace& space, Number state) : network(space.network) {
    const std::vector<Number> path = space.pathTo(state);
    std::map<uint, std::vector<Role>> others;
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        const std::vector<StateSpace::Step> steps = space.steps(path[i]);
        const uint x = std::ranges::find(steps, path[i + 1], &StateSpace::Step::target)->action;
        actions.push_back(x);
        moves.emplace_back();
        for (const uint p : network.participantsOf(x)) {
            const uint a = network.participants[p].automaton;
            uint& move = moves.back().emplace_back(network.movesBegin(p));
            if (const auto slot = space.slot(a)) {
                const uint source = space.location(path[i], *slot);
                const uint target = space.location(path[i + 1], *slot);
                while (network.moves[move].source != source ||
                       network.moves[move].target != target) {
                    ++move;
                }
            } else {
                others[a].push_back({i, p});
            }
        }
    }
    std::vector<std::pair<std::size_t, uint>> blocked;
    for (const auto& [a, roles] : others) {
        if (const auto role = follow(a, roles)) blocked.emplace_back(roles[*role].step, a);
    }
    std::ranges::sort(blocked);
    for (const auto& [step, a] : blocked) blocking.push_back(a);
}

Run Replay::run() const {
    Run run;
    for (std::size_t i = 0; i < actions.size(); ++i) run.push_back({actions[i], Moves(moves[i])});
    return run;
}

/// Chooses the moves of an automaton: forward to all locations that it may be in after each of
/// them, then back from one of the last. Gives the first role that it cannot take, if any.
std::optional<std::size_t> Replay::follow(uint automaton, const std::vector<Role>& roles) {
    using Reached = std::map<uint, uint>; // the move by which a location is reached
    std::vector<Reached> reached = {{{network.locationsBegin(automaton), 0}}};
    for (const Role& role : roles) {
        Reached next;
        for (const uint m : network.movesOf(role.participant)) {
            if (reached.back().contains(network.moves[m].source)) {
                next.try_emplace(network.moves[m].target, m);
            }
        }
        if (next.empty()) return reached.size() - 1;
        reached.push_back(std::move(next));
    }
    uint location = reached.back().begin()->first;
    for (std::size_t i = roles.size(); i-- > 0;) {
        const uint move = reached[i + 1].at(location);
        moveOf(roles[i]) = move;
        location = network.moves[move].source;
    }
    return {};
}

/// The location of each automaton at the end of a run.
std::vector<uint> lastState(const FlatNetwork& network, const Run& run) {
    std::vector<uint> state(network.automata.size());
    for (uint a = 0; a < state.size(); ++a) state[a] = network.locationsBegin(a);
    for (const Firing& firing : run) {
        const uint begin = network.participantsBegin(firing.action);
        for (std::size_t i = 0; i < firing.moves.size(); ++i) {
            state[network.participants[begin + i].automaton] =
                network.moves[firing.moves[i]].target;
        }
    }
    return state;
}

/// Whether a run ends in a state that meets the condition.
bool endsIn(const FlatNetwork& network, const Run& run, const Condition& condition) {
    Property property(network.model, condition);
    const std::vector<uint> last = lastState(network, run);
    for (uint a = 0; a < last.size(); ++a) {
        const uint number = network.locations[last[a]].number;
        if (number != 0) property.change({network.automata[a].number, 0, number});
    }
    return property.holds();
}

} // namespace

/// The states of some automata as far as they are found, and which of them meet what is asked.
struct Localization::Exploration {
    Exploration(const Participation& participation, std::vector<uint> automata, Questions asked)
        : space(participation, std::move(automata)), labelling(space), asked(std::move(asked)) {}

    /// The distance up to which all states are labelled.
    [[nodiscard]] int depth() const {
        if (labelled >= space.size()) return space.completeDepth();
        return std::min(space.completeDepth(), space.depth(static_cast<Number>(labelled)) - 1);
    }

    StateSpace space;
    Labelling labelling;
    Questions asked; // that no state meets which is labelled
    std::size_t labelled = 0;
    int refuted = -1;
};

Localization::Localization(const Board& board, const Parameters& parameters)
    : network(board.network), parameters(parameters), participation(network),
      automata(board.size()), spentOn(board.size()), givenUp(board.size()) {
    std::vector<uint> every(network.automata.size());
    std::iota(every.begin(), every.end(), 0U);
    Questions asked(board.size());
    std::iota(asked.begin(), asked.end(), std::size_t(0));
    all = std::make_unique<Exploration>(participation, std::move(every), std::move(asked));
}

Localization::~Localization() = default;

std::string Localization::status() const {
    const Exploration* const now = some ? some.get() : all.get();
    if (now == nullptr) return "some automata alone";
    const StateSpace& space = now->space;
    return std::to_string(space.automata().size()) + " automata alone, " +
           std::to_string(space.size()) + " states";
}

bool Localization::left(const Board& board, std::size_t question) const {
    if (givenUp[question] && !all) return false;
    if (!board.settled(question)) return true;
    const Board::Entry& entry = board[question];
    return board.proving() && !entry.unreachable && !entry.found;
}

Questions Localization::open(const Board& board, const Questions& among) const {
    Questions open;
    for (const std::size_t q : among) {
        if (left(board, q)) open.push_back(q);
    }
    return open;
}

void Localization::turn(Board& board, const Questions& open, bool /*alone*/) {
    constexpr std::int64_t share = 10000;
    const std::int64_t end = spent + share;
    for (Questions own = open; spent < end && !own.empty() && !board.stopped();
         own = this->open(board, open)) {
        choose(board, own);
        const bool together = all && (!some || 4 * spentOnAll <= spent + parameters.begin);
        if (together || some) explore(board, together ? all : some);
    }
}

/// Makes `some` the automata of the question whose turn it is, or nothing if no question has one.
void Localization::choose(const Board& board, const Questions& open) {
    std::optional<std::size_t> next;
    for (const std::size_t q : open) {
        if (!givenUp[q] && (!next || spentOn[q] < spentOn[*next])) next = q;
    }
    if (next && some) {
        const std::size_t q = some->asked.front();
        if (std::ranges::binary_search(open, q) &&
            spentOn[q] <= 2 * spentOn[*next] + parameters.lead) {
            return;
        }
    }
    some.reset(); // before other states take memory
    if (!next) return;
    std::optional<std::vector<uint>>& own = automata[*next];
    if (!own) own = firstAutomata(network, board[*next].condition);
    if (own->size() == network.automata.size()) {
        givenUp[*next] = true; // `all` has them
        return;
    }
    some = std::make_unique<Exploration>(participation, *own, Questions{*next});
}

/// Expands up to 64 states, labels those that are found, and tells the board what comes out.
void Localization::explore(Board& board, std::unique_ptr<Exploration>& exploration) {
    Exploration& now = *exploration;
    StateSpace& space = now.space;
    const std::int64_t before = spent;
    const std::int64_t work = space.work();
    for (std::size_t i = 0; i < wordBits && !space.complete(); ++i) space.expand();
    spent += 1 + (space.work() - work) / workPerUnit;
    const std::size_t own = now.asked.front();
    const std::vector<std::pair<std::size_t, Number>> met = label(board, now);
    if (const int depth = now.depth(); depth > now.refuted) {
        now.refuted = depth;
        refute(board, now.asked, depth);
    }
    for (const auto& [q, state] : met) meet(board, now, q, state);
    if (now.labelled == space.size() && space.complete()) exclude(board, now);
    if (exploration == all) {
        spentOnAll += spent - before;
    } else {
        spentOn[own] += spent - before;
    }
    const bool full = space.full() || space.memory() > parameters.memory;
    if (full && exploration == some) givenUp[own] = true;
    if (full || space.complete() || now.asked.empty()) exploration.reset();
}

/// Gives the questions that are met in states which had no label, each with the first of them.
std::vector<std::pair<std::size_t, Number>> Localization::label(const Board& board,
                                                                Exploration& exploration) {
    const std::size_t size = exploration.space.size();
    std::vector<std::pair<std::size_t, Number>> met;
    while (!exploration.asked.empty() && exploration.labelled < size &&
           (exploration.space.complete() || exploration.labelled + wordBits <= size)) {
        const std::size_t word = exploration.labelled / wordBits;
        Questions others;
        for (const std::size_t q : exploration.asked) {
            if (!left(board, q)) continue;
            const Condition& condition = board[q].condition;
            spent += 1 + static_cast<std::int64_t>(condition.tokens.size() / 4);
            const Labelling::Word may = exploration.labelling.label(condition, word).may;
            if (may == 0) {
                others.push_back(q);
            } else {
                const auto bit = static_cast<std::size_t>(std::countr_zero(may));
                met.emplace_back(q, static_cast<Number>(wordBits * word + bit));
            }
        }
        exploration.asked = std::move(others);
        exploration.labelled = std::min(size, exploration.labelled + wordBits);
    }
    return met;
}

void Localization::refute(Board& board, const Questions& questions, int depth) const {
    Questions open;
    depth = std::min(depth, board.range.to);
    for (const std::size_t q : questions) {
        if (left(board, q) && board[q].refuted < depth) open.push_back(q);
    }
    if (!open.empty()) board.refute(open, depth);
}

/// The state is the first one of the automata in which the question may be met.
void Localization::meet(Board& board, const Exploration& exploration, std::size_t question,
                        Number state) {
    const StateSpace& space = exploration.space;
    refute(board, {question}, space.depth(state) - 1);
    const Replay replay(space, state);
    if (!replay.blocking.empty()) {
        add(question, {replay.blocking.front()});
        return;
    }
    const Run run = replay.run();
    if (endsIn(network, run, board[question].condition)) {
        board.offer(run);
    } else {
        add(question, waitedFor(network, lastState(network, run), *automata[question]));
    }
}

void Localization::add(std::size_t question, const std::vector<uint>& missing) {
    std::vector<uint>& own = *automata[question];
    own.insert(own.end(), missing.begin(), missing.end());
    std::ranges::sort(own);
}

/// No state of the automata meets what is still asked.
void Localization::exclude(Board& board, const Exploration& exploration) {
    Questions unreachable;
    for (const std::size_t q : exploration.asked) {
        if (left(board, q)) unreachable.push_back(q);
    }
    if (unreachable.empty()) return;
    std::vector<uint> numbers;
    for (const uint a : exploration.space.automata()) {
        numbers.push_back(network.automata[a].number);
    }
    const std::string fault = board.exclude(unreachable, {{}, std::move(numbers)});
    assert(fault.empty());
    spent += checkCost * exploration.space.work() / workPerUnit;
}

} // namespace tervoxal
