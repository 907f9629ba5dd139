#include "boolean/boolform.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstdlib>

using namespace tervoxal;

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

/// Finds the nodes by their triples: a hash table of 32-bit slots, at most three quarters full. The
/// low bits of a slot, as many as tell the slots apart, are the place of the node in tv plus 1. The
/// high bits are a piece of its hash: twelve bits in a table of 1048576 slots, none in the largest.
/// So a search rarely loads the triple of another node.
///
/// The first probe stays in a block of 1 KiB for 64 successive values of the newer operand: most
/// nodes are made of recent ones, so the block is in the cache. The next probes are the other slots
/// of a group of 16, in the same lines of the cache, then groups anywhere: a full block does no
/// harm. Without the piece of the hash and the groups a fifth of the searches load the triple of
/// another node, and a run takes a tenth longer.
class Index {
public:
    /// The node of the triple, created if it is new.
    int node(const Triple& t) {
        // tv is open to all, so it may have been emptied.
        if (known != BoolForm::tv.size() || 4 * known >= 3 * slots.size()) rebuild(2 * known);
        std::uint32_t tag = 0;
        std::uint32_t& slot = slotOf(t, tag);
        if (slot == 0) {
            assert(BoolForm::maxNr < BoolForm::maxVariable + BoolForm::maxNodes);
            ++BoolForm::maxNr;
            BoolForm::tv.push_back(t);
            slot = tag | static_cast<std::uint32_t>(++known);
        }
        return static_cast<int>(slot & mask) + BoolForm::maxVariable;
    }
    void reserve(std::size_t nodes) {
        if (4 * nodes > 3 * slots.size()) rebuild(nodes);
    }

private:
    static constexpr std::size_t group = 16;

    /// The slot of the node, or the empty one where it belongs, and the piece of the hash for it.
    std::uint32_t& slotOf(const Triple& t, std::uint32_t& tag) {
        const auto left = static_cast<std::uint32_t>(t.left);
        const auto right = static_cast<std::uint32_t>(t.right);
        const std::uint64_t key =
            (std::uint64_t(left) << 32U | right) + static_cast<unsigned>(t.op);
        const auto newer = static_cast<unsigned>(std::max(std::abs(t.left), std::abs(t.right)));
        const std::uint64_t h = hash(key);
        tag = static_cast<std::uint32_t>(h >> 24U) & ~mask;
        std::size_t first = (hash(newer / 64) >> (shift + 8)) << 8U | h >> 56U;
        for (;;) {
            for (std::size_t i = 0; i < group; ++i) {
                std::uint32_t& slot = slots[first ^ i];
                if (slot == 0) return slot;
                if ((slot & ~mask) == tag && BoolForm::tv[(slot & mask) - 1] == t) return slot;
            }
            first = (first + (h >> 32U | 1U) * group) & mask; // odd, so it comes to every group
        }
    }
    /// Multiplicative hashing: the high bits depend on all bits of the key.
    static std::uint64_t hash(std::uint64_t key) { return key * 0x9E3779B97F4A7C15U; }
    /// Takes over the nodes of the store, with room for that many in all.
    void rebuild(std::size_t nodes) {
        known = BoolForm::tv.size();
        shift = 52;
        while (3 * (std::uint64_t(1) << (64 - shift)) < 4 * std::max(nodes, known + 1)) --shift;
        slots.assign(std::size_t(1) << (64 - shift), 0);
        mask = static_cast<std::uint32_t>(slots.size() - 1);
        std::uint32_t place = 0;
        for (const Triple& t : BoolForm::tv) {
            std::uint32_t tag = 0;
            std::uint32_t& slot = slotOf(t, tag);
            slot = tag | ++place;
        }
    }

    std::vector<std::uint32_t> slots; // 0 for an empty one
    unsigned shift = 0;               // from a hash to a slot
    std::uint32_t mask = 0;           // of the place in a slot
    std::size_t known = 0;            // nodes of the store that the slots hold
};

Index nodeIndex;

} // namespace

BoolForm::BoolForm(const BoolForm& l, const BoolForm& r, int op) : nr(0) {
    assert(op == bfCon || op == bfEqu);
    assert(!isTrue(l) && !isTrue(r));
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
    if (isTrue(a)) return false;
    if (isFalse(a)) return true;
    return formula(-a.nr);
}

BoolForm con(const BoolForm& a, const BoolForm& b) {
    if (isTrue(a)) return b;
    if (isFalse(a) || isFalse(b)) return false;
    if (isTrue(b)) return a;
    if (a == b) return a;
    if (a.nr == -b.nr) return false;
    return a.nr < b.nr ? BoolForm(a, b, bfCon) : BoolForm(b, a, bfCon);
}

BoolForm dis(const BoolForm& a, const BoolForm& b) { return neg(con(neg(a), neg(b))); }

BoolForm equ(const BoolForm& a, const BoolForm& b) {
    if (isTrue(a)) return b;
    if (isFalse(a)) return neg(b);
    if (isFalse(b)) return neg(a);
    if (isTrue(b)) return a;
    if (a == b) return true;
    if (a.nr == -b.nr) return false;
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
