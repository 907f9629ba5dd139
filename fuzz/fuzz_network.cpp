#include "fuzz.h"

#include "model/ntamodel.h"

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    BoolForm::clear();
    return orRefused([&] {
        const InputFile file(data, size);
        NetTimedModel model;
        model.readNetwork(file.name);
        model.compNrOfBits(1);
        const int bits = model.totalNrVertBits;
        (void)model.actionSucc(1, model.genSymState(1, 0), model.genSymState(1 + bits, 1));
    });
}
