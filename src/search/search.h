// The search for paths: for each of some conditions, a path of a network that meets it, the least
// length of one, or that there is none. Four share the work:
//
//     hunter    unrolls with actions in a fixed order     finds a path in few steps
//     refuter   unrolls with independent actions          refutes lengths where no path is known
//     climber   unrolls with one action in each step      refutes lengths, finds the least
//     learner   frames                                    proves that there is no path
//
// Refuter and climber go on from what the other has refuted. Which one comes further in the same
// time depends on the network: 87 against 60 steps on one, 22 against 40 on another.
//
// In an unrolling a step may be idle, so a depth that is refuted refutes all lengths up to it, and
// not each depth is asked. All speak of all conditions that are open for them, under the one
// assumption that some of these is met: one answer refutes them all, and a path is looked at for
// each.
//
// They take turns: the one that has done the least goes on, where what the hunter has done counts
// twice. Work is counted in clauses, conflicts and questions to a solver, not in seconds, so that
// the same input gives the same paths.

#pragma once

#include "certificate.h"
#include "condition.h"
#include "frames.h"
#include "run.h"
#include "tables.h"
#include "unrolling.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// What is known of one condition.
struct Finding {
    Condition condition;
    /// No path of the least asked length to this one meets it; one less than the least asked length
    /// if nothing is known.
    int refuted;
    bool found = false;
    Run path{};         // if found
    bool never = false; // no path of any length meets it
    /// Why that is so, if it was proved and not just seen that paths end.
    std::shared_ptr<const Certificate> certificate{};
    [[nodiscard]] int length() const { return static_cast<int>(path.size()); }
    /// No shorter path meets it.
    [[nodiscard]] bool least() const { return found && refuted + 1 >= length(); }
};

class Search {
public:
    struct Range {
        int from = 0;     // the least length asked for
        int to = 0;       // the greatest
        bool any = false; // any path will do, not only the shortest
    };
    /// What the search tells as it goes. Each may be empty.
    struct Listener {
        std::function<void()> refuted;              // of some condition a longer length
        std::function<void(const Finding&)> found;  // a path, or a shorter one
        std::function<void(const Finding&)> proved; // that there is none, by a certificate
        std::function<bool()> stop; // asked often: whether to end ahead of the answer
        /// Whether to go on for a proof where all lengths are refuted that are asked for.
        std::function<bool()> proving;
    };

    /// The model must outlive the search.
    Search(const NetTimedModel& model, std::vector<Condition> conditions, const Range& range,
           Listener listener);
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    ~Search();

    /// Searches until all is answered, or until it is stopped. Goes on where it was stopped.
    void run();

    // What others have found out. Not while it runs.

    /// A path that meets a condition. It counts if it is shorter than what is known.
    void offer(std::size_t question, Run path);
    /// No path of any length meets the conditions, if the certificate holds: gives what fails, or
    /// an empty text.
    std::string exclude(const std::vector<std::size_t>& questions, const Certificate& certificate);

    /// Whether nothing is left to find out about a condition.
    [[nodiscard]] bool settled(const Finding& finding) const;

    /// In the order of the conditions.
    [[nodiscard]] const std::vector<Finding>& findings() const { return all; }
    /// No path has more steps; -1 if that is not known.
    [[nodiscard]] int longest() const { return greatest; }
    /// What the paths speak of.
    [[nodiscard]] const Tables& networkTables() const { return tables; }

private:
    enum Worker : std::size_t { hunter, refuter, climber, learner };
    struct Engine;
    using Open = std::vector<std::size_t>;

    [[nodiscard]] int limit(const Finding& finding) const;
    [[nodiscard]] Open openFor(Worker worker) const;
    [[nodiscard]] Scope scopeOf(Steps steps) const;
    [[nodiscard]] std::int64_t work(Worker worker) const;
    void dismiss(Worker worker);
    Engine& engine(Worker worker);
    void hunt(const Open& open, bool alone);
    void climb(Worker worker, const Open& open, bool alone);
    void learn(const Open& open);
    Solver::Verdict ask(Engine& engine, int depth, const Open& open, int conflicts);
    void keep(std::size_t question, const Run& run);
    void refute(const Open& open, int depth);
    void lookForEnd(int depth, std::int64_t advance);
    [[nodiscard]] bool stopped() const { return listener.stop && listener.stop(); }

    const Tables tables;
    const Range range;
    const Listener listener;
    std::vector<Finding> all;
    std::array<std::unique_ptr<Engine>, 3> engines; // of all but the learner
    std::unique_ptr<Frames> frames;                 // of learner
    std::unique_ptr<Engine> walker;                 // one action in each step
    bool lost = false;                              // it did not get an answer
    int strolled = 0;                               // the length that was tried for
    int possible = 0;                               // there are paths of that many steps
    int greatest = -1;
};
