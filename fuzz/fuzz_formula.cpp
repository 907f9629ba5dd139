#include "fuzz.h"

#include "model/ntamodel.h"

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return orRefused([&] {
        const InputFile file(data, size);
        NetTimedModel model;
        model.readFormula(file.name);
    });
}
