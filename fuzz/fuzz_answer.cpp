#include "fuzz.h"

#include "programs/solveranswer.h"

#include <cassert>
#include <cstdlib>
#include <sstream>

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return orRefused([&] {
        std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
        const SolverAnswer answer = readAnswer(in, "fuzz");
        assert(answer.verdict == SolverAnswer::Verdict::satisfiable || answer.literals.empty());
        int before = 0;
        for (const int literal : answer.literals) {
            assert(std::abs(literal) > before);
            before = std::abs(literal);
        }
    });
}
