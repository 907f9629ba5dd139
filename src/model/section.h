// What one automaton of a network file declares, before it is known whether that makes an
// automaton.

#pragma once

#include "model/networkgrammar.h"
#include "text/uint.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tervoxal {

class Section {
public:
    void addLocation(uint l) { locations.push_back(l); }
    /// line: that of the transition.
    void addTransition(const Transition& t, long line);
    /// A valuation line names l.
    void addValue(uint l, long line);
    void addProp(uint l, uint p) { values.push_back(std::uint64_t(l) << 32U | p); }

    /// Sorts the declarations and drops repeats.
    void sort();
    /// Why the sorted declarations make no automaton, if they make none. They make one if the
    /// locations are 0 to L - 1 with L at least 1, and transitions and valuation name no others.
    /// automaton: its number; end: the line that closes it, where a fault of no single line is
    /// told.
    [[nodiscard]] std::optional<NetworkFault> fault(int automaton, long end) const;

    std::vector<uint> locations;
    std::vector<Transition> transitions;
    std::vector<std::uint64_t> values; // location and, in the low half, proposition

private:
    /// A location named, and the first line that names it.
    struct Mention {
        uint location;
        long line;
    };

    std::vector<Mention> ends;   // of transitions; each is greater than those before it
    Mention greatestValue{0, 0}; // of the valuation; line 0: none
};

} // namespace tervoxal
