#include "fuzz.h"

#include "imported.h"
#include "petrinet.h"
#include "pnml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return imported(data, size, [size](const std::string& file, std::ostream& out) {
        const PetriNet net = readPnml(file, size % 3);
        writeNetwork(net, automataOf(net), out);
    });
}
