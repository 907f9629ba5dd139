// The names of a network as expressions look them up.

#pragma once

#include "model/names.h"
#include "query/expression.h"

namespace tervoxal {

/// What expressions about a network that is read can name. As large as the network.
[[nodiscard]] Vocabulary vocabularyOf(const NetTimedModel& model, const Names& names);

} // namespace tervoxal
