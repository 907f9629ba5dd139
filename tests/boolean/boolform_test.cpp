#include "boolean/boolform.h"

#include "store.h"
#include "support.h"

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <vector>

namespace tervoxal {

namespace {

/// f where the literal l is true.
BoolForm set(const BoolForm& f, const BoolForm& l) { return value(f, std::abs(l.nr), l.nr > 0); }

/// The formula of a postfix expression in an empty store.
BoolForm expression(const std::string& text) {
    static const std::map<std::string, BoolForm (*)(const BoolForm&, const BoolForm&)> operators = {
        {"con", con}, {"dis", dis}, {"equ", equ}, {"imp", imp}, {"notequ", notequ}, {"set", set}};
    BoolForm::clear();
    std::vector<BoolForm> stack;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (operators.contains(word)) {
            const BoolForm right = stack.back();
            stack.pop_back();
            stack.back() = operators.at(word)(stack.back(), right);
        } else if (word == "T" || word == "F") {
            stack.emplace_back(word == "T");
        } else {
            const int literal = std::stoi(word);
            stack.push_back(literal > 0 ? BoolForm(literal) : neg(BoolForm(-literal)));
        }
    }
    return stack.back();
}

/// The clauses of a composed formula by their definition alone.
std::set<Clause> plainClauses(const BoolForm& f) {
    std::set<Clause> cs;
    std::set<int> open = {std::abs(f.nr)};
    f.addVar(cs, f.nr);
    for (int n = *open.rbegin(); BoolForm::isNode(n); n = *open.rbegin()) {
        const Triple& t = BoolForm::triple(n);
        t.op == bfCon ? f.addCon(cs, t.left, t.right, n) : f.addEqu(cs, t.left, t.right, n);
        open.erase(n);
        open.insert({std::abs(t.left), std::abs(t.right)});
    }
    return cs;
}

TEST(Store, createsFoldsAndSubstitutes) {
    checkTable("expressions.tsv", [](auto& text) { return storeText(expression(text)); });
    for (const BoolForm& f : {BoolForm(true), BoolForm(1), expression("1 2 con")})
        EXPECT_TRUE(f.isNeg(neg(f)) && neg(f).isNeg(f) && !f.isNeg(f));
    BoolForm deep(1); // both operands shared: exponential without a memory, deep with recursion
    for (int v = 2; v < 200000; ++v) deep = con(equ(deep, BoolForm(v)), deep);
    EXPECT_EQ(value(deep, 1, false), BoolForm(false));
}

// Enough nodes that look-ups of every age occur; the map must hold what a plain insertion gives.
TEST(Store, keepsItsInvariantsThroughRandomFormulas) {
    BoolForm::clear();
    std::mt19937 random(1);
    std::vector<BoolForm> formulas;
    for (int v = 1; v <= 40; ++v) formulas.emplace_back(v);
    for (int i = 0; i < 60000; ++i) {
        const BoolForm a = formulas[random() % formulas.size()];
        const BoolForm b = formulas[random() % std::min(formulas.size(), 1 + random() % 500)];
        formulas.push_back(random() % 3 == 0 ? equ(neg(a), b) : con(neg(a), b));
    }
    const auto& tv = BoolForm::tv;
    ASSERT_EQ(formulas[0].maxVarNr(), 1000000 + static_cast<int>(tv.size()));
    ASSERT_EQ(BoolForm::mti.size(), tv.size());
    EXPECT_LT(Triple(bfCon, -2, 1), Triple(bfCon, 1, -2));
    EXPECT_TRUE(std::is_sorted(BoolForm::mti.begin(), BoolForm::mti.end()));
    for (std::size_t i = 0; i < tv.size(); ++i) {
        EXPECT_EQ(BoolForm::mti.at(tv[i]), 1000001 + static_cast<int>(i));
        EXPECT_LT(tv[i].left, tv[i].right);
        EXPECT_TRUE(tv[i].op == bfCon || tv[i].left > 0);
    }
    // Most nodes, or few among many: the same clauses by every road.
    for (std::size_t i = formulas.size() - 1; i > 100; i = i * 3 / 4) {
        for (const BoolForm& f : {formulas[i], con(formulas[i % 7], neg(BoolForm(500000)))}) {
            const ClauseRange range = f.clauses();
            std::set<Clause> cs;
            f.toCNF(cs);
            EXPECT_EQ(cs, plainClauses(f));
            EXPECT_EQ(range.size(), cs.size());
            EXPECT_EQ(range.maxNr(), maxCNFVarNr(cs));
            EXPECT_EQ(range.maxVariable(), maxCNFOrgVarNr(cs));
        }
    }
}

TEST(Clause, takesLiteralsInAnyOrderAndDropsRepeats) {
    checkTable("clauses.tsv", [](auto& literals) {
        std::istringstream in(literals);
        int l[3];
        for (int& literal : l) in >> literal;
        const Clause c(l[0], l[1], l[2]);
        return (std::ostringstream() << c.l1 << ' ' << c.l2 << ' ' << c.l3).str();
    });
}

TEST(Clauses, ofGatesOfAllSmallLiterals) {
    std::set<Clause> cs;
    for (int i = 0; i < 343; ++i) {
        const int x = i / 49 - 3;
        const int y = i / 7 % 7 - 3;
        const int z = i % 7 - 3;
        BoolForm(1).addCon(cs, x, y, z);
        EXPECT_EQ(cs, (std::set<Clause>{{-z, x, 0}, {-z, y, 0}, {-x, -y, z}}));
        cs.clear();
        BoolForm(1).addEqu(cs, x, y, z);
        EXPECT_EQ(cs, (std::set<Clause>{{-z, -x, y}, {-z, -y, x}, {x, y, z}, {-x, -y, z}}));
        cs.clear();
    }
}

// Operands as con and equ never give them: in any order, of any sign, equal, false.
TEST(Clauses, ofNodesAsTheyWereMade) {
    BoolForm::clear();
    std::mt19937 random(1);
    std::vector<BoolForm> formulas = {BoolForm(1000000), BoolForm(2), BoolForm(3), BoolForm(false)};
    for (int i = 0; i < 1000; ++i) {
        BoolForm f[2] = {formulas[random() % formulas.size()],
                         formulas[random() % formulas.size()]};
        for (BoolForm& operand : f)
            if (operand.nr != 0 && random() % 2 == 0) operand = neg(operand);
        formulas.emplace_back(f[0], f[1], static_cast<int>(1 + random() % 2));
        const ClauseRange range = formulas.back().clauses();
        std::vector<Clause> cs;
        for (const Clause& c : range) cs.push_back(c);
        const std::set<Clause> plain = plainClauses(formulas.back());
        EXPECT_EQ(cs, std::vector<Clause>(plain.begin(), plain.end()));
        EXPECT_EQ(range.size(), plain.size());
        EXPECT_EQ(range.maxVariable(), maxCNFOrgVarNr(plain));
    }
}

TEST(Clauses, areWrittenAsWholeFiles) {
    const Scratch dir;
    std::filesystem::current_path(dir.path);
    checkTable("files.tsv", [&](auto& text) {
        const BoolForm f = expression(text);
        std::set<Clause> cs;
        f.toCNF(cs);
        showCNF(cs, "set");
        showCNF(f.clauses(), "sorted");
        EXPECT_EQ(dir.read("set.cnf"), dir.read("sorted.cnf"));
        showCNF(cs);
        return dir.read("set.cnf") + '\t' + dir.read("test.cnf");
    });
    showCNF({Clause(1000000, 1000001, 0)}, "set");
    EXPECT_EQ(dir.read("set.cnf"), "p cnf 1000000 1\n1000000 1 0\n");
    std::set<Clause> cs = {Clause(8, 9, 0)};
    BoolForm(7).toCNF(cs);
    neg(BoolForm(6)).addNeg(cs, 3, 4);
    EXPECT_EQ(cs, (std::set<Clause>{{8, 9, 0}, {7, 0, 0}, {3, 4, 0}, {-3, -4, 0}}));
    BoolForm(false).toCNF(cs);
    EXPECT_EQ(cs, std::set<Clause>{Clause(0, 0, 0)});
    BoolForm(true).toCNF(cs);
    EXPECT_TRUE(cs.empty());
    expression("1 7 con 5 9 con").toCNF(cs); // the second node
    EXPECT_EQ(maxCNFOrgVarNr(cs), 9);
    EXPECT_EQ(maxCNFVarNr(cs), 1000002);
    std::vector<std::vector<int>> v = {{42}};
    EXPECT_EQ(createClauseVect(cs, v), 11);
    EXPECT_EQ(v, (std::vector<std::vector<int>>{{42}, {-5, -9, 11}, {11}, {5, -11}, {9, -11}}));
}

TEST(StoreDeathTest, assertsItsPreconditions) {
    const BoolForm x(1);
    EXPECT_DEATH((void)BoolForm(0), "boolform.*BoolForm::BoolForm\\(int\\).*nr > 0");
    EXPECT_DEATH((void)BoolForm(x, x, 3), "boolform.*op == bfCon \\|\\| op == bfEqu");
    EXPECT_DEATH((void)BoolForm(true, x, bfEqu), "boolform.*isTrue");
    EXPECT_DEATH((void)BoolForm(x, true, bfCon), "boolform.*isTrue");
    BoolForm::maxNr = std::numeric_limits<int>::max();
    EXPECT_DEATH((void)con(x, BoolForm(2)), "boolform.*maxNr");
}

} // namespace

} // namespace tervoxal
