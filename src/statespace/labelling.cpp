#include "statespace/labelling.h"

#include "query/sum.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <optional>

namespace tervoxal {

namespace {

constexpr std::size_t wordBits = 64;
constexpr Labelling::Word all = ~Labelling::Word(0);

/// 64 numbers side by side, a word for each of their binary digits.
class Numbers {
public:
    /// Adds the amount to the numbers that have a bit there.
    void add(Labelling::Word where, std::uint64_t amount) {
        for (std::size_t digit = 0; amount != 0; ++digit, amount /= 2) {
            if (amount % 2 == 0) continue;
            Labelling::Word carried = where;
            for (std::size_t d = digit; carried != 0; ++d) {
                if (d >= digits.size()) digits.resize(d + 1);
                const Labelling::Word sum = digits[d] ^ carried;
                carried &= digits[d];
                digits[d] = sum;
            }
        }
    }
    /// Those that are at least the bound.
    [[nodiscard]] Labelling::Word atLeast(std::uint64_t bound) const {
        if (digits.size() < wordBits && bound >> digits.size() != 0) return 0;
        Labelling::Word reached = all; // by the digits looked at so far
        for (std::size_t d = 0; d < digits.size(); ++d) {
            reached = (bound >> d & 1U) != 0 ? digits[d] & reached : digits[d] | reached;
        }
        return reached;
    }

private:
    std::vector<Labelling::Word> digits;
};

} // namespace

Labelling::Labelling(const StateSpace& space) : space(space) {}

Labelling::Label Labelling::label(const Condition& condition, std::size_t word) {
    assert(wordBits * word < space.size());
    const std::size_t found = std::min(wordBits, space.size() - wordBits * word);
    if (round == 0 || word != this->word || found != known) {
        this->word = word;
        known = found;
        ++round;
    }
    const Label label = valueOf(condition, *this);
    const Word mask = known == wordBits ? all : (Word(1) << known) - 1;
    return {label.may & mask, label.must & mask};
}

Labelling::Label Labelling::atom(const Condition::Token& token) {
    using Term = Condition::Term;
    switch (token.term) {
    case Term::at: return at(token.number, token.location);
    case Term::prop: return prop(token.number);
    case Term::enabled: {
        const std::optional<uint> x = space.network.action(token.number);
        return x ? enabled(*x) : constant(false);
    }
    case Term::sum: return sum(token);
    default: return deadlock();
    }
}

/// Where the automaton in the slot is at the location, an index of the network.
Labelling::Word Labelling::column(uint slot, uint location) {
    const StateSpace::Field& field = space.fields[slot];
    const uint wanted = location - field.firstLocation;
    columns.resize(space.keys.size());
    Cached<Word>& column = columns[field.firstIndex + wanted];
    if (column.round == round) return column.value;
    Word bits = 0;
    const Word* row = space.row(static_cast<StateSpace::State>(wordBits * word));
    for (std::size_t i = 0; i < known; ++i, row += space.width) {
        bits |= Word(StateSpace::local(row, field) == wanted ? 1U : 0U) << i;
    }
    column = {round, bits};
    return bits;
}

Labelling::Label Labelling::at(uint automaton, uint location) {
    const FlatNetwork::Place place = space.network.place(automaton, location);
    if (!place.location) return constant(place.always);
    const std::optional<uint> slot = space.slot(space.network.locations[*place.location].automaton);
    if (!slot) return {all, 0};
    const Word here = column(*slot, *place.location);
    return {here, here};
}

Labelling::Label Labelling::prop(uint number) {
    Label label = constant(false);
    for (const auto& [a, l] : space.network.carriers(number)) label = disjunction(label, at(a, l));
    return label;
}

/// Whether the action with that index of the network is possible.
Labelling::Label Labelling::enabled(uint action) {
    const FlatNetwork& network = space.network;
    possible.resize(network.actions.size());
    Cached<Label>& cached = possible[action];
    if (cached.round == round) return cached.value;
    Label label = constant(true);
    for (const uint p : network.participantsOf(action)) {
        const std::optional<uint> slot = space.slot(network.participants[p].automaton);
        Label ready = {all, 0};
        if (slot) {
            Word sources = 0;
            for (const uint m : network.movesOf(p))
                sources |= column(*slot, network.moves[m].source);
            ready = {sources, sources};
        }
        label = conjunction(label, ready);
    }
    cached = {round, label};
    return label;
}

Labelling::Label Labelling::deadlock() {
    if (stuck.round == round) return stuck.value;
    Label some = constant(false);
    for (uint x = 0; x < space.network.actions.size() && some.must != all; ++x) {
        some = disjunction(some, enabled(x));
    }
    stuck = {round, negation(some)};
    return stuck.value;
}

/// The parts that may hold tell whether the sum may reach its bound, those that must, whether it
/// must.
Labelling::Label Labelling::sum(const Condition::Token& token) {
    const PositiveSum<Label> sum = positiveSum(token, *this);
    Numbers may;
    Numbers must;
    for (const auto& [weight, label] : sum.parts) {
        may.add(label.may, static_cast<std::uint64_t>(weight));
        must.add(label.must, static_cast<std::uint64_t>(weight));
    }
    const auto least = static_cast<std::uint64_t>(sum.least);
    return {may.atLeast(least), must.atLeast(least)};
}

} // namespace tervoxal
