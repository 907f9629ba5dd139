#include "search/evaluator.h"

#include "query/atoms.h"
#include "query/sum.h"

#include <cassert>
#include <limits>
#include <map>
#include <optional>
#include <utility>

namespace tervoxal {

/// The nodes of conditions. Literals are an algebra for conditions and their atoms, in the initial
/// state.
class Evaluator::Builder {
public:
    explicit Builder(Evaluator& evaluator)
        : evaluator(evaluator), network(evaluator.network), nodeOf(network.locations.size()) {
        for (uint x = 0; x < network.actions.size(); ++x) addAction(x);
    }

    Literal literal(const Condition& condition) {
        // What earlier conditions are made of stays as it is.
        own = static_cast<uint>(evaluator.missing.size());
        return valueOf(condition, *this);
    }
    void finish(std::span<const Literal> literals) {
        const std::size_t nodes = evaluator.missing.size();
        evaluator.lookingAtLocation = Rows<uint>(network.locations.size(), atLocation);
        evaluator.lookingAtNode = Rows<uint>(nodes, atNode);
        std::vector<std::pair<uint, uint>> conditions;
        conditions.reserve(literals.size());
        for (uint c = 0; c < literals.size(); ++c) conditions.emplace_back(literals[c], c);
        evaluator.conditionsOf = Rows<uint>(2 * nodes, conditions);
    }

    Literal constant(bool value) {
        if (!truth) truth = addNode(0);
        return 2 * *truth + (value ? 0 : 1);
    }
    Literal atom(const Condition::Token& token) {
        if (token.term != Condition::Term::prop) return atomValue(network, token, *this);
        const auto [entry, isNew] = props.try_emplace(token.number, 0);
        if (isNew) entry->second = atomValue(network, token, *this);
        return entry->second;
    }
    static Literal negation(Literal a) { return a ^ 1U; }
    Literal conjunction(Literal a, Literal b) {
        if (!isOwn(a)) std::swap(a, b);
        if (!isOwn(a)) {
            const Literal both = addConjunction();
            growing.resize(both / 2 + 1);
            growing[both / 2] = true;
            addOperand(both, a);
            a = both;
        }
        addOperand(a, b);
        return a;
    }
    Literal disjunction(Literal a, Literal b) {
        return negation(conjunction(negation(a), negation(b)));
    }

    Literal located(uint location) {
        std::optional<uint>& node = nodeOf[location];
        if (!node) {
            node = addNode(network.locations[location].number == 0 ? 0 : 1);
            atLocation.emplace_back(location, *node);
        }
        return 2 * *node;
    }
    static Literal possible(uint action) { return 2 * action; }
    Literal deadlock() {
        if (!stuck) stuck = deadlockValue(network, *this);
        return *stuck;
    }
    Literal sum(const Condition::Token& token) {
        const PositiveSum<Literal> sum = positiveSum(token, *this);
        const auto node = addNode(static_cast<int>(sum.least));
        for (const auto& [weight, literal] : sum.parts) {
            atNode.insert(atNode.end(), static_cast<std::size_t>(weight),
                          {literal / 2, 2 * node + literal % 2});
            if (evaluator.isTrue(literal)) evaluator.missing[node] -= static_cast<int>(weight);
        }
        return 2 * node;
    }
    template <class Value>
    Literal some(std::size_t count, Value&& value) {
        std::vector<Literal> values;
        for (std::size_t i = 0; i < count; ++i) values.push_back(value(i));
        if (count == 1) return values[0];
        const Literal none = addConjunction();
        for (const Literal literal : values) addOperand(none, negation(literal));
        return negation(none);
    }

private:
    uint addNode(int missing) {
        evaluator.missing.push_back(missing);
        return static_cast<uint>(evaluator.missing.size() - 1);
    }
    void addAction(uint x) {
        int missing = 0;
        for (const uint p : network.participantsOf(x)) {
            bool here = false;
            uint last = std::numeric_limits<uint>::max();
            for (const uint m : network.movesOf(p)) {
                const uint source = network.moves[m].source;
                if (source == last) continue; // the moves are by source
                last = source;
                atLocation.emplace_back(source, x);
                here = here || network.locations[source].number == 0;
            }
            missing += here ? 0 : 1;
        }
        addNode(missing);
    }
    /// A conjunction that nothing but its condition has yet, so it takes more operands.
    [[nodiscard]] bool isOwn(Literal a) const {
        return a % 2 == 0 && a / 2 >= own && a / 2 < growing.size() && growing[a / 2];
    }
    Literal addConjunction() { return 2 * addNode(0); }
    void addOperand(Literal conjunction, Literal operand) {
        atNode.emplace_back(operand / 2, conjunction + operand % 2);
        if (!evaluator.isTrue(operand)) ++evaluator.missing[conjunction / 2];
    }

    Evaluator& evaluator;
    const FlatNetwork& network;
    std::vector<std::optional<uint>> nodeOf; // of each location
    std::map<uint, Literal> props;
    std::optional<uint> truth;
    std::optional<Literal> stuck;
    uint own = 0;              // the first node of the condition at hand
    std::vector<bool> growing; // of each node: a conjunction that a condition is made of
    std::vector<std::pair<uint, uint>> atLocation;
    std::vector<std::pair<uint, uint>> atNode;
};

Evaluator::Evaluator(const FlatNetwork& network, std::span<const Condition* const> conditions)
    : network(network), places(network.automata.size()), wasMoved(network.automata.size()),
      slots(network.actions.size()) {
    Builder builder(*this);
    literals.reserve(conditions.size());
    for (const Condition* condition : conditions) literals.push_back(builder.literal(*condition));
    builder.finish(literals);
    awaited.resize(2 * missing.size());
    kept.resize(2 * missing.size());
    for (Literal l = 0; l < kept.size(); ++l) kept[l] = static_cast<uint>(conditionsOf[l].size());
    for (Literal l = 0; l < kept.size(); ++l) {
        if (isTrue(l)) await(l);
    }
    for (uint x = 0; x < slots.size(); ++x) {
        if (isTrue(2 * x)) add(x);
    }
    for (uint a = 0; a < places.size(); ++a) places[a] = network.locationsBegin(a);
}

void Evaluator::add(uint action) {
    slots[action] = static_cast<uint>(enabled.size());
    enabled.push_back(action);
}

void Evaluator::remove(uint action) {
    const uint last = enabled.back();
    enabled[slots[action]] = last;
    slots[last] = slots[action];
    enabled.pop_back();
}

void Evaluator::await(Literal literal) {
    if (kept[literal] == 0 || awaited[literal]) return;
    awaited[literal] = true;
    came.push_back(literal);
}

void Evaluator::count(uint node, bool gained) {
    if (gained) {
        if (--missing[node] == 0) changed(node, true);
    } else {
        if (missing[node]++ == 0) changed(node, false);
    }
}

void Evaluator::changed(uint node, bool now) {
    if (node < slots.size() && now) add(node);
    if (node < slots.size() && !now) remove(node);
    const Literal literal = 2 * node + (now ? 0 : 1);
    await(literal);
    if (!lookingAtNode[node].empty()) pending.push_back(literal);
}

void Evaluator::move(uint source, uint target) {
    if (source == target) return;
    const uint a = network.locations[source].automaton;
    assert(places[a] == source);
    places[a] = target;
    if (!wasMoved[a]) {
        wasMoved[a] = true;
        movedOnes.push_back(a);
    }
    for (const uint node : lookingAtLocation[source]) count(node, false);
    for (const uint node : lookingAtLocation[target]) count(node, true);
    counts += static_cast<std::int64_t>(lookingAtLocation[source].size() +
                                        lookingAtLocation[target].size());
    // First in, first out: a node may change twice, and what looks at it is to count that in order.
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const Literal literal = pending[i];
        const std::span<const Literal> looking = lookingAtNode[literal / 2];
        for (const Literal by : looking) count(by / 2, by % 2 == literal % 2);
        counts += static_cast<std::int64_t>(looking.size());
    }
    pending.clear();
}

void Evaluator::reset() {
    for (const uint a : movedOnes) {
        move(places[a], network.locationsBegin(a));
        wasMoved[a] = false;
    }
    movedOnes.clear();
}

void Evaluator::renew() {
    for (const Literal literal : told) awaited[literal] = false;
    for (const Literal literal : std::exchange(told, {})) {
        if (isTrue(literal)) await(literal);
    }
}

} // namespace tervoxal
