#include "boolformvect.h"

#include "store.h"

#include <gtest/gtest.h>

namespace {

using Bits = std::bitset<2048>;

class Vectors : public testing::Test {
protected:
    Vectors() { emptyStore(); }
    /// The number that a vector of constants holds; -1 if some bit is no constant.
    static int number(const BoolFormVect& v) {
        int n = 0;
        for (int i = 0; i < v.size(); ++i) {
            if (v[i].nr != 0 && !(v[i] == BoolForm(true))) return -1;
            n += v[i] == BoolForm(true) ? 1 << i : 0;
        }
        return n;
    }
    static BoolFormVect constant(int len, int n) { return {len, Bits(static_cast<unsigned>(n))}; }
};

TEST_F(Vectors, constructorsPutTheLeastSignificantBitFirst) {
    const BoolFormVect variables(3, 5);
    EXPECT_EQ(std::vector({variables[0].nr, variables[1].nr, variables[2].nr}),
              std::vector({5, 6, 7}));
    EXPECT_EQ(number(constant(4, 5)), 5);
    EXPECT_TRUE(constant(4, 1)[0] == BoolForm(true));
    EXPECT_EQ(number(BoolFormVect(4, Bits(3), 2)), 12);
    EXPECT_EQ(number(BoolFormVect(constant(2, 2), constant(3, 5))), 2 * 8 + 5);
    BoolFormVect v = constant(3, 5);
    const BoolFormVect copy = v;
    v.negAll();
    EXPECT_EQ(number(v), 2);
    v.reset();
    EXPECT_EQ(number(v), 0);
    EXPECT_EQ(number(copy), 5);
    EXPECT_EQ(BoolForm::tv.size(), 0U);
}

// Constants fold, so the formulas are answers: every operation against the numbers it stands for.
TEST_F(Vectors, agreeWithArithmeticOnAllSmallNumbers) {
    const int len = 3;
    const auto answer = [](const BoolForm& f) { return f == BoolForm(true); };
    for (int m = 0; m < 8; ++m) {
        const BoolFormVect x = constant(len, m);
        EXPECT_EQ(answer(x.zero()), m == 0);
        EXPECT_EQ(answer(x.gez()), m > 0);
        EXPECT_EQ(answer(x.even()), m % 2 == 0);
        EXPECT_EQ(answer(x.odd()), m % 2 == 1);
        EXPECT_EQ(number(succ(x)), (m + 1) % 8);
        for (int n = 0; n < 8; ++n) {
            const BoolFormVect y = constant(len, n);
            const auto c = static_cast<unsigned>(n);
            EXPECT_EQ(answer(x.evenDiff(y)), (m - n) % 2 == 0);
            EXPECT_EQ(answer(eq(x, y)), m == n);
            EXPECT_EQ(answer(eq(x, y, 1, 2)), m / 2 == n / 2);
            EXPECT_EQ(answer(gt(x, y)), m > n);
            EXPECT_EQ(answer(geq(x, y)), m >= n);
            EXPECT_EQ(answer(lt(x, y)), m < n);
            EXPECT_EQ(answer(leq(x, y)), m <= n);
            EXPECT_EQ(answer(twice(BoolFormVect(constant(1, m % 2), x), y)),
                      m % 2 * 8 + m == 2 * n);
            EXPECT_EQ(answer(eq(x, c)), m == n);
            EXPECT_EQ(answer(lt(x, c)), m < n);
            EXPECT_EQ(answer(leq(x, c)), m <= n);
            EXPECT_EQ(answer(geq(x, c)), m >= n);
            EXPECT_EQ(answer(gt(x, c)), m > n);
            EXPECT_EQ(number(x + y), (m + n) % 8);
            EXPECT_EQ(number(x - y), (m - n + 8) % 8);
            EXPECT_EQ(answer(isEvenPred(x, y)), m % 2 == 0 && n == m + 1);
            EXPECT_EQ(answer(isSucc(x, y)), m == n + 1);
            EXPECT_EQ(x == y, m == n);
        }
    }
    EXPECT_EQ(BoolForm::tv.size(), 0U);
}

// Node numbers show in the output, so the order of creation is part of each operation.
TEST_F(Vectors, createTheirNodesInAFixedOrder) {
    const BoolFormVect a(2, 1);
    const BoolFormVect b(2, 3);
    const int n = 1000000;
    const struct {
        BoolForm (*op)(const BoolFormVect&, const BoolFormVect&);
        int result;
        std::vector<Triple> nodes;
    } rows[] = {
        {[](auto& x, auto& y) { return eq(x, y); },
         n + 3,
         {{bfEqu, 1, 3}, {bfEqu, 2, 4}, {bfCon, n + 1, n + 2}}},
        {[](auto& x, auto& y) { return gt(x, y); },
         -(n + 5),
         {{bfEqu, 2, 4},
          {bfCon, -3, 1},
          {bfCon, n + 1, n + 2},
          {bfCon, -4, 2},
          {bfCon, -(n + 4), -(n + 3)}}},
        {[](auto& x, auto& y) { return lt(x, y); },
         n + 8,
         {{bfEqu, 2, 4},
          {bfCon, -3, 1},
          {bfCon, n + 1, n + 2},
          {bfCon, -4, 2},
          {bfCon, -(n + 4), -(n + 3)},
          {bfEqu, 1, 3},
          {bfCon, n + 1, n + 6},
          {bfCon, -(n + 7), n + 5}}},
        {[](auto& x, auto& y) { return (x + y)[1]; },
         n + 4,
         {{bfEqu, 1, 3}, {bfCon, 1, 3}, {bfEqu, 2, 4}, {bfEqu, n + 2, n + 3}}},
        {[](auto& x, auto& y) { return isSucc(x, y); },
         -(n + 7),
         {{bfEqu, 2, 4},
          {bfCon, -3, 1},
          {bfCon, n + 1, n + 2},
          {bfCon, -4, 3},
          {bfCon, -1, 2},
          {bfCon, n + 4, n + 5},
          {bfCon, -(n + 6), -(n + 3)}}},
        {[](auto& x, auto& y) { return isEvenPred(x, y); },
         n + 3,
         {{bfCon, -1, 3}, {bfEqu, 2, 4}, {bfCon, n + 1, n + 2}}},
        {[](auto& x, auto&) { return lt(x, 3U); },
         -(n + 2),
         {{bfCon, -1, 2}, {bfCon, -(n + 1), 2}}},
        {[](auto& x, auto&) { return gt(x, 2U); }, n + 2, {{bfCon, -1, 2}, {bfCon, -(n + 1), 2}}},
    };
    for (const auto& row : rows) {
        emptyStore();
        EXPECT_EQ(row.op(a, b).nr, row.result);
        EXPECT_EQ(BoolForm::tv, row.nodes);
    }
}

TEST_F(Vectors, edgeWidths) {
    const BoolFormVect empty;
    EXPECT_TRUE(eq(empty, empty) == BoolForm(true) && gt(empty, empty) == BoolForm(false));
    EXPECT_TRUE(lt(empty, empty) == BoolForm(false) && empty == empty);
    EXPECT_EQ(eq(BoolFormVect(2, 1), 5U), eq(BoolFormVect(2, 1), 1U));
    EXPECT_EQ(eq(BoolFormVect(40, 1), 0xFFFFFFFFU).maxVarNr() - 1000001, 39); // bits 32 up are 0
    EXPECT_EQ((BoolFormVect(1, 8) + BoolFormVect(1, 9))[0], notequ(BoolForm(8), BoolForm(9)));
}

TEST_F(Vectors, assertTheirPreconditions) {
    const BoolFormVect two(2, 1);
    const BoolFormVect three(3, 1);
    const auto one = [](int len, int shift) { (void)BoolFormVect(len, Bits(1), shift); };
    EXPECT_DEATH((void)BoolFormVect(0, Bits(1)), "boolformvect.*bsLen <= len");
    EXPECT_DEATH(one(2, 2), "boolformvect.*bsLen \\+ shift <= len");
    EXPECT_DEATH((void)two[2], "BoolFormVect::operator\\[\\]\\(int\\) const.*i >= 0 && i < len");
    EXPECT_DEATH((void)two[-1], "i >= 0 && i < len");
    EXPECT_DEATH((void)lt(two, 4U), "i >= 0 && i < len");
    EXPECT_DEATH((void)BoolFormVect(1, 0), "nr > 0");
    EXPECT_DEATH((void)succ(BoolFormVect()), "bsLen <= len");
    EXPECT_DEATH((void)(two == three), "a1.len == a2.len");
    for (auto* op : {+[](const BoolFormVect&a, const BoolFormVect&b) { return eq(a, b); },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return eq(a, b, 0, 0); },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return gt(a, b); },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return geq(a, b); },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return lt(a, b); },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return leq(a, b); }}) {
        EXPECT_DEATH((void)op(two, three), "a1.len == a2.len");
    }
    for (auto* op : {+[](const BoolFormVect&a, const BoolFormVect&b) { return isSucc(a, b); },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return isEvenPred(a, b); },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return (a + b)[0]; },
                     +[](const BoolFormVect&a, const BoolFormVect&b) { return (a - b)[0]; }}) {
        EXPECT_DEATH((void)op(two, three), "x.len == y.len");
    }
    EXPECT_DEATH((void)twice(two, two), "a1.len = 2 a2.len = 2\n.*a1.len == a2.len \\+ 1");
}

} // namespace
