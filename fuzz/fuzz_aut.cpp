#include "fuzz.h"

#include "import/aut.h"
#include "imported.h"

using namespace tervoxal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return imported(data, size, [](const std::string& file, std::ostream& out) {
        const LabelledSystems systems = readAut({file, file});
        if (systems.systems.front().states < 10000) writeNetwork(systems, out);
    });
}
