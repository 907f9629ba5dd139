// Parts of reports in JSON, for those who show more than one path. What they write is valid UTF-8,
// whatever bytes the names have.

#pragma once

#include "model/names.h"
#include "replay/walk.h"

#include <ostream>
#include <string>
#include <string_view>

namespace tervoxal {

/// What stands between two elements: nothing before the first one.
class Separator {
public:
    explicit Separator(std::string_view between) : between(between) {}
    std::string_view next() { return first ? first = false, "" : between; }

private:
    std::string_view between;
    bool first = true;
};

/// A JSON string.
[[nodiscard]] std::string jsonString(const std::string& text);
/// The members `automata` and `actionNames`.
void showJsonNetwork(std::ostream& out, const NetTimedModel& model, const Names& names);
/// Of a path that shows a formula about paths the members `loop`, the position at which it goes on
/// after the last one, or null, and `ends`; with a comma after each. Nothing of another path.
void showJsonEnd(std::ostream& out, const Walk& walk);
/// The member `positions`, of a walk at position 0.
void showJsonPositions(std::ostream& out, Walk walk);

} // namespace tervoxal
