// Random networks and formulas, and a model read from a file.

#pragma once

#include "model/networkwriter.h"
#include "model/ntamodel.h"
#include "support.h"

#include <array>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace tervoxal {

using Random = std::mt19937; // % n: unlike the distributions of <random> the same everywhere

using State = std::vector<uint>; // the location of each automaton, from index 1

/// Propositions of many locations, as a formula names them or their negation.
inline const std::array<std::string, 8> commonProps = {"0",  "1",  "17",  "2147483647",
                                                       "-0", "-1", "-17", "-2147483647"};

/// The proposition of location l of automaton a alone.
inline uint ownProp(std::size_t a, uint l) { return static_cast<uint>(100 * a) + l; }

/// The text of a network of that many automata. Action 0 and up to two others are shared.
inline std::string randomNetwork(Random& random, std::size_t automata) {
    std::ostringstream text("# random\n\n", std::ios::ate);
    NetworkWriter net(text, "network");
    const std::size_t factor = 1 + random() % 6; // orders the shared actions and the own ones
    for (std::size_t a = 1; a <= automata; ++a) {
        const auto locations = static_cast<uint>(1 + random() % 6);
        net.automaton("automaton " + std::to_string(a));
        for (uint l = locations; l-- > 0;) net.location(l);
        for (auto n = random() % 8 == 0 ? 0 : 2 * locations + random() % locations; n > 0; --n) {
            const std::size_t action = factor * (random() % 3 == 0 ? 2 + a : random() % 3) % 7;
            const auto source = static_cast<uint>(random() % locations);
            const auto target = static_cast<uint>((source + random() % 3) % locations);
            net.transition(source, target, static_cast<uint>(action));
            if (action == 0) text << "# a comment\n";
        }
        net.valuation();
        for (uint l = 0; l < locations; ++l) {
            std::vector<uint> props = {ownProp(a, l)};
            for (std::size_t i = 0; i < 4; ++i) {
                if (random() % 4 == 0)
                    props.push_back(static_cast<uint>(std::stoul(commonProps.at(i))));
            }
            net.value(l, props);
        }
        net.endAutomaton();
    }
    net.end();
    return text.str();
}

/// A formula about common propositions and one state.
inline std::string randomFormula(Random& random, const State& state) {
    std::string text;
    std::string end; // operators that come after all operands
    for (auto operands = 1 + random() % 6; operands > 0; --operands) {
        const char* const op = text.empty() ? "" : random() % 3 == 0 ? "+" : "&";
        if (random() % 3 == 0) {
            text += 'p' + commonProps.at(random() % commonProps.size());
        } else {
            text += 'T';
            for (std::size_t a = 1; a < state.size(); ++a)
                text += 'p' + std::to_string(ownProp(a, state[a])) + '&';
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

} // namespace tervoxal
