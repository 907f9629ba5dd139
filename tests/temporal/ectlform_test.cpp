#include "temporal/ectlform.h"

#include "support.h"

#include <set>

namespace tervoxal {

namespace {

std::string program(const EctlForm& f) {
    std::string text;
    for (const OnpNode& n : f.onp) {
        text += (text.empty() ? "" : " ") + std::to_string(n.op) + ':' + std::to_string(n.varNr);
    }
    return text;
}

TEST(EctlForm, parsesAndMeasures) {
    checkTable("formulas.tsv", [](auto& text) {
        const EctlForm f(text);
        EXPECT_EQ(f.getOp(), f.onp.empty() ? OpNone : f.onp.back().op);
        EXPECT_EQ(f.getVarNr(), f.onp.empty() ? 0 : f.onp.back().varNr);
        EXPECT_EQ(printed([&] { f.show(); }), f.getText() + "\n\n");
        EXPECT_TRUE(f.getLeft() == EctlForm(f.left) && f.getRight() == EctlForm(f.right));
        std::set<int> numbers = {99};
        f.createVarNumbers(numbers);
        std::ostringstream row;
        row << f.getText() << '\t' << printed([&] { f.showPreOrder(); }) << '\t' << f.left << '\t'
            << f.right << '\t' << program(f) << '\t' << f.length() << ' ' << f.temporalLength()
            << ' ' << f.getSpecLen(0) << ' ' << f.getSpecLen(3) << '\t'
            << testing::PrintToString(numbers);
        return row.str();
    });
    EXPECT_EQ(EctlForm("E").buildTree(), nullptr);
}

TEST(EctlForm, operatorsAndTheirTexts) {
    const auto text = [](EctlOper op) {
        Node node = {op, 0, nullptr, nullptr};
        return printed([&] { EctlForm("T").preOrder(&node); });
    };
    checkTable("operators.tsv", [&](auto& operands) {
        std::optional<FormulaFault> fault;
        const EctlOper op = EctlForm(operands, fault).getOp();
        return fault ? fault->text : std::to_string(op) + '\t' + text(op);
    });
    for (const int i : {-1, 11}) EXPECT_EQ(text(static_cast<EctlOper>(i)), "$");
}

TEST(EctlForm, disjunctionAndEquality) {
    const EctlForm a = std::string("p1p2&");
    EctlForm d = dis(a, EctlForm("p3EX"));
    EXPECT_EQ(a.getText(), "p1p2&");
    for (const char* const text : {"p1p2&p3EX+", "p1p2&p3EX+p1p2&p3EX++"}) {
        EXPECT_TRUE(d == EctlForm(text));
        EXPECT_EQ(program(d), program(EctlForm(text)));
        d.dis(d);
    }
    for (const char* const text : {"p1p02&", "p1p2+", "p1p3&", "p3p2&"})
        EXPECT_FALSE(a == EctlForm(text));
}

TEST(EctlForm, deepTrees) {
    const std::string text = deepFormula() + "EXEX";
    const EctlForm f(text);
    EXPECT_EQ(f.length(), 400002);
    EXPECT_EQ(f.getSpecLen(5), 2);
    EXPECT_EQ(printed([&] { f.showPreOrder(); }).size(), text.size());
}

} // namespace

} // namespace tervoxal
