#include "fuzz.h"

#include "query/expression.h"
#include "temporal/ectlform.h"

#include <cstdlib>

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Vocabulary::Things things = {{{"a", {1}}, {"b c", {2}}, {"1", {2}}}, {1, 2}};
    static const Vocabulary vocabulary = {
        {{"a", {1}}, {"b c", {2}}, {"d", {3, 4}}, {"\"", {2147483647}}},
        things,
        things,
        {{1, things}, {2, things}}};
    return orRefused([&] {
        const std::string text(reinterpret_cast<const char*>(data), size);
        const Expression e = expressionOf(text, vocabulary);
        // Whatever is taken makes one formula, of about the length of the expression.
        reading = false;
        if (e.condition.tokens.size() > 2 * size) std::abort();
        if (!e.beyondFormula.empty()) return;
        const std::string postfix = postfixOf(e.condition);
        if (postfix.size() > 16 * size + 16) std::abort();
        std::size_t formulas = 0;
        for (const OnpNode& token : EctlForm(postfix).onp) {
            formulas -= token.op <= OpNegVar ? 0U : 1U;
            formulas += token.op <= OpNegVar ? 1U : 0U;
        }
        if (formulas != 1) std::abort();
    });
}
