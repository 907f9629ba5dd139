// Answers to questions about paths. Two ways are gone in turns:
//
//  - the states of the whole network are searched, and once they are all known, fixpoints answer
//    every question;
//  - a question that one path can show is searched for by the engines, on the network with an
//    observer. That has no limit of states.
//
// The states come first, as far as they are few. Then each question has its turn, and the states
// again, in shares that double from round to round.

#pragma once

#include "fixpoint/statebystate.h"
#include "paths/observedsearch.h"
#include "report/answers.h"
#include "report/progress.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tervoxal {

class PathSearch {
public:
    struct Setting {
        std::size_t states = 0; // so many may be searched
        bool least = false;     // the shortest paths, whatever it takes
        /// Whether to go on for a proof where all lengths are refuted that are asked for.
        std::function<bool()> proving{};
    };
    using Stop = std::function<bool()>;

    /// Takes those of the questions that are about paths. All have to outlive it.
    PathSearch(const FlatNetwork& network, const Names& names, const Answers::Asked& asked,
               Answers& answers, Progress& progress, Setting setting);

    /// Whether there is something left to do.
    [[nodiscard]] bool open() const { return !left.empty(); }
    /// Works for about its share of time, longer only where all states are known and a question is
    /// answered. `stop` is asked often whether to end before that.
    void turn(const Stop& stop);
    /// The time of the next turn.
    [[nodiscard]] std::chrono::milliseconds share() const;
    /// What is being done, for who waits.
    [[nodiscard]] std::string status() const;
    /// Nothing more is searched: what is left stays open.
    void giveUp();

private:
    /// A question that is still open.
    struct Asking {
        std::size_t question;
        bool begun = false;
        std::shared_ptr<const ObservedNetwork> observed{}; // null where the engines can do no more
        std::unique_ptr<ObservedSearch> search{};          // that goes on
    };

    [[nodiscard]] std::shared_ptr<const ObservedNetwork> observedBy(std::size_t question) const;
    void explore(std::size_t most, const Stop& stop);
    void answerFromStates(std::size_t question);
    void search(Asking& its, const Stop& stop);
    void learn(const Asking& its);
    void leave(std::size_t index);

    const FlatNetwork& network;
    const Names& names;
    const Answers::Asked& asked;
    Answers& answers;
    Progress& progress;
    const Setting setting;
    std::optional<StateByState> states; // null where there are too many
    bool explored = false;              // all of them
    std::vector<Asking> left;
    std::size_t next = 0; // index of the one whose turn it is; after the last one, the states
    int round = -1;       // -1 for the first states
};

} // namespace tervoxal
