#include "query/atoms.h"

namespace tervoxal {

std::vector<bool> lookedAt(const FlatNetwork& network, const Condition& condition) {
    using Term = Condition::Term;
    std::vector<bool> looked(network.automata.size());
    const auto look = [&](uint a) {
        if (const auto index = network.automaton(a)) looked[*index] = true;
    };
    for (const Condition::Token& token : condition.tokens) {
        if (token.term == Term::deadlock) looked.assign(looked.size(), true);
        if (token.term == Term::at) look(token.number);
        if (token.term == Term::prop) {
            for (const auto& [a, l] : network.carriers(token.number)) look(a);
        }
        if (token.term != Term::enabled) continue;
        const auto x = network.action(token.number);
        if (!x) continue;
        for (const uint p : network.participantsOf(*x)) {
            looked[network.participants[p].automaton] = true;
        }
    }
    return looked;
}

} // namespace tervoxal
