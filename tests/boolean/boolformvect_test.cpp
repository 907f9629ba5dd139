#include "boolean/boolformvect.h"

#include "store.h"
#include "support.h"

#include <bitset>
#include <functional>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

using Bits = std::bitset<2048>;
using Vector = BoolFormVect;

Vector constant(int len, int n) { return {len, Bits(static_cast<unsigned>(n))}; }

struct Operation {
    std::string name;
    bool holds; // if x is m and y is n
    std::function<BoolForm()> build;
};

std::vector<Operation> operations(const Vector& x, const Vector& y, int m, int n) {
    const auto c = static_cast<unsigned>(n);
    return {
        {"zero(x)", m == 0, [&] { return x.zero(); }},
        {"gez(x)", m > 0, [&] { return x.gez(); }},
        {"even(x)", m % 2 == 0, [&] { return x.even(); }},
        {"odd(x)", m % 2 == 1, [&] { return x.odd(); }},
        {"evenDiff", (m - n) % 2 == 0, [&] { return x.evenDiff(y); }},
        {"eq(x, y)", m == n, [&] { return eq(x, y); }},
        {"eq(x, y, 1, 2)", m / 2 == n / 2, [&] { return eq(x, y, 1, 2); }},
        {"gt(x, y)", m > n, [&] { return gt(x, y); }},
        {"geq(x, y)", m >= n, [&] { return geq(x, y); }},
        {"lt(x, y)", m < n, [&] { return lt(x, y); }},
        {"leq(x, y)", m <= n, [&] { return leq(x, y); }},
        {"isEvenPred(x, y)", m % 2 == 0 && n == m + 1, [&] { return isEvenPred(x, y); }},
        {"isSucc(x, y)", m == n + 1, [&] { return isSucc(x, y); }},
        {"twice(0x, y)", m == 2 * n, [&] { return twice(Vector(constant(1, 0), x), y); }},
        {"eq(x, n)", m == n, [&, c] { return eq(x, c); }},
        {"lt(x, n)", m < n, [&, c] { return lt(x, c); }},
        {"leq(x, n)", m <= n, [&, c] { return leq(x, c); }},
        {"geq(x, n)", m >= n, [&, c] { return geq(x, c); }},
        {"gt(x, n)", m > n, [&, c] { return gt(x, c); }},
        {"bit 2 of x + y", ((m + n) & 4) != 0, [&] { return (x + y)[2]; }},
        {"bit 2 of x - y", ((m - n) & 4) != 0, [&] { return (x - y)[2]; }},
        {"bit 2 of succ(x)", ((m + 1) & 4) != 0, [&] { return succ(x)[2]; }},
    };
}

// Constants fold, so the formulas are answers: every operation against the numbers it stands for.
TEST(Vectors, agreeWithArithmeticOnAllSmallNumbers) {
    BoolForm::clear();
    for (int m = 0; m < 8; ++m) {
        for (int n = 0; n < 8; ++n) {
            const Vector x = constant(3, m);
            const Vector y = constant(3, n);
            for (const auto& [name, holds, build] : operations(x, y, m, n))
                EXPECT_EQ(build(), BoolForm(holds)) << name << m << n;
            EXPECT_EQ(x == y, m == n);
            EXPECT_EQ(x + y, constant(3, (m + n) % 8));
            EXPECT_EQ(x - y, constant(3, (m - n + 8) % 8));
            EXPECT_EQ(Vector(x, y), constant(6, 8 * m + n));
            EXPECT_EQ(Vector(5, Bits(static_cast<unsigned>(m)), 2), constant(5, 4 * m));
            Vector complement = x;
            complement.negAll();
            EXPECT_EQ(complement, constant(3, 7 - m));
            complement.reset();
            EXPECT_EQ(complement, constant(3, 0));
        }
    }
    EXPECT_EQ(BoolForm::tv.size(), 0U);
    EXPECT_EQ(eq(Vector(), Vector()), BoolForm(true));
    EXPECT_EQ(eq(Vector(2, 1), 5U), eq(Vector(2, 1), 1U));
    const BoolForm all = eq(Vector(32, 1), 0xFFFFFFFFU);
    EXPECT_EQ(eq(Vector(33, 1), 0xFFFFFFFFU), con(all, neg(BoolForm(33))));
}

// Node numbers show in the output, so the order of creation is part of each operation.
TEST(Vectors, createTheirNodesInAFixedOrder) {
    const Vector x(3, 1);
    const Vector y(3, 4);
    checkTable("vectors.tsv", [&](auto& name) {
        BoolForm::clear();
        for (const Operation& operation : operations(x, y, 0, 5)) {
            if (operation.name == name) return storeText(operation.build());
        }
        return std::string();
    });
}

TEST(Vectors, assertTheirPreconditions) {
    const Vector two(2, 1);
    const Vector three(3, 1);
    for (const auto& [name, holds, build] : operations(two, three, 0, 0)) {
        if (name.find('y') == std::string::npos) continue;
        EXPECT_DEATH((void)build(), "(a1|x).len == (a2|y).len") << name;
    }
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"boolformvect.*bsLen <= len", [] { (void)Vector(0, Bits(1)); }},
        {"boolformvect.*bsLen \\+ shift <= len", [] { (void)Vector(2, Bits(1), 2); }},
        {"bsLen \\+ shift <= len", [] { (void)Vector(4, Bits(1), 2147483647); }},
        {"shift >= 0", [] { (void)Vector(4, Bits(1), -1); }},
        {"i >= 0 && i < len", [&] { (void)eq(two, two, 1, 2147483647); }},
        {"i >= 0 && i < len", [&] { (void)eq(two, two, 2147483647, 1); }},
        {"BoolFormVect::operator\\[\\]\\(int\\) const.*i >= 0 && i < len", [&] { (void)two[2]; }},
        {"i >= 0 && i < len", [&] { (void)two[-1]; }},
        {"i >= 0 && i < len", [] { (void)(Vector() + Vector()); }},
        {"i >= 0 && i < len", [&] { (void)lt(two, 4U); }},
        {"nr > 0", [] { (void)Vector(1, 0); }},
        {"a1.len == a2.len", [&] { (void)(two == three); }},
        {"a1.len = 2 a2.len = 3\n.*a1.len == a2.len \\+ 1", [&] { (void)twice(two, three); }},
    };
    for (const auto& [message, violation] : rows) EXPECT_DEATH(violation(), message);
}

} // namespace

} // namespace tervoxal
