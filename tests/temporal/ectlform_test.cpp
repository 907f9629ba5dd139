#include "ectlform.h"

#include "support.h"

namespace {

std::string entries(const EctlForm& f) {
    std::string text;
    for (const OnpNode& n : f.onp) {
        text += std::to_string(n.op) + ':' + std::to_string(n.varNr) + ' ';
    }
    return text;
}

std::string printed(const std::function<void()>& print) {
    testing::internal::CaptureStdout();
    print();
    std::cout.flush();
    return testing::internal::GetCapturedStdout();
}

TEST(EctlForm, parsesPostfix) {
    const struct {
        const char* text;
        EctlOper op;
        const char *left, *right, *onp;
    } rows[] = {
        {"T", OpTrue, "T", "", "0:0 "},
        {"p", OpVar, "p", "", "1:0 "},
        {"p-", OpNegVar, "p-", "", "2:0 "},
        {"p007", OpVar, "p007", "", "1:7 "},
        {"p-2147483647", OpNegVar, "p-2147483647", "", "2:2147483647 "},
        {"p1EG", OpEG, "p1", "", "1:1 5:0 "},
        {"p1EX", OpEX, "p1", "", "1:1 6:0 "},
        {"p1p2EU", OpEU, "p1", "p2", "1:1 1:2 7:0 "},
        {"p1p-2&EF", OpEF, "p1p-2&", "", "1:1 2:2 3:0 8:0 "},
        {"p1EK", OpEK, "p1", "", "1:1 9:0 "},
        {"p1p2&p3+", OpDis, "p1p2&", "p3", "1:1 1:2 3:0 1:3 4:0 "},
        {"p3p1p2D&", OpCon, "p3", "p1p2+", "1:3 1:1 1:2 4:0 3:0 "},
        {"p1p2CTD", OpDis, "p1p2&", "T", "1:1 1:2 3:0 0:0 4:0 "},
        {"EEp1", OpVar, "p1", "", "1:1 "},
        {"p1p2E&E", OpCon, "p1", "p2", "1:1 1:2 3:0 "},
        {"p1p2", OpVar, "p2", "", "1:1 1:2 "},
        {"p1p2p3&", OpCon, "p2", "p3", "1:1 1:2 1:3 3:0 "},
        {"E", OpNone, "", "", ""},
        {"", OpNone, "", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const EctlForm f(row.text);
        EXPECT_EQ(f.getOp(), row.op);
        EXPECT_EQ(f.left, row.left);
        EXPECT_EQ(f.right, row.right);
        EXPECT_EQ(entries(f), row.onp);
    }
    const EctlForm f("p1p2CTD");
    EXPECT_EQ(f.getText(), "p1p2&T+");
    EXPECT_TRUE(f.getLeft() == EctlForm("p1p2&"));
    EXPECT_EQ(f.getRight().getOp(), OpTrue);
    EXPECT_EQ(EctlForm("p-12").getText(), "p-12");
    EXPECT_EQ(EctlForm("p-12").getVarNr(), 12);
    EXPECT_EQ(f.getVarNr(), 0);
    EXPECT_EQ(EctlForm("p1EG").getRight().getOp(), OpNone);
}

TEST(EctlFormDeathTest, refusesWhatIsNoFormulaAndTellsTheColumn) {
    const struct {
        const char *text, *message;
    } rows[] = {
        {"p1 ", "formula, column 3: 0x20 starts no token"},
        {"p1\r", "formula, column 3: 0x0d starts no token"},
        {"(p1", "formula, column 1: \"\\(\" starts no token"},
        {"7", "formula, column 1: \"7\" starts no token"},
        {"EXp1", "formula, column 1: \"EX\" finds too few operands"},
        {"p1&", "formula, column 3: \"&\" finds too few operands"},
        {"p1p2&D", "formula, column 6: \"D\" finds too few operands"},
        {"p1EU", "formula, column 3: \"EU\" finds too few operands"},
        {"Tp2147483648", "formula, column 2: proposition number above 2147483647"},
    };
    for (const auto& row : rows) {
        EXPECT_EXIT(EctlForm(row.text), testing::ExitedWithCode(1),
                    std::string("^") + row.message + "\n$");
    }
}

TEST(EctlForm, operatorsAndTheirTexts) {
    const char* texts[] = {"T", "p", "p-", "&", "+", "EG", "EX", "EU", "EF", "EK", "$"};
    for (int i = 0; i <= 10; ++i) {
        const auto op = static_cast<EctlOper>(i);
        EXPECT_EQ(operStr(op), texts[i]);
        EXPECT_EQ(oper(operStr(op)), op);
    }
    for (const int i : {-1, 11}) EXPECT_EQ(operStr(static_cast<EctlOper>(i)), "$");
    for (const char* text : {"", "E", "EA", "x", "-"}) EXPECT_EQ(oper(text), OpNone);
    EXPECT_EQ(oper("Cp"), OpCon);
    EXPECT_EQ(oper("D"), OpDis);
}

TEST(EctlForm, measures) {
    const struct {
        const char *text, *prefix;
        int length, temporalLength, specLenOf0, specLenOf3;
        std::set<int> numbers;
    } rows[] = {
        {"T", "T", 0, 0, 0, 0, {}},
        {"p-012", "p-12", 0, 0, 0, 0, {12}},
        {"p1p-1&p3+", "+&p1p-1p3", 2, 0, 0, 0, {1, 3}},
        {"p1p-2&EF", "EF&p1p-2", 2, 1, 1, 1, {1, 2}},
        {"p1EXp2EX&", "&EXp1EXp2", 3, 2, 2, 2, {1, 2}},
        {"p1EXp2EXEX+", "+EXp1EXEXp2", 4, 3, 2, 2, {1, 2}},
        {"p1EXEXp2EX+", "+EXEXp1EXp2", 4, 3, 2, 2, {1, 2}},
        {"p1EXEF", "EFEXp1", 2, 2, 2, 5, {1}},
        {"p1EXEG", "EGEXp1", 2, 2, 2, 5, {1}},
        {"p1EXEK", "EKEXp1", 2, 2, 2, 5, {1}},
        {"p1EXp2EU", "EUEXp1p2", 2, 2, 1, 4, {1, 2}},
        {"p1p2EXEU", "EUp1EXp2", 2, 2, 2, 2, {1, 2}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const EctlForm f(row.text);
        EXPECT_EQ(f.length(), row.length);
        EXPECT_EQ(f.temporalLength(), row.temporalLength);
        EXPECT_EQ(f.getSpecLen(0), row.specLenOf0);
        EXPECT_EQ(f.getSpecLen(3), row.specLenOf3);
        EXPECT_EQ(printed([&] { f.showPreOrder(); }), row.prefix);
        EXPECT_EQ(printed([&] { f.show(); }), f.getText() + "\n\n");
        std::set<int> numbers = {99};
        f.createVarNumbers(numbers);
        EXPECT_EQ(numbers, row.numbers);
    }
    const EctlForm none("E");
    EXPECT_EQ(none.buildTree(), nullptr);
    EXPECT_EQ(none.getSpecLen(1), 0);
}

TEST(EctlForm, disjunctionAndEquality) {
    const EctlForm a("p1p2&");
    EctlForm d = dis(a, EctlForm("p3EX"));
    EXPECT_EQ(a.getText(), "p1p2&");
    EXPECT_EQ(d.left + ' ' + d.right, "p1p2& p3EX");
    EXPECT_TRUE(d == EctlForm("p1p2&p3EX+"));
    EXPECT_EQ(entries(d), entries(EctlForm("p1p2&p3EX+")));
    d.dis(d);
    EXPECT_EQ(entries(d), entries(EctlForm("p1p2&p3EX+p1p2&p3EX++")));
    EXPECT_FALSE(EctlForm("p7") == EctlForm("p007"));
    EXPECT_FALSE(EctlForm("p1p2&") == EctlForm("p1p2+"));
    EXPECT_FALSE(EctlForm("p1p2&") == EctlForm("p1p3&"));
}

TEST(EctlForm, treesOfAMillionOperators) {
    const int n = 1000000;
    std::string left = "p1";
    std::string right;
    std::string chain = "p1";
    for (int i = 0; i < n; ++i) {
        left += "p2&";
        right += "p2";
        chain += "EX";
    }
    right += "p1" + std::string(n, '+');
    for (const std::string& text : {left, right, chain}) {
        const EctlForm f(text);
        EXPECT_EQ(f.length(), n);
        EXPECT_EQ(f.getSpecLen(5), text == chain ? n : 0);
        EXPECT_EQ(printed([&] { f.showPreOrder(); }).size(), text.size());
    }
}

} // namespace
