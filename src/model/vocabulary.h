// The names of a network as expressions look them up.

#pragma once

#include "expression.h"
#include "names.h"

/// What expressions about a network that is read can name. As large as the network.
[[nodiscard]] Vocabulary vocabularyOf(const NetTimedModel& model, const Names& names);
