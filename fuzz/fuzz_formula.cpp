#include "fuzz.h"

#include "ntamodel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return orRefused([&] {
        const InputFile file(data, size);
        NetTimedModel model;
        model.readFormula(file.name);
    });
}
