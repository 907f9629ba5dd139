#include "query/atoms.h"

namespace tervoxal {

std::vector<bool> lookedAt(const FlatNetwork& network, const Condition& condition) {
    using Term = Condition::Term;
    std::vector<bool> looked(network.automata.size());
    const auto look = [&](uint a) {
        if (const auto index = network.automaton(a)) looked[*index] = true;
    };
    const auto lookAt = [&](const Condition::Token& atom) {
        if (atom.term == Term::deadlock) looked.assign(looked.size(), true);
        if (atom.term == Term::at) look(atom.number);
        if (atom.term == Term::prop) {
            for (const auto& [a, l] : network.carriers(atom.number)) look(a);
        }
        if (atom.term != Term::enabled) return;
        const auto x = network.action(atom.number);
        if (!x) return;
        for (const uint p : network.participantsOf(*x)) {
            looked[network.participants[p].automaton] = true;
        }
    };
    for (const Condition::Token& token : condition.tokens) forEachAtom(token, lookAt);
    return looked;
}

} // namespace tervoxal
