#include "boolean/aiger.h"

#include "boolean/reached.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>

namespace tervoxal {

namespace {

using Literal = std::uint32_t;

Literal negated(Literal literal) { return literal ^ 1U; }

std::size_t indexOf(int node) { return static_cast<std::size_t>(node) - BoolForm::maxVariable - 1; }

/// The gates of a circuit, numbered from the first free variable of the file upward.
class Gates {
public:
    explicit Gates(const Circuit& circuit) : ofNode(BoolForm::tv.size(), 0) {
        Literal next = 2;
        const auto number = [&](int variable) {
            const auto v = static_cast<std::size_t>(variable);
            if (ofVariable.size() <= v) ofVariable.resize(v + 1, 0);
            ofVariable[v] = next;
            next += 2;
        };
        for (const Circuit::Input& input : circuit.inputs) number(input.variable);
        for (const Circuit::Latch& latch : circuit.latches) number(latch.variable);
        first = next;

        std::vector<BoolForm> roots;
        for (const Circuit::Latch& latch : circuit.latches) roots.push_back(latch.next);
        for (const Circuit::Output& output : circuit.outputs) roots.push_back(output.value);
        const std::vector<bool> reached = reachedNodes(roots, [](const Triple& /*node*/) {});
        // Operands have smaller numbers than their node.
        for (std::size_t n = 0; n < reached.size(); ++n) {
            if (reached[n]) ofNode[n] = node(BoolForm::tv[n]);
        }
    }

    /// The literal of a formula of the circuit.
    [[nodiscard]] Literal literal(const BoolForm& f) const { return literal(f.nr); }
    /// The operands of each gate, the larger literal first.
    [[nodiscard]] const std::vector<std::pair<Literal, Literal>>& operands() const { return gates; }
    /// The literal of gate i.
    [[nodiscard]] Literal gate(std::size_t i) const { return first + 2 * static_cast<Literal>(i); }

private:
    [[nodiscard]] Literal literal(int formula) const {
        if (formula == BoolForm::trueNr) return 1;
        if (formula == 0) return 0;
        const int nr = std::abs(formula);
        const Literal positive = BoolForm::isNode(nr) ? ofNode[indexOf(nr)]
                                                      : ofVariable.at(static_cast<std::size_t>(nr));
        return formula < 0 ? negated(positive) : positive;
    }

    Literal conjunction(Literal a, Literal b) {
        assert(gates.size() < std::numeric_limits<int>::max() / 2U - first / 2U);
        gates.emplace_back(std::max(a, b), std::min(a, b));
        return gate(gates.size() - 1);
    }

    Literal node(const Triple& triple) {
        const Literal a = literal(triple.left);
        const Literal b = literal(triple.right);
        if (triple.op == bfCon) return conjunction(a, b);
        const Literal leftOnly = conjunction(a, negated(b));
        const Literal rightOnly = conjunction(negated(a), b);
        return conjunction(negated(leftOnly), negated(rightOnly));
    }

    std::vector<Literal> ofVariable;
    std::vector<Literal> ofNode;
    Literal first = 0;
    std::vector<std::pair<Literal, Literal>> gates;
};

/// A difference of two literals in groups of seven bits, the least significant first.
void appendDifference(std::string& text, Literal difference) {
    for (; difference > 0x7fU; difference >>= 7U) {
        text += static_cast<char>((difference & 0x7fU) | 0x80U);
    }
    text += static_cast<char>(difference);
}

template <class Signals>
void showSymbols(std::ostream& out, char kind, const Signals& signals) {
    for (std::size_t i = 0; i < signals.size(); ++i) {
        if (!signals[i].name.empty()) out << kind << i << ' ' << signals[i].name << '\n';
    }
}

} // namespace

void showAIGER(std::ostream& out, const Circuit& circuit, bool ascii) {
    const Gates gates(circuit);
    const std::size_t states = circuit.inputs.size() + circuit.latches.size();
    out << (ascii ? "aag " : "aig ") << states + gates.operands().size() << ' '
        << circuit.inputs.size() << ' ' << circuit.latches.size() << ' ' << circuit.outputs.size()
        << ' ' << gates.operands().size() << '\n';
    std::size_t variable = 0;
    if (ascii) {
        while (variable < circuit.inputs.size()) out << 2 * ++variable << '\n';
    }
    for (const Circuit::Latch& latch : circuit.latches) {
        if (ascii) out << 2 * ++variable << ' ';
        out << gates.literal(latch.next) << '\n';
    }
    for (const Circuit::Output& output : circuit.outputs) {
        out << gates.literal(output.value) << '\n';
    }

    std::string text;
    for (std::size_t i = 0; i < gates.operands().size(); ++i) {
        const Literal gate = gates.gate(i);
        const auto& [larger, smaller] = gates.operands()[i];
        if (ascii) {
            out << gate << ' ' << larger << ' ' << smaller << '\n';
        } else {
            text.clear();
            appendDifference(text, gate - larger);
            appendDifference(text, larger - smaller);
            out << text;
        }
    }
    showSymbols(out, 'i', circuit.inputs);
    showSymbols(out, 'l', circuit.latches);
    showSymbols(out, 'o', circuit.outputs);
    if (!circuit.comment.empty()) out << "c\n" << circuit.comment << '\n';
}

} // namespace tervoxal
