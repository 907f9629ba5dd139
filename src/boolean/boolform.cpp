#include "boolform.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <fstream>

namespace {

constexpr int firstNode = BoolForm::maxVariable + 1;

bool isTrue(const BoolForm& a) { return a.nr == BoolForm::trueNr; }
bool isFalse(const BoolForm& a) { return a.nr == 0; }

bool isNode(int nr) { return nr >= firstNode; }

const Triple& triple(int node) { return BoolForm::tv[static_cast<std::size_t>(node) - firstNode]; }

/// The formula of any number of the number space, where the constructor takes variables only.
BoolForm formula(int nr) {
    BoolForm f(false);
    f.nr = nr;
    return f;
}

// The clauses of each gate, each written once. The sink takes one Clause at a time.

// x
template <class Sink>
void unitClauses(int x, Sink&& sink) {
    sink(Clause(x, 0, 0));
}

// x = !y
template <class Sink>
void negClauses(int x, int y, Sink&& sink) {
    sink(Clause(x, y, 0));
    sink(Clause(-x, -y, 0));
}

// z = x & y
template <class Sink>
void conClauses(int x, int y, int z, Sink&& sink) {
    sink(Clause(-z, x, 0));
    sink(Clause(-z, y, 0));
    sink(Clause(-x, -y, z));
}

// z = (x = y)
template <class Sink>
void equClauses(int x, int y, int z, Sink&& sink) {
    sink(Clause(-z, -x, y));
    sink(Clause(-z, -y, x));
    sink(Clause(x, y, z));
    sink(Clause(-x, -y, z));
}

/// A sink that inserts into cs.
auto into(std::set<Clause>& cs) {
    return [&cs](const Clause& c) { cs.insert(c); };
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
        while (slots[i] != 0 && !(triple(slots[i]) == t)) {
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
        return !isNode(std::abs(nr)) || values.contains(std::abs(nr));
    };
    const auto valueOf = [&](int nr) {
        const BoolForm atom = std::abs(nr) == v ? BoolForm(b) : formula(std::abs(nr));
        const BoolForm r = isNode(std::abs(nr)) ? values.at(std::abs(nr)) : atom;
        return nr < 0 ? neg(r) : r;
    };
    if (isTrue(a) || isFalse(a)) return a;

    std::vector<int> open;
    if (!known(a.nr)) open.push_back(std::abs(a.nr));
    while (!open.empty()) {
        const int n = open.back();
        const Triple t = triple(n);
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

Clause::Clause(int x, int y, int z) : l1(x), l2(y), l3(z) {
    if (std::abs(l2) < std::abs(l1)) std::swap(l1, l2);
    if (std::abs(l3) < std::abs(l1)) std::swap(l1, l3);
    if (std::abs(l3) < std::abs(l2)) std::swap(l2, l3);
    if (l3 == l1 || l3 == l2) l3 = 0;
    if (l2 == l1) l2 = 0;
}

void BoolForm::addVar(std::set<Clause>& cs, int x) const { unitClauses(x, into(cs)); }
void BoolForm::addNeg(std::set<Clause>& cs, int x, int y) const { negClauses(x, y, into(cs)); }
void BoolForm::addCon(std::set<Clause>& cs, int x, int y, int z) const {
    conClauses(x, y, z, into(cs));
}
void BoolForm::addEqu(std::set<Clause>& cs, int x, int y, int z) const {
    equClauses(x, y, z, into(cs));
}

void BoolForm::toCNF(std::set<Clause>& cs) const {
    if (isTrue(*this) || isFalse(*this)) cs.clear();
    auto place = cs.begin();
    for (const Clause& c : clauses()) place = std::next(cs.insert(place, c));
}

namespace {

/// The number of a literal in a file whose largest variable is shift below maxVariable.
int fileNr(int literal, int shift) {
    if (literal > BoolForm::maxVariable) return literal - shift;
    if (literal < -BoolForm::maxVariable) return literal + shift;
    return literal;
}

/// The clauses that forEach hands to a sink, in order. last is the largest number of a literal in
/// the file. Counting sort by the first literal, straight into the final places: no second copy of
/// the clauses, and no comparison but among the few that share their first literal.
template <class ForEach>
std::vector<Clause> countingSorted(const ForEach& forEach, std::ptrdiff_t last, int shift) {
    const auto bucket = [&](const Clause& c) {
        const std::ptrdiff_t block = c.l1 < 0 ? last : c.l1 == 0 ? 2 * last : 3 * last;
        return static_cast<std::size_t>(block + fileNr(c.l1 != 0 ? c.l1 : c.l2, shift));
    };
    std::vector<std::uint32_t> ends(static_cast<std::size_t>(4 * last) + 2);
    forEach([&](const Clause& c) { ++ends[bucket(c) + 1]; });
    std::uint64_t total = 0;
    for (std::uint32_t& end : ends) {
        total += end;
        assert(total <= std::numeric_limits<std::uint32_t>::max());
        end = static_cast<std::uint32_t>(total);
    }
    std::vector<Clause> sorted(total, Clause(0, 0, 0));
    forEach([&](const Clause& c) { sorted[ends[bucket(c)]++] = c; });
    std::uint32_t begin = 0;
    for (const std::uint32_t end : ends) {
        if (end - begin > 1) std::sort(sorted.begin() + begin, sorted.begin() + end);
        begin = end;
    }
    return sorted;
}

} // namespace

std::vector<Clause> BoolForm::clauses() const {
    if (isTrue(*this)) return {};
    if (isFalse(*this)) return {Clause(0, 0, 0)};

    // An operand has a smaller number than its node, so one walk from the top down reaches all.
    const int top = std::abs(nr);
    std::vector<bool> reached(isNode(top) ? static_cast<std::size_t>(top) - firstNode + 1 : 0);
    int variables = 0;
    const auto reach = [&](int literal) {
        const int n = std::abs(literal);
        if (isNode(n)) {
            reached[static_cast<std::size_t>(n) - firstNode] = true;
        } else {
            variables = std::max(variables, n);
        }
    };
    reach(nr);
    const auto forEachReached = [&](auto&& use) {
        for (std::size_t i = reached.size(); i-- > 0;) {
            if (reached[i]) use(static_cast<int>(i) + firstNode, tv[i]);
        }
    };
    std::size_t nodes = 0;
    forEachReached([&](int, const Triple& t) {
        reach(t.left);
        reach(t.right);
        ++nodes;
    });
    const auto forEachClause = [&](auto&& sink) {
        unitClauses(nr, sink);
        forEachReached([&](int n, const Triple& t) {
            if (t.op == bfCon) {
                conClauses(t.left, t.right, n, sink);
            } else {
                equClauses(t.left, t.right, n, sink);
            }
        });
    };

    const int shift = maxVariable - variables;
    const int last = fileNr(std::max(top, variables), shift);
    if (static_cast<std::size_t>(last) / 64 < nodes + 1) {
        return countingSorted(forEachClause, last, shift);
    }
    std::vector<Clause> sorted; // few clauses over many numbers
    forEachClause([&](const Clause& c) { sorted.push_back(c); });
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

namespace {

/// Formats numbers and words into one large block and hands full blocks to the file.
class BlockWriter {
public:
    explicit BlockWriter(const std::string& file) : out(file, std::ios::binary), block(blockSize) {}
    ~BlockWriter() { flush(); }
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    void text(const char* word) {
        while (*word != 0) put(*word++);
    }
    void put(char c) { block[used++] = c; }
    template <class Number>
    void number(Number n) {
        char* const begin = block.data() + used;
        used += static_cast<std::size_t>(std::to_chars(begin, begin + lineSize, n).ptr - begin);
    }
    void endLine() {
        put('\n');
        if (used > blockSize - lineSize) flush();
    }

private:
    void flush() {
        out.write(block.data(), static_cast<std::streamsize>(used));
        used = 0;
    }

    static constexpr std::size_t blockSize = 1U << 18U;
    static constexpr std::size_t lineSize = 64; // no line is longer
    std::ofstream out;
    std::vector<char> block;
    std::size_t used = 0;
};

/// The largest absolute value of any literal and of any variable, 0 where there is none.
struct Largest {
    int literal = 0;
    int variable = 0;
};

template <class Clauses>
Largest largest(const Clauses& cs) {
    Largest r;
    for (const Clause& c : cs) {
        for (const int literal : {c.l1, c.l2, c.l3}) {
            const int n = std::abs(literal);
            r.literal = std::max(r.literal, n);
            r.variable = std::max(r.variable, n < BoolForm::maxVariable ? n : 0);
        }
    }
    return r;
}

template <class Clauses>
void write(const Clauses& cs, const std::string& file, int top, int shift) {
    BlockWriter out(file);
    out.text("p cnf ");
    out.number(fileNr(top, shift));
    out.put(' ');
    out.number(cs.size());
    out.endLine();
    for (const Clause& c : cs) {
        for (const int literal : {c.l1, c.l2, c.l3}) {
            if (literal == 0) continue;
            out.number(fileNr(literal, shift));
            out.put(' ');
        }
        out.put('0');
        out.endLine();
    }
}

} // namespace

template <class Clauses>
int maxCNFVarNr(const Clauses& cs) {
    return largest(cs).literal;
}

template <class Clauses>
int maxCNFOrgVarNr(const Clauses& cs) {
    return largest(cs).variable;
}

template <class Clauses>
void showCNF(const Clauses& cs, std::string name) {
    const Largest top = largest(cs);
    write(cs, name.append(".cnf"), top.literal, BoolForm::maxVariable - top.variable);
}

template <class Clauses>
void showCNF(const Clauses& cs) {
    write(cs, "test.cnf", maxCNFVarNr(cs), 0);
}

int createClauseVect(const std::set<Clause>& cs, std::vector<std::vector<int>>& v) {
    const int shift = BoolForm::maxVariable - maxCNFOrgVarNr(cs);
    int largest = 0;
    for (const Clause& c : cs) {
        std::vector<int>& literals = v.emplace_back();
        for (const int literal : {c.l1, c.l2, c.l3}) {
            if (literal == 0) continue;
            literals.push_back(fileNr(literal, shift));
            largest = std::max(largest, std::abs(literals.back()));
        }
    }
    return largest;
}

template int maxCNFVarNr(const std::set<Clause>& cs);
template int maxCNFVarNr(const std::vector<Clause>& cs);
template int maxCNFOrgVarNr(const std::set<Clause>& cs);
template int maxCNFOrgVarNr(const std::vector<Clause>& cs);
template void showCNF(const std::set<Clause>& cs, std::string name);
template void showCNF(const std::vector<Clause>& cs, std::string name);
template void showCNF(const std::set<Clause>& cs);
template void showCNF(const std::vector<Clause>& cs);
