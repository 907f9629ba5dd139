// The question for all path lengths, put to a model checker: tervoxal-aiger writes it as a circuit,
// and berkeley-abc answers by property directed reachability (IC3).

#pragma once

#include "children.h"

#include <chrono>
#include <filesystem>
#include <string>

/// What came out of it.
struct Proof {
    bool proved;      // no path of any length meets the formula
    std::string text; // what else it says, or why it says nothing
    int signal;       // not 0: ended by it, ahead of an answer
};

/// Asks about the network and the formula of these names in the directory, for the given time at
/// most. Leaves the circuit in question.aig there, and what the model checker prints in
/// question.proof. All children have ended when it comes back.
[[nodiscard]] Proof prove(const std::string& tervoxalAiger, const std::string& network,
                          const std::string& formula, std::chrono::seconds limit,
                          Children& children, const std::filesystem::path& directory);
