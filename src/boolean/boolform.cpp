#include "boolform.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstdlib>

namespace {

bool isTrue(const BoolForm& a) { return a.nr == BoolForm::trueNr; }
bool isFalse(const BoolForm& a) { return a.nr == 0; }

/// The formula of any number of the number space, where the constructor takes variables only.
BoolForm formula(int nr) {
    BoolForm f(false);
    f.nr = nr;
    return f;
}

} // namespace

int BoolForm::maxNr = BoolForm::maxVariable;
std::vector<Triple> BoolForm::tv;
TripleMap BoolForm::mti;

BoolForm::BoolForm(int nr) : nr(nr) { assert(nr > 0); }

namespace {

/// Finds the nodes by their triples: a hash table of node numbers with double hashing, at most half
/// full. A search ends after one or two probes, where an ordered map goes down twenty levels. The
/// first probe stays in a block of 1 KiB for 64 successive values of the newer operand: most nodes
/// are made of recent ones, so the block is in the cache (up to a fifth less time for the whole run
/// than with a first probe anywhere). The next probes go anywhere, so a full block does no harm.
class Index {
public:
    /// The node of the triple, created if it is new.
    int node(const Triple& t) {
        // tv is open to all, so it may have been emptied.
        if (known != BoolForm::tv.size() || 2 * known >= slots.size()) rebuild(2 * known);
        const std::size_t i = slotOf(t);
        if (slots[i] == 0) {
            assert(BoolForm::maxNr < std::numeric_limits<int>::max());
            slots[i] = ++BoolForm::maxNr;
            BoolForm::tv.push_back(t);
            ++known;
        }
        return slots[i];
    }
    void reserve(std::size_t nodes) {
        if (2 * nodes > slots.size()) rebuild(nodes);
    }

private:
    /// The slot of the node, or the empty one where it belongs.
    [[nodiscard]] std::size_t slotOf(const Triple& t) const {
        const auto left = static_cast<std::uint32_t>(t.left);
        const auto right = static_cast<std::uint32_t>(t.right);
        const std::uint64_t key =
            (std::uint64_t(left) << 32U | right) + static_cast<unsigned>(t.op);
        const auto newer = static_cast<unsigned>(std::max(std::abs(t.left), std::abs(t.right)));
        const std::uint64_t h = hash(key);
        std::size_t i = (hash(newer / 64) >> (shift + 8)) << 8U | h >> 56U;
        while (slots[i] != 0 && !(BoolForm::triple(slots[i]) == t)) {
            i = (i + (h >> 32U | 1U)) & (slots.size() - 1); // odd, so it comes to every slot
        }
        return i;
    }
    /// Multiplicative hashing: the high bits depend on all bits of the key.
    static std::uint64_t hash(std::uint64_t key) { return key * 0x9E3779B97F4A7C15U; }
    /// Takes over the nodes of the store, with room for that many in all.
    void rebuild(std::size_t nodes) {
        known = BoolForm::tv.size();
        shift = 52;
        while (std::uint64_t(1) << (64 - shift) < 2 * std::max(nodes, known + 1)) --shift;
        slots.assign(std::size_t(1) << (64 - shift), 0);
        int n = BoolForm::maxVariable;
        for (const Triple& t : BoolForm::tv) slots[slotOf(t)] = ++n;
    }

    std::vector<int> slots; // 0 for an empty one
    unsigned shift = 0;     // from a hash to a slot
    std::size_t known = 0;  // nodes of the store that the slots hold
};

Index nodeIndex;

} // namespace

BoolForm::BoolForm(const BoolForm& l, const BoolForm& r, int op) : nr(0) {
    assert(op == bfCon || op == bfEqu);
    nr = nodeIndex.node(Triple(op, l.nr, r.nr));
}

void BoolForm::reserve(std::size_t nodes) {
    tv.reserve(nodes);
    nodeIndex.reserve(nodes);
}

void BoolForm::clear() {
    tv = {};
    mti.clear();
    maxNr = maxVariable;
    nodeIndex = {};
}

const TripleMap::Map& TripleMap::all() const {
    int n = BoolForm::maxVariable + static_cast<int>(nodes.size());
    for (std::size_t i = nodes.size(); i < BoolForm::tv.size(); ++i) {
        nodes.emplace(BoolForm::tv[i], ++n);
    }
    return nodes;
}

bool BoolForm::isNeg(const BoolForm& f) const { return f == neg(*this); }

BoolForm neg(const BoolForm& a) {
    if (isTrue(a)) return BoolForm(false);
    if (isFalse(a)) return BoolForm(true);
    return formula(-a.nr);
}

BoolForm con(const BoolForm& a, const BoolForm& b) {
    if (isTrue(a)) return b;
    if (isFalse(a) || isFalse(b)) return BoolForm(false);
    if (isTrue(b)) return a;
    if (a == b) return a;
    if (a.nr == -b.nr) return BoolForm(false);
    return a.nr < b.nr ? BoolForm(a, b, bfCon) : BoolForm(b, a, bfCon);
}

BoolForm dis(const BoolForm& a, const BoolForm& b) { return neg(con(neg(a), neg(b))); }

BoolForm equ(const BoolForm& a, const BoolForm& b) {
    if (isTrue(a)) return b;
    if (isFalse(a)) return neg(b);
    if (isFalse(b)) return neg(a);
    if (isTrue(b)) return a;
    if (a == b) return BoolForm(true);
    if (a.nr == -b.nr) return BoolForm(false);
    const int x = std::abs(a.nr);
    const int y = std::abs(b.nr);
    const BoolForm node(formula(std::min(x, y)), formula(std::max(x, y)), bfEqu);
    return (a.nr < 0) == (b.nr < 0) ? node : neg(node);
}

BoolForm imp(const BoolForm& a, const BoolForm& b) { return dis(neg(a), b); }

BoolForm notequ(const BoolForm& a, const BoolForm& b) { return neg(equ(a, b)); }

BoolForm value(const BoolForm& a, int v, bool b) {
    std::map<int, BoolForm> values; // of the composed nodes done so far
    const auto known = [&](int nr) {
        return !BoolForm::isNode(std::abs(nr)) || values.contains(std::abs(nr));
    };
    const auto valueOf = [&](int nr) {
        const BoolForm atom = std::abs(nr) == v ? BoolForm(b) : formula(std::abs(nr));
        const BoolForm r = BoolForm::isNode(std::abs(nr)) ? values.at(std::abs(nr)) : atom;
        return nr < 0 ? neg(r) : r;
    };
    if (isTrue(a) || isFalse(a)) return a;

    std::vector<int> open;
    if (!known(a.nr)) open.push_back(std::abs(a.nr));
    while (!open.empty()) {
        const int n = open.back();
        const Triple t = BoolForm::triple(n);
        if (!known(t.right)) {
            open.push_back(std::abs(t.right));
        } else if (!known(t.left)) {
            open.push_back(std::abs(t.left));
        } else {
            const BoolForm right = valueOf(t.right);
            const BoolForm left = valueOf(t.left);
            values.emplace(n, t.op == bfCon ? con(left, right) : equ(left, right));
            open.pop_back();
        }
    }
    return valueOf(a.nr);
}
