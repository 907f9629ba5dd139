// How a state is laid out in bits: automaton by automaton, each with the bits of its location.

#pragma once

#include "model/ntamodel.h"

#include <bit>
#include <cstddef>
#include <vector>

namespace tervoxal {

/// The bits that tell so many numbers apart: the binary logarithm, rounded up; 0 for 0.
[[nodiscard]] inline int bitsFor(std::size_t numbers) {
    return numbers == 0 ? 0 : static_cast<int>(std::bit_width(numbers - 1));
}

/// By bit of a state, the automaton whose it is. Precondition: the states are laid out.
[[nodiscard]] std::vector<uint> automataOfBits(const NetTimedModel& model);

} // namespace tervoxal
