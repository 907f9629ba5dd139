#include "search/pdr.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <span>
#include <utility>

namespace tervoxal {

PropertyDirectedReachability::PropertyDirectedReachability(const Board& board,
                                                           const Parameters& parameters)
    : board(board), network(board.network), parameters(parameters), lemmas(1) {}

std::string PropertyDirectedReachability::status() const {
    return "property directed reachability, frame " + std::to_string(lemmas.size() - 1);
}

Questions PropertyDirectedReachability::open(const Board& board, const Questions& among) const {
    Questions open;
    for (const std::size_t q : among) {
        if (board.undecided(q)) open.push_back(q);
    }
    return open;
}

/// A solver that has the lemmas alone, without those that have been in earlier frames.
void PropertyDirectedReachability::makeSolver() {
    literals.reset();
    unrolling.reset();
    solver = std::make_unique<Solver>();
    solver->setStop([this] { return board.stopped(); });
    unrolling = std::make_unique<Unrolling>(network, *solver, Scope{StepKind::interleaving, false});
    unrolling->step();
    literals = std::make_unique<ConditionLiterals>(*unrolling, *solver);
    spent += unrolling->size();
    active.clear();
    given = 0;
    givenLiterals = 0;
    for (std::size_t i = 0; i < lemmas.size(); ++i) {
        addFrame(i);
        for (const Locations& lemma : lemmas[i]) addLemma(lemma, i);
    }
    facts = 0;
    learn();
}

/// What the board knows to hold always, as far as it is new.
void PropertyDirectedReachability::learn() {
    const std::int64_t before = unrolling->size();
    for (; facts < board.facts().size(); ++facts) {
        unrolling->always(board.facts()[facts].locations);
    }
    spent += unrolling->size() - before;
}

/// What is known of a frame before all lemmas: the levels of the locations.
void PropertyDirectedReachability::addFrame(std::size_t frame) {
    active.push_back(solver->newVariable());
    if (frame > 0) solver->add({-active[frame - 1], active[frame]});
    for (uint l = 0; l < network.locations.size(); ++l) {
        if (frame == 0 && isInitial(l)) solver->add({-active[frame], here(l)});
        if (network.locations[l].level == frame + 1) solver->add({-active[frame], -here(l)});
    }
}

void PropertyDirectedReachability::addLemma(const Locations& lemma, std::size_t frame) {
    std::vector<int> clause = {-active[frame]};
    for (const uint l : lemma) clause.push_back(here(l));
    clause.push_back(0);
    solver->add(clause);
    ++given;
    givenLiterals += static_cast<std::int64_t>(clause.size());
}

Solver::Verdict PropertyDirectedReachability::solve() {
    const std::int64_t conflictsBefore = solver->conflicts();
    const Solver::Verdict verdict = solver->solve(-1);
    count(solver->conflicts() - conflictsBefore);
    return verdict;
}

/// One more query.
void PropertyDirectedReachability::count(std::int64_t conflicts) {
    // A question, or a conflict, takes about as long as it takes to give the solver one of that
    // many of the literals.
    constexpr std::int64_t share = 200;
    spent += (1 + conflicts) * ((unrolling->size() + givenLiterals) / share + 1);
    ++queries;
}

bool PropertyDirectedReachability::holdsInitially(const Locations& lemma) const {
    return std::ranges::any_of(lemma, [&](uint l) { return isInitial(l); });
}

bool PropertyDirectedReachability::hasInitial(const Locations& cube) const {
    return std::ranges::all_of(cube, [&](uint l) { return isInitial(l); });
}

bool PropertyDirectedReachability::blocked(std::size_t frame, const Locations& cube) {
    solver->assume(active[frame]);
    for (const uint l : cube) solver->assume(here(l));
    return solve() == Solver::Verdict::unsatisfiable; // sat(F[frame] & cube)
}

/// Whether a step leads into the cube from a state of the frame that is not in it.
Solver::Verdict PropertyDirectedReachability::predecessor(std::size_t frame,
                                                          const Locations& cube) {
    std::vector<int> outside;
    for (const uint l : cube) outside.push_back(-here(l));
    solver->assume(active[frame]);
    solver->constrain(outside);
    for (const uint l : cube) solver->assume(there(l));
    return solve(); // sat(F[frame] & !cube & T & cube')
}

/// Whether every step from a state of the frame in which the lemma holds leads to one in which it
/// holds. False where that is not known, since it was stopped.
bool PropertyDirectedReachability::inductive(const Locations& lemma, std::size_t frame) {
    std::vector<int> inside;
    for (const uint l : lemma) inside.push_back(here(l));
    solver->assume(active[frame]);
    solver->constrain(inside);
    for (const uint l : lemma) solver->assume(-there(l));
    return solve() == Solver::Verdict::unsatisfiable; // sat(F[frame] & lemma & T & !lemma')
}

void PropertyDirectedReachability::turn(Board& board, const Questions& open, bool /*alone*/) {
    if (!solver) makeSolver();
    learn();
    level.resize(board.size());
    const std::int64_t end = queries + parameters.turn;
    if (!std::ranges::binary_search(open, question)) queue.clear();
    while (queries < end && !board.stopped()) {
        if (queue.empty()) {
            const auto next = std::ranges::upper_bound(open, question);
            question = next == open.end() ? open.front() : *next;
            if (begin(board)) return;
        } else if (block(board)) {
            queue.clear();
            board.offer(path());
            return;
        }
    }
}

/// Looks for a state of the question's frame that meets it, the first obligation. If there is none,
/// the next frame is the question's. True if the board was told something.
bool PropertyDirectedReachability::begin(Board& board) {
    if (given > parameters.rebuild) {
        std::size_t held = 0;
        for (const auto& own : lemmas) held += own.size();
        if (given > 3 * held) makeSolver();
    }
    obligations.clear();
    const std::size_t frame = level[question];
    const Condition& condition = board[question].condition;
    const int goal = literals->literal(condition, 0);
    solver->assume(active[frame]);
    solver->assume(goal);
    const Solver::Verdict verdict = solve(); // sat(F[frame] & P)
    if (verdict == Solver::Verdict::unknown) return false;
    if (verdict == Solver::Verdict::satisfiable) {
        obligations.push_back({literals->cube(condition), {}, 0});
        count(0);
        queue[frame].push_back(0);
        if (!hasInitial(obligations[0].cube)) return false;
        queue.clear();
        board.offer({});
        return true;
    }
    if (frame + 1 == lemmas.size()) {
        propagate();
        if (board.stopped()) return false;
        lemmas.emplace_back();
        addFrame(frame + 1);
    }
    ++level[question];
    for (std::size_t i = std::max<std::size_t>(1, network.lastLevel); i <= frame; ++i) {
        if (!lemmas[i].empty()) continue;
        const std::string fault = board.exclude(std::span(&question, 1), invariant(i));
        assert(fault.empty());
        return true;
    }
    const auto length =
        static_cast<int>(std::min<std::size_t>(frame, std::numeric_limits<int>::max()));
    board.refute(std::span(&question, 1), std::min(length, board.range.to));
    return true;
}

/// One step back from the obligation in the earliest frame, or a lemma that excludes it. True if
/// that has come to the initial state.
bool PropertyDirectedReachability::block(Board& board) {
    const std::size_t frame = queue.begin()->first;
    const std::size_t at = queue.begin()->second.back();
    const Locations cube = obligations[at].cube;
    const std::size_t last = level[question];
    // Enqueued again at the next frame, as usual in PDR.
    const auto blockedUpTo = [&](std::size_t upTo) {
        std::vector<std::size_t>& here = queue[frame];
        here.pop_back();
        if (here.empty()) queue.erase(frame);
        if (upTo < last) queue[upTo + 1].push_back(at);
    };
    if (blocked(frame, cube)) {
        blockedUpTo(frame);
        return false;
    }
    if (!obligations[at].allowed) {
        if (exclude(board, cube)) {
            blockedUpTo(last);
            return false;
        }
        obligations[at].allowed = true;
    }
    const Solver::Verdict reached = predecessor(frame - 1, cube);
    if (reached == Solver::Verdict::unknown) return false;
    if (reached == Solver::Verdict::unsatisfiable) {
        Locations lemma = generalize(cube, frame);
        std::size_t upTo = frame;
        while (upTo + 1 < lemmas.size() && inductive(lemma, upTo)) ++upTo;
        keep(std::move(lemma), upTo);
        blockedUpTo(upTo);
        return false;
    }
    const Run step = unrolling->run(1);
    assert(step.size() == 1);
    obligations.push_back({preimage(step[0], cube), step[0], at});
    if (hasInitial(obligations.back().cube)) return true;
    assert(frame > 1);
    queue[frame - 1].push_back(obligations.size() - 1);
    return false;
}

/// Whether weights are found that exclude the cube, where it is worth the trouble.
bool PropertyDirectedReachability::exclude(Board& board, const Locations& cube) {
    if (!LinearProgram::available) return false;
    if (!finder) finder = std::make_unique<WeightFinder>(network);
    const bool pays = excluded * parameters.paying >= weighed;
    if (!pays && finder->cost() * parameters.weighing > spent) return false;
    ++weighed;
    const auto found = finder->exclude(cube, [&board] { return board.stopped(); });
    if (!found || !board.learn(*found).empty()) return false;
    ++excluded;
    learn();
    return true;
}

/// From the last obligation, which has the initial state, to the question.
Run PropertyDirectedReachability::path() const {
    Run path;
    for (std::size_t o = obligations.size() - 1; o != 0; o = obligations[o].next) {
        path.push_back(obligations[o].firing);
    }
    return path;
}

/// The lemma is of the frame and of those before it. What it implies goes: on a network of
/// 230 automata, 2000 lemmas are left of 16900, and the proof takes 3.5 s in place of more than 8.
void PropertyDirectedReachability::keep(Locations lemma, std::size_t frame) {
    addLemma(lemma, frame);
    for (std::size_t i = 1; i <= frame; ++i) {
        std::erase_if(lemmas[i], [&](const Locations& other) {
            return other.size() >= lemma.size() && std::ranges::includes(other, lemma);
        });
    }
    lemmas[frame].push_back(std::move(lemma));
}

/// The states from which these moves lead into the cube, all of them.
PropertyDirectedReachability::Locations
PropertyDirectedReachability::preimage(const Firing& firing, const Locations& cube) const {
    Locations states;
    std::vector<uint> moving;
    for (const uint m : firing.moves) {
        states.push_back(network.moves[m].source);
        moving.push_back(network.locations[states.back()].automaton);
    }
    std::sort(moving.begin(), moving.end());
    for (const uint l : cube) {
        if (!std::ranges::binary_search(moving, network.locations[l].automaton))
            states.push_back(l);
    }
    std::sort(states.begin(), states.end());
    return states;
}

/// A lemma of the frame that excludes the cube. Precondition: no step leads there from the frame
/// before, as the solver has just said.
///
/// First the automata that the solver has made use of, with all locations but that of the cube; of
/// these the locations that it has made use of; then each automaton is left out if that will do. To
/// leave out single locations as well took more time than it saved, on random networks of
/// 20 automata 5.6 s in place of 4.9.
PropertyDirectedReachability::Locations
PropertyDirectedReachability::generalize(const Locations& cube, std::size_t frame) {
    Locations used;
    for (const uint l : cube) {
        if (solver->failed(there(l))) used.push_back(l);
    }
    assert(!hasInitial(used)); // to which an idle step leads from the initial state
    Locations lemma;
    std::vector<uint> automata;
    for (const uint l : used) {
        const uint a = network.locations[l].automaton;
        automata.push_back(a);
        for (const uint k : network.locationsOf(a)) {
            if (k != l) lemma.push_back(k);
        }
    }
    if (!inductive(lemma, frame - 1)) return lemma; // stopped
    shrinkToCore(lemma);
    for (const uint a : automata) {
        Locations less = lemma;
        std::erase_if(less, [&](uint l) { return network.locations[l].automaton == a; });
        const bool tried = less.size() < lemma.size() && holdsInitially(less);
        if (!tried || !inductive(less, frame - 1)) continue;
        shrinkToCore(less);
        lemma.swap(less);
    }
    return lemma;
}

/// What is left of a lemma still holds in the initial state.
void PropertyDirectedReachability::shrinkToCore(Locations& lemma) const {
    Locations used;
    for (const uint l : lemma) {
        if (solver->failed(-there(l))) used.push_back(l);
    }
    assert(holdsInitially(used)); // else an idle step would lose it, from the initial state
    lemma.swap(used);
}

/// Lemmas that hold in the next frame as well go there. Where none is left, the frame is the same
/// as the next one: an invariant.
void PropertyDirectedReachability::propagate() {
    for (std::size_t i = 1; i + 1 < lemmas.size(); ++i) {
        std::vector<Locations> stay;
        for (Locations& lemma : lemmas[i]) {
            if (inductive(lemma, i)) {
                addLemma(lemma, i + 1);
                lemmas[i + 1].push_back(std::move(lemma));
            } else {
                stay.push_back(std::move(lemma));
            }
        }
        lemmas[i].swap(stay);
        if (lemmas[i].empty() && i >= network.lastLevel) return;
    }
}

/// What holds in a frame that is the same as the next one.
Certificate PropertyDirectedReachability::invariant(std::size_t frame) const {
    Certificate certificate;
    for (std::size_t i = frame; i < lemmas.size(); ++i) {
        for (const Locations& lemma : lemmas[i]) {
            Certificate::Set& set = certificate.sets.emplace_back();
            for (auto l = lemma.begin(); l != lemma.end();) {
                const uint a = network.locations[*l].automaton;
                Certificate::Places places{network.automata[a].number, {}};
                for (const uint k : network.locationsOf(a)) {
                    if (l != lemma.end() && *l == k) {
                        ++l;
                    } else {
                        places.locations.push_back(network.locations[k].number);
                    }
                }
                set.push_back(std::move(places));
            }
        }
    }
    std::sort(certificate.sets.begin(), certificate.sets.end());
    for (std::size_t f = 0; f < facts; ++f) {
        certificate.weighed.push_back(board.facts()[f].proof);
    }
    certificate.weighed = merged(std::move(certificate.weighed));
    return certificate;
}

} // namespace tervoxal
