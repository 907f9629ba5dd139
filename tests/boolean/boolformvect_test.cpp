#include "boolformvect.h"

#include "store.h"

#include <gtest/gtest.h>

namespace {

using Bits = std::bitset<2048>;
using Vector = const BoolFormVect&;

BoolFormVect constant(int len, int n) { return {len, Bits(static_cast<unsigned>(n))}; }

/// The number that a vector of constants holds; -1 if some bit is no constant.
int number(Vector v) {
    int n = 0;
    for (int i = 0; i < v.size(); ++i) {
        if (v[i].nr != 0 && !(v[i] == BoolForm(true))) return -1;
        n += v[i] == BoolForm(true) ? 1 << i : 0;
    }
    return n;
}

TEST(Vectors, leastSignificantBitFirst) {
    emptyStore();
    const BoolFormVect variables(2, 5);
    EXPECT_TRUE(variables[0].nr == 5 && variables[1].nr == 6);
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
}

// Constants fold, so the formulas are answers: every operation against the numbers it stands for.
TEST(Vectors, agreeWithArithmeticOnAllSmallNumbers) {
    emptyStore();
    const auto is = [](bool expected, const BoolForm& f) { EXPECT_EQ(f, BoolForm(expected)); };
    for (int m = 0; m < 8; ++m) {
        const BoolFormVect x = constant(3, m);
        is(m == 0, x.zero());
        is(m > 0, x.gez());
        is(m % 2 == 0, x.even());
        is(m % 2 == 1, x.odd());
        EXPECT_EQ(number(succ(x)), (m + 1) % 8);
        for (int n = 0; n < 8; ++n) {
            const BoolFormVect y = constant(3, n);
            const auto c = static_cast<unsigned>(n);
            is((m - n) % 2 == 0, x.evenDiff(y));
            is(m == n, eq(x, y));
            is(m / 2 == n / 2, eq(x, y, 1, 2));
            is(m > n, gt(x, y));
            is(m >= n, geq(x, y));
            is(m < n, lt(x, y));
            is(m <= n, leq(x, y));
            is(m % 2 * 8 + m == 2 * n, twice(BoolFormVect(constant(1, m % 2), x), y));
            is(m == n, eq(x, c));
            is(m < n, lt(x, c));
            is(m <= n, leq(x, c));
            is(m >= n, geq(x, c));
            is(m > n, gt(x, c));
            is(m % 2 == 0 && n == m + 1, isEvenPred(x, y));
            is(m == n + 1, isSucc(x, y));
            EXPECT_EQ(number(x + y), (m + n) % 8);
            EXPECT_EQ(number(x - y), (m - n + 8) % 8);
            EXPECT_EQ(x == y, m == n);
        }
    }
    EXPECT_EQ(BoolForm::tv.size(), 0U);
    is(true, eq(BoolFormVect(), BoolFormVect()));
    EXPECT_EQ(eq(BoolFormVect(2, 1), 5U), eq(BoolFormVect(2, 1), 1U));
    const BoolForm all = eq(BoolFormVect(32, 1), 0xFFFFFFFFU);
    EXPECT_EQ(eq(BoolFormVect(33, 1), 0xFFFFFFFFU), con(all, neg(BoolForm(33))));
}

// Node numbers show in the output, so the order of creation is part of each operation. A node is
// written as its kind and operands, #1 for the first.
TEST(Vectors, createTheirNodesInAFixedOrder) {
    const struct {
        BoolForm (*op)(Vector, Vector);
        const char* nodes; // of the vectors (1, 2) and (3, 4), then the result
    } rows[] = {
        {[](Vector x, Vector y) { return eq(x, y); }, "=1,3 =2,4 &#1,#2 #3"},
        {[](Vector x, Vector y) { return gt(x, y); }, "=2,4 &-3,1 &#1,#2 &-4,2 &-#4,-#3 -#5"},
        {[](Vector x, Vector y) { return lt(x, y); },
         "=2,4 &-3,1 &#1,#2 &-4,2 &-#4,-#3 =1,3 &#1,#6 &-#7,#5 #8"},
        {[](Vector x, Vector y) { return (x + y)[1]; }, "=1,3 &1,3 =2,4 =#2,#3 #4"},
        {[](Vector x, Vector y) { return isSucc(x, y); },
         "=2,4 &-3,1 &#1,#2 &-4,3 &-1,2 &#4,#5 &-#6,-#3 -#7"},
        {[](Vector x, Vector y) { return isEvenPred(x, y); }, "&-1,3 =2,4 &#1,#2 #3"},
        {[](Vector x, Vector) { return lt(x, 3U); }, "&-1,2 &-#1,2 -#2"},
        {[](Vector x, Vector) { return gt(x, 2U); }, "&-1,2 &-#1,2 #2"},
        {[](Vector x, Vector) { return x.gez(); }, "&-2,-1 -#1"},
    };
    const auto text = [](int nr) {
        const int n = std::abs(nr);
        return (nr < 0 ? "-" : "") +
               (n > 1000000 ? "#" + std::to_string(n - 1000000) : std::to_string(n));
    };
    for (const auto& row : rows) {
        emptyStore();
        const BoolForm result = row.op(BoolFormVect(2, 1), BoolFormVect(2, 3));
        std::string nodes;
        for (const Triple& t : BoolForm::tv) {
            nodes += (t.op == bfCon ? "&" : "=") + text(t.left) + ',' + text(t.right) + ' ';
        }
        EXPECT_EQ(nodes + text(result.nr), row.nodes);
    }
}

TEST(Vectors, assertTheirPreconditions) {
    const BoolFormVect two(2, 1);
    const BoolFormVect three(3, 1);
    const auto shifted = [](int len, int shift) { (void)BoolFormVect(len, Bits(1), shift); };
    EXPECT_DEATH((void)BoolFormVect(0, Bits(1)), "boolformvect.*bsLen <= len");
    EXPECT_DEATH(shifted(2, 2), "boolformvect.*bsLen \\+ shift <= len");
    EXPECT_DEATH((void)two[2], "BoolFormVect::operator\\[\\]\\(int\\) const.*i >= 0 && i < len");
    EXPECT_DEATH((void)two[-1], "i >= 0 && i < len");
    EXPECT_DEATH((void)lt(two, 4U), "i >= 0 && i < len");
    EXPECT_DEATH((void)BoolFormVect(1, 0), "nr > 0");
    EXPECT_DEATH((void)(two == three), "a1.len == a2.len");
    EXPECT_DEATH((void)twice(two, two), "a1.len = 2 a2.len = 2\n.*a1.len == a2.len \\+ 1");
    BoolForm (*const relations[])(Vector, Vector) = {eq, gt, geq, lt, leq, isSucc, isEvenPred};
    for (const auto relation : relations) {
        EXPECT_DEATH((void)relation(two, three), "(a1|x).len == (a2|y).len");
    }
    EXPECT_DEATH((void)eq(two, three, 0, 0), "a1.len == a2.len");
    EXPECT_DEATH((void)(two + three), "x.len == y.len");
    EXPECT_DEATH((void)(two - three), "x.len == y.len");
}

} // namespace
