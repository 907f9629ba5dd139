// What is imported and not refused is a network that is read.

#pragma once

#include "fuzz.h"

#include "model/names.h"

#include <sstream>

namespace tervoxal {

/// Calls import with the name of a file that holds the input and the stream for the network.
template <class Import>
int imported(const std::uint8_t* data, std::size_t size, Import&& import) {
    return orRefused([&] {
        std::ostringstream out;
        {
            const InputFile input(data, size);
            import(input.name + ".in", out);
        }
        const std::string text = out.str();
        if (text.empty()) return;
        reading = false; // a refusal from here on is a finding
        const InputFile network(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
        NetTimedModel model;
        Names names;
        readNamedNetwork(model, names, network.name);
    });
}

} // namespace tervoxal
