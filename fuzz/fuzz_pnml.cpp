#include "fuzz.h"

#include "import/petrinet.h"
#include "import/pnml.h"
#include "imported.h"

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return imported(data, size, [size](const std::string& file, std::ostream& out) {
        const PetriNet net = readPnml(file, size % 3);
        writeNetwork(net, automataOf(net), out);
    });
}
