#include "expression.h"

#include "ectlform.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using Random = std::mt19937;  // % n: unlike the distributions the same everywhere
using States = std::uint32_t; // those in which a formula holds, one bit each
constexpr States inAll = ~0U;
constexpr std::array<States, 5> carriers = {0xaaaaaaaa, 0xcccccccc, 0xf0f0f0f0, 0xff00ff00,
                                            0xffff0000};
const PropNumbers named = {{"a", {0}}, {"b.c'[1]-", {1}}, {R"(d "e"\ | f)", {2}}, {"true", {3}}};
const std::array<std::string, 5> texts = {"a", "b.c'[1]-", R"("d \"e\"\ | f")", R"("true")", "p4"};

struct Expression {
    std::string text;
    States states;
};

/// An expression whose operators all bind at least as strongly as level: 0 ->, 1 |, 2 &, 3 !.
Expression random(Random& r, unsigned long level, int depth) {
    const std::string blank(r() % 4 == 0 ? 1 : 0, ' ');
    const auto bracketed = [&](const Expression& e) {
        return Expression{'(' + blank + e.text + ')' + blank, e.states};
    };
    const auto kind = depth == 0 ? 5 + r() % 3 : r() % 8;
    if (kind < 4 && kind < level) return bracketed(random(r, 0, depth));
    if (kind == 3) {
        const Expression e = random(r, 3, depth - 1);
        return {'!' + blank + e.text, ~e.states};
    }
    if (kind < 3) {
        const Expression left = random(r, kind == 0 ? 1UL : kind, depth - 1);
        const Expression right = random(r, kind == 0 ? 0UL : kind + 1, depth - 1);
        const States l = left.states;
        const std::array both = {~l | right.states, l | right.states, l & right.states};
        const std::array operators = {" ->", "|", "&"};
        return {left.text + operators.at(kind) + blank + right.text, both.at(kind)};
    }
    if (kind == 4) return bracketed(random(r, 0, depth - 1));
    if (r() % 6 == 0) return r() % 2 == 0 ? Expression{"true ", inAll} : Expression{"false ", 0};
    const std::size_t prop = r() % 5;
    return {texts.at(prop) + blank, carriers.at(prop)};
}

States statesOf(const EctlForm& form) {
    std::vector<States> stack;
    for (const OnpNode& token : form.onp) {
        if (token.op <= OpNegVar) {
            const States carried =
                token.op == OpTrue ? inAll : carriers.at(static_cast<std::size_t>(token.varNr));
            stack.push_back(token.op == OpNegVar ? ~carried : carried);
        } else {
            const States right = stack.back();
            stack.pop_back();
            stack.back() = token.op == OpCon ? stack.back() & right : stack.back() | right;
        }
    }
    EXPECT_EQ(stack.size(), 1U);
    return stack.back();
}

TEST(Expression, meansTheSameInPostfix) {
    Random r(1);
    for (int i = 0; i < 20000; ++i) {
        const Expression e = random(r, 0, i % 7);
        const Translated t = translated(e.text, named);
        ASSERT_EQ(statesOf(EctlForm(t.postfix)), e.states) << e.text << '\n' << t.postfix;
    }
}

} // namespace
