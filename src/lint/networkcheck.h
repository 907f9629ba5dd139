// Looks for mistakes in a network file. What a run refuses is an error. What a run takes and hardly
// anybody means is a warning.
//
// A run ends at its first error. The check goes on at the next automaton.

#pragma once

#include "text/diagnostics.h"
#include "text/uint.h"

#include <array>
#include <set>
#include <string>
#include <string_view>

namespace tervoxal {

/// The kinds of notes that are a matter of opinion.
inline constexpr std::array<std::string_view, 5> noteKinds = {
    "dead-action", "dead-end", "near-number", "unnamed-action", "unreachable"};

/// What is known of a network whose file was checked.
struct CheckedNetwork {
    /// Whether a run takes the file. If it does not, props may lack some.
    bool taken = false;
    /// The propositions that some location carries.
    std::set<uint> props;
};

/// Checks a network file, named with its suffix. It is kept in memory; the time is linear but for
/// sorting. A file that cannot be opened ends the process with status 1 and one line on standard
/// error.
CheckedNetwork checkNetwork(const std::string& file, Diagnostics& findings);

} // namespace tervoxal
