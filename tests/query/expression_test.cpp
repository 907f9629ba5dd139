#include "query/expression.h"

#include "query/grammar.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace tervoxal {

namespace {

using Random = std::mt19937;  // % n: unlike the distributions the same everywhere
using States = std::uint32_t; // those in which a formula holds, one bit each
constexpr States inAll = ~0U;
constexpr std::array<States, 9> carriers = {0xaaaaaaaa, 0xcccccccc, 0xf0f0f0f0,
                                            0xff00ff00, 0xffff0000, 0x12345678,
                                            0x9abcdef0, 0x0f1e2d3c, 0x4b5a6978};
const Vocabulary vocabulary = {
    {{"a", {0}}, {"b.c'[1]-", {1}}, {R"(d "e"\ | f)", {2}}, {"true", {3}}, {"at", {4}}},
    {{{"6", {7}}, {"x, y", {6}}}, {6, 7}},
    {{{"c", {8}}}, {8}},
    {{8, {{{"l", {9}}}, {9}}}}};
/// Texts of what holds in the carriers.
const std::array<std::vector<std::string>, 9> texts = {
    {{"a"},
     {"b.c'[1]-"},
     {R"("d \"e\"\ | f")"},
     {R"("true")"},
     {"p4", "at"},
     {"deadlock"},
     {"enabled(6)", "enabled (\"x, y\")", "enabled( 06 )"},
     {R"(enabled("6"))", "enabled(7)"},
     {"at(8,9)", "at (c, l)", R"(at("c" ,"l"))"}}};

/// A text, and the states in which it holds.
struct Text {
    std::string text;
    States states;
};

/// An expression about the first carriers whose operators all bind at least as strongly as level:
/// 0 ->, 1 |, 2 &, 3 !.
Text random(Random& r, std::size_t atoms, unsigned long level, int depth) {
    const std::string blank(r() % 4 == 0 ? 1 : 0, ' ');
    const auto bracketed = [&](const Text& e) {
        return Text{'(' + blank + e.text + ')' + blank, e.states};
    };
    const auto kind = depth == 0 ? 5 + r() % 3 : r() % 8;
    if (kind < 4 && kind < level) return bracketed(random(r, atoms, 0, depth));
    if (kind == 3) {
        const Text e = random(r, atoms, 3, depth - 1);
        return {'!' + blank + e.text, ~e.states};
    }
    if (kind < 3) {
        const Text left = random(r, atoms, kind == 0 ? 1UL : kind, depth - 1);
        const Text right = random(r, atoms, kind == 0 ? 0UL : kind + 1, depth - 1);
        const States l = left.states;
        const std::array both = {~l | right.states, l | right.states, l & right.states};
        const std::array operators = {" ->", "|", "&"};
        return {left.text + operators.at(kind) + blank + right.text, both.at(kind)};
    }
    if (kind == 4) return bracketed(random(r, atoms, 0, depth - 1));
    if (r() % 6 == 0) return r() % 2 == 0 ? Text{"true ", inAll} : Text{"false ", 0};
    const std::size_t atom = r() % atoms;
    const std::vector<std::string>& ways = texts.at(atom);
    return {ways[r() % ways.size()] + blank, carriers.at(atom)};
}

/// Finds the states in which a condition holds.
struct Where {
    static States constant(bool value) { return value ? inAll : 0; }
    static States atom(const Condition::Token& token) {
        using Term = Condition::Term;
        EXPECT_TRUE(token.term != Term::at || token.number == 8);
        return carriers.at(token.term == Term::deadlock ? 5
                           : token.term == Term::at     ? token.location - 1
                                                        : token.number);
    }
    static States negation(States a) { return ~a; }
    static States conjunction(States a, States b) { return a & b; }
    static States disjunction(States a, States b) { return a | b; }
};

TEST(Expression, meansTheSameAsConditionAndInPostfix) {
    Random r(1);
    for (int i = 0; i < 20000; ++i) {
        const bool propsAlone = i % 2 == 0;
        const Text text = random(r, propsAlone ? 5 : 9, 0, i % 7);
        const Expression e = expressionOf(text.text, vocabulary);
        ASSERT_EQ(valueOf(e.condition, Where()), text.states) << text.text;
        if (!propsAlone) continue;
        EXPECT_EQ(e.beyondFormula, "");
        const std::string postfix = postfixOf(e.condition);
        ASSERT_EQ(valueOf(conditionOf(EctlForm(postfix)), Where()), text.states)
            << text.text << '\n'
            << postfix;
    }
}

TEST(Expression, takesTheFormsOfTheHelp) {
    const Vocabulary things = {{{"a", {1}}, {"b", {2}}, {"name", {3}}, {"a name", {4}}},
                               {{{"x", {5}}}, {5}},
                               {{{"a", {6}}}, {6}},
                               {{6, {{{"l", {7}}}, {7}}}}};
    for (const Grammar grammar : {Grammar::ofFormulas, Grammar::whole}) {
        std::istringstream help(grammarHelp(grammar));
        int formsBeyond = 0;
        for (std::string line; std::getline(help, line) && !line.empty();) {
            std::string form = line.substr(2, line.find("  ", 2) - 2);
            if (form.empty()) continue;
            if (form == "true, false") form = "true & false";
            formsBeyond += expressionOf(form, things).beyondFormula.empty() ? 0 : 1;
        }
        EXPECT_EQ(formsBeyond > 0, grammar == Grammar::whole);
    }
}

} // namespace

} // namespace tervoxal
