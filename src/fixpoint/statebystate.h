// Answers to questions about paths, state by state: all states of the network are found, and then
// where the formula holds.

#pragma once

#include "fixpoint/witness.h"
#include "query/temporalformula.h"
#include "statespace/statespace.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

namespace tervoxal {

class StateByState {
public:
    /// The network must outlive it.
    explicit StateByState(const FlatNetwork& network);

    /// Finds the states, up to `most`, unless it is stopped: whether they are all found. Goes on
    /// where it was.
    bool explore(std::size_t most, const std::function<bool()>& stop);

    struct Answer {
        std::optional<Witness> witness; // shows what is sought
        bool unfair;                    // no infinite path is fair
    };
    /// A path that shows what is sought of a question (see sought): at the initial state for a
    /// claim, else where it holds first. Nothing if there is none; then the plain code has searched
    /// all states once more and says the same, or else the process ends with status 1 and one line
    /// on standard error. Precondition, asserted: all states are found.
    [[nodiscard]] Answer answer(const TemporalFormula& question, const Fairness& fairness,
                                bool any) const;

    [[nodiscard]] std::size_t states() const { return space.size(); }

private:
    const Participation participation;
    StateSpace space;
};

} // namespace tervoxal
