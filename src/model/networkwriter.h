// Writes network files. The writer knows the lines of the format and nothing of their meaning: the
// caller keeps the order (title, locations and transitions, valuation) and declares each location.
//
// A name is written so that it is read back as the same name, but for this: control characters
// become blanks, blanks at both ends go, and the name of a proposition that begins like a number
// gets a "_" in front, since it would be read as one.

#pragma once

#include "text/uint.h"

#include <ostream>
#include <span>
#include <string_view>

namespace tervoxal {

/// A network on its way to a stream, which must outlive this. Write errors stay in the stream.
class NetworkWriter {
public:
    /// Writes the heading of the network.
    NetworkWriter(std::ostream& out, std::string_view heading);

    /// Begins an automaton.
    void automaton(std::string_view title);
    void location(uint l, std::string_view name = {});
    void transition(uint source, uint target, uint action, std::string_view name = {});
    /// Begins the valuation of the automaton: one call, after all locations and transitions.
    void valuation();
    /// The propositions of a location; the name is that of the last one. Without a proposition
    /// there is nothing to name.
    void value(uint l, std::span<const uint> props, std::string_view name = {});
    void value(uint l, uint prop, std::string_view name = {});
    /// Ends the valuation and the automaton.
    void endAutomaton();
    /// A line that no reader of networks looks at.
    void comment(std::string_view text);
    /// Ends the network.
    void end();

private:
    std::ostream* out;
};

} // namespace tervoxal
