// Random networks and formulas, and a model read from a file.

#pragma once

#include "ntamodel.h"
#include "support.h"

#include <array>
#include <random>

using Random = std::mt19937; // % n: unlike the distributions of <random> the same everywhere

using State = std::vector<uint>; // the location of each automaton, from index 1

/// Propositions of many locations, as a formula names them or their negation.
inline const std::array<std::string, 8> commonProps = {"0",  "1",  "17",  "2147483647",
                                                       "-0", "-1", "-17", "-2147483647"};

/// The proposition of location l of automaton a alone.
inline std::string ownProp(std::size_t a, uint l) { return std::to_string(100 * a + l); }

/// The text of a network of that many automata. Action 0 and up to two others are shared.
inline std::string randomNetwork(Random& random, std::size_t automata) {
    std::ostringstream text("# random\n\nnetwork\n", std::ios::ate);
    const std::size_t factor = 1 + random() % 6; // orders the shared actions and the own ones
    for (std::size_t a = 1; a <= automata; ++a) {
        const auto locations = static_cast<uint>(1 + random() % 6);
        text << "automaton " << a << '\n';
        for (uint l = locations; l-- > 0;) text << "location " << l << "\nend\n";
        for (auto n = random() % 8 == 0 ? 0 : 2 * locations + random() % locations; n > 0; --n) {
            const std::size_t action = factor * (random() % 3 == 0 ? 2 + a : random() % 3) % 7;
            const auto source = random() % locations;
            text << "transition " << source << ' ' << (source + random() % 3) % locations;
            text << (action == 0 ? "" : ' ' + std::to_string(action)) << "\n# end\nend\n";
        }
        text << "valuation";
        for (uint l = 0; l < locations; ++l) {
            text << '\n' << l << ' ' << ownProp(a, l);
            for (std::size_t i = 0; i < 4; ++i) {
                if (random() % 4 == 0) text << ' ' << commonProps.at(i);
            }
        }
        text << "\nend\nend\n";
    }
    return text.str() + "end\n";
}

/// A formula about common propositions and one state.
inline std::string randomFormula(Random& random, const State& state) {
    std::string text;
    std::string end; // operators that come behind all operands
    for (auto operands = 1 + random() % 6; operands > 0; --operands) {
        const char* const op = text.empty() ? "" : random() % 3 == 0 ? "+" : "&";
        if (random() % 3 == 0) {
            text += 'p' + commonProps.at(random() % commonProps.size());
        } else {
            text += 'T';
            for (std::size_t a = 1; a < state.size(); ++a) text += 'p' + ownProp(a, state[a]) + '&';
        }
        (random() % 2 == 0 ? text : end) += op;
    }
    return text + end + (random() % 16 == 0 ? "EG" : "");
}

/// Reads the network of name + ".in".
inline void read(NetTimedModel& model, const std::string& name) {
    (void)printed([&] { model.readNetwork(name); });
    model.compNrOfBits(1);
}
