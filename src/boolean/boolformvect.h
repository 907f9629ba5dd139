// Bit vectors of formulas: unsigned numbers of fixed width, their relations and arithmetic.
//
// Index 0 is the least significant bit. A vector of fresh variables is the symbolic form of a
// number, a vector of constants a concrete number. The bits live in the store of formulas, and each
// operation creates its nodes in a fixed order, so the same calls give the same node numbers.
//
// Invariant: bits has exactly len entries.

#pragma once

#include "boolean/boolform.h"

#include <bitset>
#include <vector>

/// An unsigned number of len bits. Copying it copies the bits. From outside they are read
/// through size and operator[], and never written.
class BoolFormVect {
public:
    BoolFormVect() = default;
    /// len fresh variables: index i holds variable start + i. start is at least 1 unless len is 0.
    BoolFormVect(int len, int start);
    /// The constant bs. Precondition, asserted: the highest set bit of bs lies below len.
    BoolFormVect(int len, std::bitset<2048> bs);
    /// The constant bs times 2 to the power shift. Preconditions, asserted: shift is 0 or more, and
    /// the length of bs up to its highest set bit plus shift is at most len.
    BoolFormVect(int len, std::bitset<2048> bs, int shift);
    BoolFormVect(const BoolFormVect& v) = default;
    /// The concatenation: a supplies the high bits, b the low ones.
    BoolFormVect(const BoolFormVect& a, const BoolFormVect& b);
    BoolFormVect& operator=(const BoolFormVect&) = default;

    [[nodiscard]] int size() const { return len; }
    /// Bit i. Precondition, asserted: 0 <= i < len.
    BoolForm operator[](int i) const;

    /// Replaces every bit by its negation.
    void negAll();
    /// Sets every bit to false.
    void reset();

    /// The number is 0.
    [[nodiscard]] BoolForm zero() const;
    /// The number is above 0.
    [[nodiscard]] BoolForm gez() const;

    // The parity needs at least one bit.
    [[nodiscard]] BoolForm even() const;
    [[nodiscard]] BoolForm odd() const;
    /// The difference to b is even.
    [[nodiscard]] BoolForm evenDiff(const BoolFormVect& b) const;

private:
    /// Puts constant true at index shift + i for each set bit i below len.
    void setBits(const std::bitset<2048>& bs, int shift);

    int len = 0;
    std::vector<BoolForm> bits;

    // Their assertions name the lengths.
    friend BoolForm eq(const BoolFormVect& a1, const BoolFormVect& a2);
    friend BoolForm eq(const BoolFormVect& a1, const BoolFormVect& a2, int from, int count);
    friend BoolForm gt(const BoolFormVect& a1, const BoolFormVect& a2);
    friend BoolForm geq(const BoolFormVect& a1, const BoolFormVect& a2);
    friend BoolForm lt(const BoolFormVect& a1, const BoolFormVect& a2);
    friend BoolForm leq(const BoolFormVect& a1, const BoolFormVect& a2);
    friend BoolForm twice(const BoolFormVect& a1, const BoolFormVect& a2);
    friend BoolForm isEvenPred(const BoolFormVect& x, const BoolFormVect& y);
    friend BoolForm isSucc(const BoolFormVect& x, const BoolFormVect& y);
    friend bool operator==(const BoolFormVect& a1, const BoolFormVect& a2);
    friend BoolFormVect operator+(const BoolFormVect& x, const BoolFormVect& y);
    friend BoolFormVect operator-(const BoolFormVect& x, const BoolFormVect& y);
    friend BoolFormVect con(const BoolForm& a, const BoolFormVect& v);
};

// Relations of two vectors. Precondition, asserted: equal lengths.

[[nodiscard]] BoolForm eq(const BoolFormVect& a1, const BoolFormVect& a2);
/// Equality on the count indices from `from` upward. Precondition, asserted at the first that does
/// not: they lie within the vectors.
[[nodiscard]] BoolForm eq(const BoolFormVect& a1, const BoolFormVect& a2, int from, int count);
/// Builds a chain of equalities for each index, so the nodes grow with the square of the length.
[[nodiscard]] BoolForm gt(const BoolFormVect& a1, const BoolFormVect& a2);
[[nodiscard]] BoolForm geq(const BoolFormVect& a1, const BoolFormVect& a2);
[[nodiscard]] BoolForm lt(const BoolFormVect& a1, const BoolFormVect& a2);
[[nodiscard]] BoolForm leq(const BoolFormVect& a1, const BoolFormVect& a2);
/// a1 = 2 * a2. Precondition, asserted after a line on standard error: a1 has one bit more than a2.
[[nodiscard]] BoolForm twice(const BoolFormVect& a1, const BoolFormVect& a2);
/// x is even and y = x + 1.
[[nodiscard]] BoolForm isEvenPred(const BoolFormVect& x, const BoolFormVect& y);
/// x = y + 1 without wrapping around. The nodes grow with the square of the length.
[[nodiscard]] BoolForm isSucc(const BoolFormVect& x, const BoolFormVect& y);
/// The same formula at every index: an answer about the store, not a formula.
[[nodiscard]] bool operator==(const BoolFormVect& a1, const BoolFormVect& a2);

// Relations with a constant. Bits of c at or above the length are not looked at.

[[nodiscard]] BoolForm eq(const BoolFormVect& a, unsigned int c);
/// Precondition, asserted: the lowest set bit of c, if any, lies below the length.
[[nodiscard]] BoolForm lt(const BoolFormVect& a, unsigned int c);
[[nodiscard]] BoolForm leq(const BoolFormVect& a, unsigned int c);
[[nodiscard]] BoolForm geq(const BoolFormVect& a, unsigned int c);
[[nodiscard]] BoolForm gt(const BoolFormVect& a, unsigned int c);

// Arithmetic modulo 2 to the power of the length. Precondition, asserted: equal lengths, at
// least 1.

/// A ripple-carry adder.
[[nodiscard]] BoolFormVect operator+(const BoolFormVect& x, const BoolFormVect& y);
[[nodiscard]] BoolFormVect succ(const BoolFormVect& x);
/// The sum with the two's complement.
[[nodiscard]] BoolFormVect operator-(const BoolFormVect& x, const BoolFormVect& y);

/// v where a holds, else 0.
[[nodiscard]] BoolFormVect con(const BoolForm& a, const BoolFormVect& v);
