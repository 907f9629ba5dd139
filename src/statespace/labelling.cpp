#include "statespace/labelling.h"

#include "query/atoms.h"
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
    return atomValue(space.network, token, *this);
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

Labelling::Label Labelling::located(uint location) {
    const std::optional<uint> slot = space.slot(space.network.locations[location].automaton);
    if (!slot) return {all, 0};
    const Word here = column(*slot, location);
    return {here, here};
}

Labelling::Label Labelling::possible(uint action) {
    actions.resize(space.network.actions.size());
    Cached<Label>& cached = actions[action];
    if (cached.round != round) cached = {round, possibleValue(space.network, action, *this)};
    return cached.value;
}

Labelling::Label Labelling::deadlock() {
    if (stuck.round != round) stuck = {round, deadlockValue(space.network, *this)};
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
