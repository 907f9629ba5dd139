// The inductive invariant that a model checker has found: what its proof rests on.
//
//     # comments
//     .i 3                  latches that occur
//     .o 1
//     .p 2                  rows
//     .ilb lo0 lo2 lo3      these latches, counted from 0 in the circuit
//     .ob inv
//     1-0 1                 a row: no state with lo0 and without lo3 is reached, whatever lo2 is
//     -11 1
//     .e
//
// So ABC writes it (pdr -d -I FILE) for a circuit without symbols: as the sum of products (a PLA)
// of what is not reached.

#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace tervoxal {

/// States that have some latches in common, whatever the others are: a cube.
struct Cube {
    struct Latch {
        std::size_t number;
        bool value;
    };

    std::vector<Latch> latches; // ascending in the files of ABC; each once
};

/// Reads an invariant to the end of the stream: the cubes of which it says that none is reached.
/// One that is malformed, cut off or about other latches ends the process with status 1 and one
/// line on standard error, which begins with the name. Linear in the stream.
[[nodiscard]] std::vector<Cube> readInvariant(std::istream& in, const std::string& name,
                                              std::size_t latches);

} // namespace tervoxal
