// Parts of reports in JSON, for those who show more than one path. What they write is valid UTF-8,
// whatever bytes the names have.

#pragma once

#include "model/names.h"
#include "replay/walk.h"

#include <ostream>
#include <string>

namespace tervoxal {

/// A JSON string.
[[nodiscard]] std::string jsonString(const std::string& text);
/// The members `automata` and `actionNames`.
void showJsonNetwork(std::ostream& out, const NetTimedModel& model, const Names& names);
/// The member `positions`, of a walk at position 0.
void showJsonPositions(std::ostream& out, Walk walk);

} // namespace tervoxal
