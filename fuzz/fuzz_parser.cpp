#include "fuzz.h"

#include "temporal/ectlform.h"

#include <cassert>

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return orRefused([&] {
        const EctlForm form(std::string(reinterpret_cast<const char*>(data), size));
        const EctlForm again(form.getText() == "$" ? "" : form.getText());
        assert(form == again);
        assert(form.length() >= form.temporalLength());
        (void)form.getSpecLen(7);
        assert(form.getLeft().length() + form.getRight().length() <= form.length());
    });
}
