#include "paths/pathsearch.h"

#include "certificate/certificate.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace tervoxal {

namespace {

using Clock = std::chrono::steady_clock;

/// As many states are searched before anything else, if that takes no more than a second.
constexpr std::size_t firstStates = 200000;
/// What the network with an observer may have in transitions and the like: about a second.
constexpr std::size_t mostObserved = 500000;
/// As many searches are kept while others have their turn; more would take too much memory.
constexpr std::size_t mostKept = 8;

/// What is known of a question when all states have been searched for it.
void learnAnswer(Known& known, StateByState::Answer answer, std::size_t states,
                 const Lengths& lengths) {
    known.observed.reset();
    if (!answer.witness) {
        Certificate certificate;
        certificate.states = states;
        known.unreachable = true;
        known.settled = true;
        known.certificate = std::make_shared<const Certificate>(std::move(certificate));
        return;
    }
    const int length = answer.witness->path.k;
    if (answer.witness->least) known.refuted = std::min(length - 1, lengths.to);
    known.settled = answer.witness->least || (lengths.any && length <= lengths.to);
    known.path = std::move(answer.witness->path);
}

} // namespace

PathSearch::PathSearch(const FlatNetwork& network, const Names& names, const Answers::Asked& asked,
                       Answers& answers, Progress& progress, Setting setting)
    : network(network), names(names), asked(asked), answers(answers), progress(progress),
      setting(std::move(setting)) {
    for (std::size_t q = 0; q < asked.questions.size(); ++q) {
        if (!asked.questions[q].temporal) continue;
        answers.known(q).claim = isClaim(*asked.questions[q].temporal);
        left.push_back({q});
    }
    if (open()) states.emplace(network);
}

std::chrono::milliseconds PathSearch::share() const {
    return std::chrono::milliseconds(500) * (1 << std::clamp(round, 0, 20));
}

std::string PathSearch::status() const {
    if (round >= 0 && next < left.size() && left[next].search) return left[next].search->status();
    return states ? std::to_string(states->states()) + " states" : "begins";
}

void PathSearch::turn(const Stop& stop) {
    const Clock::time_point end = Clock::now() + (round < 0 ? 2 : 1) * share();
    const Stop over = [&] { return stop() || Clock::now() >= end; };
    if (explored) {
        answerFromStates(left.front().question);
        leave(0);
    } else if (round < 0 || next == left.size()) {
        if (states)
            explore(round < 0 ? std::min(firstStates, setting.states) : setting.states, over);
        ++round;
        next = 0;
    } else {
        search(left[next], over);
    }
}

/// Finds states. Beyond what is allowed they are of no use.
void PathSearch::explore(std::size_t most, const Stop& stop) {
    bool stopped = false;
    explored = states->explore(most, [&] { return stopped = stopped || stop(); });
    if (!explored && !stopped && most == setting.states) states.reset();
}

void PathSearch::answerFromStates(std::size_t q) {
    const Question& question = asked.questions[q];
    Known& known = answers.known(q);
    StateByState::Answer answer =
        states->answer(*question.temporal, question.fairness, asked.lengths.any);
    if (answer.unfair) {
        progress.end();
        std::cerr << "warning: " << (asked.questions.size() > 1 ? question.name + ": " : "")
                  << "no infinite path is fair, so none counts\n";
    }
    learnAnswer(known, std::move(answer), states->states(), asked.lengths);
    const bool within = known.path && known.path->k <= asked.lengths.to;
    if (within) progress.found(answers, q);
    if (!within || !known.settled) progress.settled(answers, q);
}

/// The network on which the engines can answer a question; null if they cannot.
std::shared_ptr<const ObservedNetwork> PathSearch::observedBy(std::size_t q) const {
    const Question& question = asked.questions[q];
    const TemporalFormula formula = sought(*question.temporal);
    if (needsSeveralPaths(formula)) return {};
    std::shared_ptr<const ObservedNetwork> result =
        observed(network.model, names, formula, question.fairness.conditions,
                 isClaim(*question.temporal), mostObserved);
    if (result && !result->loopless) result.reset();
    return result;
}

void PathSearch::search(Asking& its, const Stop& stop) {
    const Known& known = answers.known(its.question);
    if (!its.begun) its.observed = observedBy(its.question);
    its.begun = true;
    if (its.observed && !its.search) {
        its.search = std::make_unique<ObservedSearch>(
            network.model, its.observed,
            Board::Range{asked.lengths.to, asked.lengths.any, setting.least});
    }
    const bool more = its.search && its.search->run(stop, setting.proving, [&] { learn(its); });
    if (!more) its.observed.reset();
    if (!more || left.size() > mostKept) its.search.reset();
    if (!more && (known.settled || !states)) {
        leave(next);
    } else {
        ++next;
    }
}

void PathSearch::learn(const Asking& its) {
    Known& known = answers.known(its.question);
    const int refuted = known.refuted;
    const int length = known.path ? known.path->k : Lengths::unlimited;
    const bool unreachable = known.unreachable;
    its.search->tell(known);
    if (known.path && known.path->k < length && known.path->k <= asked.lengths.to) {
        progress.found(answers, its.question);
    }
    if (known.refuted > refuted) progress.refuted(answers, its.question);
    const bool settled = known.settled && !progress.told(its.question);
    if (known.unreachable ? !unreachable : settled) progress.settled(answers, its.question);
}

/// A question is not searched any more.
void PathSearch::leave(std::size_t index) {
    const std::size_t q = left[index].question;
    left.erase(left.begin() + static_cast<std::ptrdiff_t>(index));
    Known& known = answers.known(q);
    if (known.settled || explored) return;
    known.open = "open: more than " + std::to_string(setting.states) +
                 " states, --states=NUMBER searches more";
    progress.settled(answers, q);
}

void PathSearch::giveUp() {
    for (const Asking& its : left) {
        Known& known = answers.known(its.question);
        if (!known.settled) known.open = "not all states were found in time";
    }
    left.clear();
}

} // namespace tervoxal
