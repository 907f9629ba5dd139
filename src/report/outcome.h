// What was found out about a question, in words.

#pragma once

#include "certificate/certificate.h"
#include "observer/observednetwork.h"
#include "replay/path.h"

#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace tervoxal {

/// What is known of a question, by whom ever it was found out.
struct Known {
    int refuted = -1;                                 // no path of up to that many steps meets it
    std::optional<Path> path{};                       // that meets it
    bool unreachable = false;                         // no path of any length meets it
    std::shared_ptr<const Certificate> certificate{}; // if unreachable
    /// The network with an observer on which this was found out, if it was: the certificate is
    /// about it.
    std::shared_ptr<const ObservedNetwork> observed{};
    bool settled = false; // nothing is left to find out that was asked for
    bool claim = false;   // that holds unless a path is found that shows the contrary
    std::string open{};   // why nothing is known, if there is more to say than the time

    /// Whether there is a path, and no shorter one.
    [[nodiscard]] bool least() const { return path && refuted + 1 >= path->k; }
};

/// What was asked of each question: paths of 0 to `to` steps.
struct Lengths {
    static constexpr int unlimited = std::numeric_limits<int>::max();

    int to = unlimited;
    bool any = false; // any path will do, not only the shortest
};

struct Outcome {
    enum class Kind { path, never, none, open };

    Kind kind;
    std::string detail; // what follows the word for the kind
    bool claim = false; // a path shows that it does not hold, never that it does

    /// For a table: "path of 4 steps", "never: ...", "none of 0 to 20 steps"; of a claim "does not
    /// hold: path of 4 steps", "holds: ...", "holds on all paths of 0 to 20 steps".
    [[nodiscard]] std::string brief() const;
    /// Alone: "a path of 4 steps", "never, at any length: ...", "no path of 0 to 20 steps"; of a
    /// claim as in a table.
    [[nodiscard]] std::string full() const;
};

/// Final where the question is settled.
[[nodiscard]] Outcome outcomeOf(const Known& known, const Lengths& lengths);

/// " of 0 to 17 steps".
[[nodiscard]] std::string ofLengths(int to);

} // namespace tervoxal
