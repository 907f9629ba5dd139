// The side file of a run, read back. It has to be that of the network and the path length at hand.

#pragma once

#include "model/ntamodel.h"

#include <string>

namespace tervoxal {

/// Reads name + ".lck", which a run of path length k on the network wrote, and gives its last
/// number: the largest state variable in the clauses. The network must be laid out. A file that is
/// missing, malformed or of another run ends the process with status 1 and one line on standard
/// error.
[[nodiscard]] int readSideFile(const NetTimedModel& model, int k, const std::string& name);

} // namespace tervoxal
