// The board of a search: some conditions, the questions whether a reachable state meets each, and
// what is known of them so far. Engines read it and write on it; it alone changes what it holds,
// and it believes nothing that it can check: a run is cut to what meets the condition, and a
// certificate is checked.
//
// Questions are numbered from 0, in the order of the conditions. What is known of one only grows:
// the length up to which paths are refuted, a shorter path, that there is none of any length. So do
// the facts, which are of all questions.

#pragma once

#include "certificate/certificate.h"
#include "model/flatnetwork.h"
#include "query/condition.h"
#include "search/evaluator.h"
#include "search/firing.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tervoxal {

class Board {
public:
    /// What is known of one question.
    struct Entry {
        Condition condition;
        int refuted = -1; // no path of up to that many steps meets it
        bool found = false;
        Run path{};                                       // if found
        bool unreachable = false;                         // no path of any length meets it
        std::shared_ptr<const Certificate> certificate{}; // if unreachable
        bool closed = false;                              // enough was spent on a shorter path

        [[nodiscard]] int length() const { return static_cast<int>(path.size()); }
        /// No shorter path meets it.
        [[nodiscard]] bool least() const { return found && refuted + 1 >= length(); }
    };
    /// What holds in each reachable state: some automaton is in one of these locations. They are
    /// indices of the network, ascending.
    struct Fact {
        std::vector<uint> locations;
        Certificate::Weighed proof; // of one set, that of all other states
    };
    /// What is asked of each: paths of 0 to `to` steps.
    struct Range {
        int to = 0;
        bool any = false;   // any path will do, not only the shortest
        bool least = false; // the shortest, whatever it takes
    };
    /// Whom the board tells what is new, by the index of the question. Each may be empty.
    struct Listener {
        std::function<void(std::span<const std::size_t>)>
            refuted;                            // a longer length of some of them
        std::function<void(std::size_t)> found; // a path, or a shorter one
        std::function<void(std::size_t)> unreachable;
        std::function<void(std::size_t)> closed; // enough was spent on a shorter path
        /// Asked often: whether to end before the answer. It may only look.
        std::function<bool()> stop;
        /// Whether to go on for a proof where all lengths are refuted that are asked for. What it
        /// denied once it denies for good.
        std::function<bool()> proving;
    };

    /// The network must outlive the board.
    Board(const FlatNetwork& network, std::vector<Condition> conditions, Range range);

    [[nodiscard]] std::size_t size() const { return entries.size(); }
    [[nodiscard]] const Entry& operator[](std::size_t question) const { return entries[question]; }
    /// Whether nothing is left to find out about a question that was asked for.
    [[nodiscard]] bool settled(std::size_t question) const;
    /// Whether it is to be found out if there is a path at all.
    [[nodiscard]] bool undecided(std::size_t question) const;
    /// The greatest length at which a path is to be looked for: shorter than the one that is known.
    [[nodiscard]] int limit(std::size_t question) const;
    [[nodiscard]] bool stopped() const {
        return listener != nullptr && listener->stop && listener->stop();
    }
    [[nodiscard]] bool proving() const {
        return listener != nullptr && listener->proving && listener->proving();
    }

    /// No path of up to `depth` steps meets any of the questions.
    void refute(std::span<const std::size_t> questions, int depth);
    /// A run, which is looked through for all questions, at each state of it. It counts for those
    /// that it meets where what is left of it is shorter than what is known. Linear in the run and
    /// what changes along it, and in what is left of it for each question for which it counts.
    /// Precondition: it is a run of the network.
    void offer(const Run& run);
    /// No path of any length meets the questions, if the certificate holds: gives what fails, or an
    /// empty text. It is kept without the sets that weights exclude but that it does not need.
    std::string exclude(std::span<const std::size_t> questions, Certificate certificate);
    /// No reachable state is in one of the sets, if the weights exclude them: gives what fails, or
    /// an empty text.
    std::string learn(const Certificate::Weighed& weighed);
    /// In the order in which they were learned.
    [[nodiscard]] std::span<const Fact> facts() const { return learned; }

    /// Enough was spent on a path shorter than the one that is known, unless the least is wanted.
    void close(std::size_t question);

    /// Who is told from now on; null for nobody.
    void tell(const Listener* whom) { listener = whom; }

    const FlatNetwork& network;
    const Range range;

private:
    void watch();
    [[nodiscard]] bool isOpen(const Entry& entry) const;

    std::vector<Entry> entries;
    std::vector<Fact> learned;
    std::optional<Evaluator> evaluator; // from the first run on
    std::vector<std::size_t> watched;   // by condition of the evaluator, the question
    std::size_t givenUp = 0;            // of them
    const Listener* listener = nullptr;
};

} // namespace tervoxal
