// Weights of locations that show that no run comes to a cube: the linear program of the marking
// equation, also known as state equation (Murata, Petri Nets: Properties, Analysis and
// Applications, 1989; Esparza and Melzer, Verification of Safety Properties Using Integer
// Programming: Beyond the State Equation, 2000).
//
// It has a value for each location, which tells whether the automaton is there at the end (0 to 1),
// and one for each action and, where a participant has several moves, for each move: how often it
// is taken, 0 and more. For each location
//
//     there at the end = there at the start + moves into it - moves out of it
//
// If that has no solution with the locations of a cube at 1, there is a factor for each row, so
// that the sum of the rows shows it (Farkas). These are the weights: no action increases their sum,
// and it is greater than at the start wherever the cube is. Location 0 of an automaton has no value
// and no row, since it is what the others leave, and the weight 0.

#pragma once

#include "certificate/certificate.h"
#include "model/flatnetwork.h"
#include "search/linearprogram.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace tervoxal {

class WeightFinder {
public:
    /// The network must outlive it. Linear in the network.
    explicit WeightFinder(const FlatNetwork& network);

    /// Weights with one set that has all states of the cube and as many more as it can. The cube is
    /// indices of locations, at most one of each automaton. Nothing where the equation has a
    /// solution, where no 32 bits hold the weights, and where it is stopped. They are rounded, so
    /// who makes use of them checks them.
    [[nodiscard]] std::optional<Certificate::Weighed> exclude(std::span<const uint> cube,
                                                              const std::function<bool()>& stop);

    /// As that of an engine.
    [[nodiscard]] std::int64_t cost() const;

private:
    [[nodiscard]] int column(uint l) const;
    void fix(uint l, bool fixed);
    [[nodiscard]] Certificate::Set enlarged(std::span<const uint> cube,
                                            const std::vector<uint>& weights) const;

    const FlatNetwork& network;
    LinearProgram program;
    std::int64_t size = 0; // entries of the program
    std::int64_t asked = 0;
};

} // namespace tervoxal
