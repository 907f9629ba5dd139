// The check has an error exactly where a run refuses the file, and the run's line among its errors.

#include "fuzz.h"

#include "lint/networkcheck.h"
#include "model/ntamodel.h"
#include "query/formulacheck.h"

#include <cassert>
#include <iostream>
#include <sstream>

using namespace tervoxal;

namespace {

template <class Read>
void compare(const Diagnostics& findings, const Read& read) {
    std::ostringstream message;
    std::streambuf* const standardError = std::cerr.rdbuf(message.rdbuf());
    const bool refusedByRun = refused(read);
    std::cerr.rdbuf(standardError);
    assert(findings.refused() == refusedByRun);
    if (!refusedByRun) return;

    std::string line = message.str();
    line.pop_back();
    std::string place;
    if (line.starts_with("line ")) {
        const std::size_t colon = line.find(':');
        place = line.substr(5, colon - 5);
        line.erase(0, colon + 2);
    }
    std::ostringstream told;
    findings.show(told, "");
    assert(told.str().find(place + ": error: " + line) != std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const InputFile input(data, size);
    Diagnostics inNetwork;
    const CheckedNetwork network = checkNetwork(input.file, inNetwork);
    compare(inNetwork, [&] {
        NetTimedModel model;
        model.readNetwork(input.name);
    });
    Diagnostics inFormula;
    checkFormula(input.file, network.taken ? &network.props : nullptr, TemporalOperators::falsify,
                 inFormula);
    compare(inFormula, [&] {
        NetTimedModel model;
        model.readFormula(input.name);
        refuseWithoutValue(model.form->onp);
    });
    return 0;
}
