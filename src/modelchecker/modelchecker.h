// A model checker at work on the question whether the output of a circuit can become 1, beside
// whatever this process does meanwhile: ABC's property directed reachability (IC3), which ends in
// an inductive invariant or in a path.

#pragma once

#include "boolean/aiger.h"
#include "programs/children.h"
#include "programs/directories.h"

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>

namespace tervoxal {

/// What came out of it.
struct Proof {
    enum class Kind { proved, refuted, none };

    Kind kind;
    /// The invariant or the witness, as the model checker wrote it; else why there is none.
    std::string text;
};

/// The absolute file of the first on the path of berkeley-abc, yosys-abc and abc, which are names
/// of one program; empty if there is none.
[[nodiscard]] std::string modelCheckerFile();

class ModelChecker {
public:
    /// Begins with a circuit, which has to be without names, since the invariant could not tell
    /// them. The children must outlive it.
    ModelChecker(Children& children, const Circuit& circuit, std::chrono::seconds limit);
    /// Ends the model checker if it is still at work, and removes its files.
    ~ModelChecker();
    ModelChecker(const ModelChecker&) = delete;
    ModelChecker& operator=(const ModelChecker&) = delete;

    /// What came out of it; nothing while it is at work. Takes what the children have told last.
    [[nodiscard]] std::optional<Proof> proof(const ChildEvent& event);
    /// What it is called.
    [[nodiscard]] std::string name() const;

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] Proof ended(int status) const;

    Children& children;
    const std::chrono::seconds limit;
    const Clock::time_point begin = Clock::now();
    const std::string file = modelCheckerFile();
    const TemporaryDirectory directory;
    std::string problem; // why it was not started
    pid_t child = 0;
};

} // namespace tervoxal
