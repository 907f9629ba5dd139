#include "fuzz.h"

#include "programs/aigerwitness.h"

#include <cassert>
#include <sstream>

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return orRefused([&] {
        // The first byte tells the circuit, so that short lines can fit it.
        const std::size_t first = size == 0 ? 0 : data[0];
        const CircuitShape shape{first % 4, first / 4 % 4};
        const std::size_t skipped = size == 0 ? 0 : 1;
        std::istringstream in(
            std::string(reinterpret_cast<const char*>(data) + skipped, size - skipped));
        const AigerWitness witness = readAigerWitness(in, "fuzz", shape);
        assert(witness.verdict == SolverAnswer::Verdict::satisfiable || witness.steps.empty());
        for (const std::string& step : witness.steps) {
            assert(step.size() == shape.inputs);
            assert(step.find_first_not_of("01x") == std::string::npos);
        }
    });
}
