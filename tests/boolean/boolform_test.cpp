#include "boolform.h"

#include "store.h"
#include "support.h"

#include <algorithm>
#include <random>

namespace {

const BoolForm yes(true);
const BoolForm no(false);

class Store : public testing::Test {
protected:
    Store() { emptyStore(); }
    const BoolForm x{1}, y{2}, z{3};
};

std::vector<Clause> setOf(const BoolForm& f) {
    std::set<Clause> cs;
    f.toCNF(cs);
    return {cs.begin(), cs.end()};
}

std::string file(const BoolForm& f) {
    const Scratch dir;
    showCNF(f.clauses(), dir.path / "vector");
    std::set<Clause> cs;
    f.toCNF(cs);
    showCNF(cs, dir.path / "set");
    EXPECT_EQ(dir.read("vector.cnf"), dir.read("set.cnf"));
    return dir.read("set.cnf");
}

TEST_F(Store, numbersNodesInTheOrderOfCreation) {
    const std::pair<BoolForm, int> rows[] = {
        {con(x, y), 1000001},         {con(y, x), 1000001},     {dis(x, y), -1000002},
        {equ(neg(x), z), -1000003},   {notequ(x, z), -1000003}, {equ(neg(x), neg(z)), 1000003},
        {imp(x, y), -1000004},        {imp(x, neg(x)), -1},     {con(neg(x), y), 1000005},
        {equ(con(x, y), z), 1000006},
    };
    for (const auto& [result, nr] : rows) EXPECT_EQ(result.nr, nr);
    const std::vector<Triple> triples = {{bfCon, 1, 2},  {bfCon, -2, -1}, {bfEqu, 1, 3},
                                         {bfCon, -2, 1}, {bfCon, -1, 2},  {bfEqu, 3, 1000001}};
    EXPECT_EQ(BoolForm::tv, triples);
    EXPECT_EQ(x.maxVarNr(), 1000006);
}

TEST_F(Store, foldsConstantsAndEqualOperandsWithoutANode) {
    const BoolForm node = con(x, y);
    for (const BoolForm& a : {x, neg(x), node, neg(node), yes, no}) {
        EXPECT_EQ(neg(neg(a)), a);
        EXPECT_TRUE(a.isNeg(neg(a)) && neg(a).isNeg(a) && !a.isNeg(a));
        for (const BoolForm& b : {yes, no, a, neg(a)}) {
            const BoolForm whereFalse = b == a ? no : b == neg(a) ? yes : b; // b if a is false
            const BoolForm whereTrue = b == a ? yes : b == neg(a) ? no : b;
            const auto choice = [&](const BoolForm& ifTrue, const BoolForm& ifFalse) {
                return ifTrue == ifFalse ? ifTrue : ifTrue == yes ? a : neg(a);
            };
            EXPECT_EQ(con(a, b), choice(whereTrue, no));
            EXPECT_EQ(con(b, a), choice(whereTrue, no));
            EXPECT_EQ(dis(a, b), choice(yes, whereFalse));
            EXPECT_EQ(dis(b, a), choice(yes, whereFalse));
            EXPECT_EQ(equ(a, b), choice(whereTrue, neg(whereFalse)));
            EXPECT_EQ(equ(b, a), choice(whereTrue, neg(whereFalse)));
            EXPECT_EQ(imp(a, b), choice(whereTrue, yes));
            EXPECT_EQ(imp(b, a), choice(yes, neg(whereFalse)));
            EXPECT_EQ(notequ(a, b), neg(equ(a, b)));
        }
    }
    EXPECT_EQ(BoolForm::tv.size(), 1U);
}

// Enough nodes that look-ups of every age occur; the map must hold what a plain insertion gives.
TEST_F(Store, keepsItsInvariantsThroughRandomFormulas) {
    std::mt19937 random(1);
    std::vector<BoolForm> formulas;
    for (int v = 1; v <= 40; ++v) formulas.emplace_back(v);
    for (int i = 0; i < 60000; ++i) {
        BoolForm a = formulas[random() % formulas.size()];
        BoolForm b =
            formulas[random() % std::min<std::size_t>(formulas.size(), 1 + random() % 500)];
        if (random() % 2 == 0) std::swap(a, b);
        formulas.push_back(random() % 3 == 0 ? equ(neg(a), b) : con(neg(a), b));
    }
    const auto& tv = BoolForm::tv;
    ASSERT_GT(tv.size(), 40000U);
    ASSERT_EQ(BoolForm::maxNr, 1000000 + static_cast<int>(tv.size()));
    ASSERT_EQ(BoolForm::mti.size(), tv.size());
    EXPECT_TRUE(std::is_sorted(BoolForm::mti.begin(), BoolForm::mti.end()));
    for (std::size_t i = 0; i < tv.size(); ++i) {
        EXPECT_EQ(BoolForm::mti.at(tv[i]), 1000001 + static_cast<int>(i));
        EXPECT_LT(tv[i].left, tv[i].right);
        EXPECT_TRUE(tv[i].op == bfCon || tv[i].left > 0);
    }
    EXPECT_EQ(formulas.back().clauses(), setOf(formulas.back()));
}

TEST_F(Store, substitutesUnderNegationsRightOperandFirst) {
    const BoolForm inner = dis(neg(x), y);
    const BoolForm f = neg(con(equ(inner, z), con(neg(inner), BoolForm(4))));
    EXPECT_EQ(value(f, 1, true), neg(con(equ(y, z), con(neg(y), BoolForm(4)))));
    EXPECT_EQ(value(f, 1, false), yes);
    EXPECT_EQ(value(neg(x), 1, true), no);
    EXPECT_EQ(value(y, 1, true), y);
    EXPECT_EQ(value(yes, 1, false), yes);
    emptyStore();
    const BoolForm a = equ(con(x, y), z);           // 1000002
    const BoolForm b = con(con(x, z), BoolForm(4)); // 1000004
    EXPECT_EQ(value(con(a, b), 1, true).nr, 1000008);
    EXPECT_EQ(BoolForm::tv[5], Triple(bfCon, 3, 4));
    EXPECT_EQ(BoolForm::tv[6], Triple(bfEqu, 2, 3));
    BoolForm deep = x; // both operands shared: exponential without a memory, deep with recursion
    for (int v = 2; v < 200000; ++v) deep = con(equ(deep, BoolForm(v)), deep);
    EXPECT_EQ(value(deep, 1, false), no);
}

TEST(Clause, takesLiteralsInAnyOrderAndDropsRepeats) {
    const struct {
        Clause clause;
        int l1, l2, l3;
    } rows[] = {
        {{7, 0, 0}, 0, 0, 7},   {{-9, 3, 0}, 0, 3, -9}, {{5, -4, 3}, 3, -4, 5},
        {{3, 5, -4}, 3, -4, 5}, {{-4, 3, 5}, 3, -4, 5}, {{2, 2, 5}, 2, 0, 5},
        {{5, 2, 5}, 2, 5, 0},   {{2, -2, 5}, 2, -2, 5}, {{0, 0, 0}, 0, 0, 0},
    };
    for (const auto& [clause, l1, l2, l3] : rows) {
        EXPECT_EQ(std::vector({clause.l1, clause.l2, clause.l3}), std::vector({l1, l2, l3}));
    }
}

TEST_F(Store, constantsEmptyTheSetOthersAddToIt) {
    std::set<Clause> cs = {Clause(8, 9, 0)};
    BoolForm(7).toCNF(cs);
    neg(BoolForm(6)).addNeg(cs, 3, 4);
    EXPECT_EQ(cs, (std::set<Clause>{{8, 9, 0}, {7, 0, 0}, {3, 4, 0}, {-3, -4, 0}}));
    no.toCNF(cs);
    EXPECT_EQ(cs, std::set<Clause>{Clause(0, 0, 0)});
    yes.toCNF(cs);
    EXPECT_TRUE(cs.empty());
}

TEST_F(Store, writesWholeFiles) {
    EXPECT_EQ(file(yes), "p cnf 0 0\n");
    EXPECT_EQ(file(no), "p cnf 0 1\n0\n");
    EXPECT_EQ(file(neg(BoolForm(7))), "p cnf 7 1\n-7 0\n");
    (void)con(BoolForm(5), neg(BoolForm(9))); // stays unreached
    EXPECT_EQ(file(con(equ(dis(BoolForm(3), BoolForm(7)), BoolForm(5)), neg(BoolForm(2)))),
              "p cnf 11 11\n-5 -9 10 0\n-5 9 -10 0\n-10 -11 0\n-7 -9 0\n-3 -9 0\n-2 -11 0\n"
              "11 0\n2 10 11 0\n3 7 9 0\n5 -9 -10 0\n5 9 10 0\n");
    std::set<Clause> cs;
    con(x, y).toCNF(cs);
    std::vector<std::vector<int>> v = {{42}};
    EXPECT_EQ(createClauseVect(cs, v), 2 + 5); // con(x, y) is the fifth node by now
    EXPECT_EQ(v.size(), 5U);
    EXPECT_EQ(v.front(), std::vector{42});
    const Scratch dir;
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(dir.path);
    showCNF(std::set<Clause>{{1, -1000001, 0}, {1000001, 0, 0}});
    std::filesystem::current_path(here);
    EXPECT_EQ(dir.read("test.cnf"), "p cnf 1000001 2\n1000001 0\n1 -1000001 0\n");
}

TEST_F(Store, renumbersOneToOneBeyondHalfAMillionVariables) {
    const BoolForm f = con(BoolForm(500000), BoolForm(999999));
    EXPECT_EQ(maxCNFOrgVarNr(f.clauses()), 999999);
    EXPECT_EQ(maxCNFVarNr(f.clauses()), 1000001);
    EXPECT_EQ(file(f), "p cnf 1000000 4\n-500000 -999999 1000000 0\n1000000 0\n"
                       "500000 -1000000 0\n999999 -1000000 0\n");
}

TEST_F(Store, aFileThatCannotBeWrittenIsNotReported) {
    testing::internal::CaptureStderr();
    showCNF(std::vector<Clause>{Clause(1, 0, 0)}, "/no/such/directory/file");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

using StoreDeathTest = Store;

TEST_F(StoreDeathTest, assertsItsPreconditions) {
    EXPECT_DEATH((void)BoolForm(0), "boolform.*BoolForm::BoolForm\\(int\\).*nr > 0");
    EXPECT_DEATH((void)BoolForm(x, y, 3), "boolform.*op == bfCon \\|\\| op == bfEqu");
    BoolForm::maxNr = std::numeric_limits<int>::max();
    EXPECT_DEATH((void)con(x, y), "boolform.*maxNr");
}

} // namespace
