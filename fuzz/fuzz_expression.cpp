#include "fuzz.h"

#include "ectlform.h"
#include "expression.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const PropNumbers props = {
        {"a", {1}}, {"b c", {2}}, {"d", {3, 4}}, {"\"", {2147483647}}};
    return orRefused([&] {
        const std::string text(reinterpret_cast<const char*>(data), size);
        const Translated t = translated(text, props);
        // Whatever is taken makes one formula, of about the length of the expression.
        reading = false;
        if (t.postfix.size() > 16 * size + 16) std::abort();
        std::size_t formulas = 0;
        for (const OnpNode& token : EctlForm(t.postfix).onp) {
            formulas -= token.op <= OpNegVar ? 0U : 1U;
            formulas += token.op <= OpNegVar ? 1U : 0U;
        }
        if (formulas != 1) std::abort();
    });
}
