#include "boolean/boolformvect.h"

#include <cassert>
#include <iostream>

using namespace tervoxal;

namespace {

/// Wide enough to add any shift to it.
long lengthOf(std::bitset<2048> bs) {
    long bsLen = 0;
    for (; bs.any(); bs >>= 1) ++bsLen;
    return bsLen;
}

bool bitOf(unsigned int c, int i) { return i < 32 && (c >> static_cast<unsigned>(i) & 1U) != 0; }

} // namespace

void BoolFormVect::setBits(const std::bitset<2048>& bs, int shift) {
    for (int i = 0; i + shift < len; ++i) {
        const auto bit = static_cast<std::size_t>(i);
        if (bit < bs.size() && bs[bit])
            bits[bit + static_cast<std::size_t>(shift)] = BoolForm(true);
    }
}

BoolFormVect::BoolFormVect(int len, int start)
    : len(len), bits(static_cast<std::size_t>(len), BoolForm(false)) {
    for (BoolForm& bit : bits) bit = BoolForm(start++);
}

BoolFormVect::BoolFormVect(int len, std::bitset<2048> bs)
    : len(len), bits(static_cast<std::size_t>(len), BoolForm(false)) {
    const long bsLen = lengthOf(bs);
    assert(bsLen <= len);
    setBits(bs, 0);
}

BoolFormVect::BoolFormVect(int len, std::bitset<2048> bs, int shift)
    : len(len), bits(static_cast<std::size_t>(len), BoolForm(false)) {
    const long bsLen = lengthOf(bs);
    assert(shift >= 0);
    assert(bsLen + shift <= len);
    setBits(bs, shift);
}

BoolFormVect::BoolFormVect(const BoolFormVect& a, const BoolFormVect& b)
    : len(a.len + b.len), bits(b.bits) {
    bits.insert(bits.end(), a.bits.begin(), a.bits.end());
}

BoolForm BoolFormVect::operator[](int i) const {
    assert(i >= 0 && i < len);
    return bits[static_cast<std::size_t>(i)];
}

void BoolFormVect::negAll() {
    for (BoolForm& bit : bits) bit = neg(bit);
}

void BoolFormVect::reset() {
    for (BoolForm& bit : bits) bit = BoolForm(false);
}

BoolForm BoolFormVect::zero() const {
    BoolForm r(true);
    for (const BoolForm& bit : bits) r = con(r, equ(bit, false));
    return r;
}

BoolForm BoolFormVect::gez() const {
    BoolForm r(false);
    for (const BoolForm& bit : bits) r = dis(r, equ(bit, true));
    return r;
}

BoolForm BoolFormVect::even() const { return equ((*this)[0], false); }

BoolForm BoolFormVect::odd() const { return equ((*this)[0], true); }

BoolForm BoolFormVect::evenDiff(const BoolFormVect& b) const { return equ((*this)[0], b[0]); }

BoolForm eq(const BoolFormVect& a1, const BoolFormVect& a2) {
    assert(a1.len == a2.len);
    return eq(a1, a2, 0, a1.len);
}

BoolForm eq(const BoolFormVect& a1, const BoolFormVect& a2, int from, int count) {
    assert(a1.len == a2.len);
    BoolForm r(true);
    for (int i = from; count > 0; ++i, --count) r = con(r, equ(a1[i], a2[i]));
    return r;
}

BoolForm gt(const BoolFormVect& a1, const BoolFormVect& a2) {
    assert(a1.len == a2.len);
    BoolForm r(false);
    for (int i = 0; i < a1.len; ++i) {
        BoolForm t = eq(a1, a2, i + 1, a1.len - (i + 1));
        t = con(t, con(a1[i], neg(a2[i])));
        r = dis(r, t);
    }
    return r;
}

BoolForm geq(const BoolFormVect& a1, const BoolFormVect& a2) {
    assert(a1.len == a2.len);
    const BoolForm g = gt(a1, a2);
    const BoolForm e = eq(a1, a2);
    return dis(e, g);
}

BoolForm lt(const BoolFormVect& a1, const BoolFormVect& a2) {
    assert(a1.len == a2.len);
    return neg(geq(a1, a2));
}

BoolForm leq(const BoolFormVect& a1, const BoolFormVect& a2) {
    assert(a1.len == a2.len);
    return neg(gt(a1, a2));
}

BoolForm twice(const BoolFormVect& a1, const BoolFormVect& a2) {
    if (a1.len != a2.len + 1) {
        std::cerr << "a1.len = " << a1.len << " a2.len = " << a2.len << '\n';
    }
    assert(a1.len == a2.len + 1);
    BoolForm r = a1.even();
    for (int i = 0; i < a2.len; ++i) r = con(r, equ(a1[i + 1], a2[i]));
    return r;
}

BoolForm isEvenPred(const BoolFormVect& x, const BoolFormVect& y) {
    assert(x.len == y.len);
    BoolForm r = con(y.odd(), x.even());
    for (int i = 1; i < x.len; ++i) r = con(r, equ(x[i], y[i]));
    return r;
}

BoolForm isSucc(const BoolFormVect& x, const BoolFormVect& y) {
    assert(x.len == y.len);
    BoolForm r(false);
    for (int i = 0; i < x.len; ++i) {
        BoolForm t = neg(y[i]);
        for (int j = 0; j < i; ++j) t = con(t, y[j]);
        BoolForm u = x[i];
        for (int j = 0; j < i; ++j) u = con(u, neg(x[j]));
        const BoolForm w = eq(x, y, i + 1, x.len - (i + 1));
        r = dis(r, con(con(t, u), w));
    }
    return r;
}

bool operator==(const BoolFormVect& a1, const BoolFormVect& a2) {
    assert(a1.len == a2.len);
    return a1.bits == a2.bits;
}

BoolForm eq(const BoolFormVect& a, unsigned int c) {
    BoolForm r(true);
    for (int i = 0; i < a.size(); ++i) r = con(r, bitOf(c, i) ? a[i] : neg(a[i]));
    return r;
}

BoolForm lt(const BoolFormVect& a, unsigned int c) {
    if (c == 0) return false;
    int i = 0;
    while (!bitOf(c, i)) ++i;
    // r says that a up to bit i is less than c up to bit i
    BoolForm r = neg(a[i]);
    for (++i; i < a.size(); ++i) {
        r = bitOf(c, i) ? dis(con(a[i], r), neg(a[i])) : con(r, neg(a[i]));
    }
    return r;
}

BoolForm leq(const BoolFormVect& a, unsigned int c) {
    const BoolForm l = lt(a, c);
    const BoolForm e = eq(a, c);
    return dis(e, l);
}

BoolForm geq(const BoolFormVect& a, unsigned int c) { return neg(lt(a, c)); }

BoolForm gt(const BoolFormVect& a, unsigned int c) { return neg(leq(a, c)); }

BoolFormVect operator+(const BoolFormVect& x, const BoolFormVect& y) {
    assert(x.len == y.len);
    BoolFormVect r(x.len, std::bitset<2048>());
    const BoolForm lowest = notequ(x[0], y[0]); // asserts that there is one
    r.bits[0] = lowest;
    BoolForm carry(false);
    for (int i = 1; i < x.len; ++i) {
        const BoolForm p = con(x[i - 1], y[i - 1]);
        const BoolForm q = con(x[i - 1], carry);
        const BoolForm s = con(y[i - 1], carry);
        carry = dis(dis(p, q), s);
        r.bits[static_cast<std::size_t>(i)] = notequ(notequ(x[i], y[i]), carry);
    }
    return r;
}

BoolFormVect succ(const BoolFormVect& x) {
    return x + BoolFormVect(x.size(), std::bitset<2048>(1));
}

BoolFormVect operator-(const BoolFormVect& x, const BoolFormVect& y) {
    assert(x.len == y.len);
    BoolFormVect complement = y;
    complement.negAll();
    return x + succ(complement);
}

BoolFormVect con(const BoolForm& a, const BoolFormVect& v) {
    BoolFormVect r = v;
    for (BoolForm& bit : r.bits) bit = con(a, bit);
    return r;
}
