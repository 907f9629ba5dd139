// The search for paths: for each of some conditions, a path of a network that meets it, the least
// length of one, or that there is none.
#pragma once

#include "condition.h"
#include "run.h"
#include "tables.h"
#include "unrolling.h"

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

/// What is known of one condition.
struct Finding {
    Condition condition;
    /// No path of the least asked length to this one meets it; one less than the least asked length
    /// if nothing is known.
    int refuted;
    bool found = false;
    Run path{}; // if found
    bool never = false; // no path of any length meets it
    bool proved = false; // never, as was proved outside of the search
    [[nodiscard]] int length() const { return static_cast<int>(path.size()); }
    /// No shorter path meets it.
    [[nodiscard]] bool least() const { return found && refuted + 1 >= length(); }
};

class Search {
public:
    struct Range {
        int from = 0; // the least length asked for
        int to;       // the greatest
        bool any = false; // any path will do, not the shortest
    };
    /// What the search tells as it goes.
    struct Listener {
        std::function<void()> refuted = [] {}; // a longer length for some
        std::function<void(const Finding&)> found = [](const Finding&) {}; // a path or a shorter one
        std::function<void(const Finding&)> proved = [](const Finding&) {}; // by exclude
        std::function<bool()> stop; // asked often: whether to end ahead of the answer; may be empty
    };

    Search(const NetTimedModel& model, std::vector<Condition> conditions, const Range& range,
           Listener listener);
    ~Search();

    /// Searches until all is answered, or until it is stopped. Goes on where it was stopped.
    void run();

    // What others have found out. Not while it runs.

    /// A path that meets a condition. It counts if it is shorter than what is known.
    void offer(std::size_t question, Run path);
    /// No path of any length meets a condition.
    void exclude(std::size_t question);

    [[nodiscard]] const std::vector<Finding>& findings() const { return all; }
    /// No path has more steps; -1 if that is not known.
    [[nodiscard]] int longest() const { return greatest; }
    [[nodiscard]] const Tables& networkTables() const { return tables; }

    /// Whether nothing is left to find out about it.
    [[nodiscard]] bool settled(const Finding& finding) const;

private:
    struct Engine;

    [[nodiscard]] bool hunted(const Finding& finding) const;
    void begin();
    bool hunt(int conflicts);
    bool climb(int conflicts);
    [[nodiscard]] bool endless(Engine& engine, int depth);
    Solver::Verdict ask(Engine& engine, const std::vector<std::size_t>& open, int conflicts);

    const Tables tables;
    const Range range;
    const Listener listener;
    std::vector<Finding> all;
    int greatest = -1;
    int runnable = 0; // there are paths of that many steps
    std::unique_ptr<Engine> hunter;
    std::unique_ptr<Engine> climber;
    int huntDepth = 0;
};
