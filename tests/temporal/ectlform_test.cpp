#include "ectlform.h"

#include "support.h"

namespace {

std::string program(const EctlForm& f) {
    std::string text;
    for (const OnpNode& n : f.onp) {
        text += (text.empty() ? "" : " ") + std::to_string(n.op) + ':' + std::to_string(n.varNr);
    }
    return text;
}

template <class Print>
std::string printed(Print&& print) {
    testing::internal::CaptureStdout();
    print();
    std::cout.flush();
    return testing::internal::GetCapturedStdout();
}

TEST(EctlForm, parsesAndMeasures) {
    std::ifstream rows(std::string(TEST_DATA) + "/formulas.tsv");
    std::string row;
    int count = -1;
    for (; std::getline(rows, row); ++count) {
        if (count < 0) continue; // the heading
        SCOPED_TRACE(row);
        std::istringstream fields(row);
        std::string text, prefix, left, right, onp, measures, props;
        for (auto* field : {&text, &prefix, &left, &right, &onp, &measures, &props}) {
            std::getline(fields, *field, '\t');
        }
        const EctlForm f(text);
        EXPECT_EQ(f.left, left);
        EXPECT_EQ(f.right, right);
        EXPECT_EQ(program(f), onp);
        EXPECT_EQ(f.getOp(), onp.empty() ? OpNone : f.onp.back().op);
        EXPECT_EQ(f.getVarNr(), onp.empty() ? 0 : f.onp.back().varNr);
        EXPECT_EQ(printed([&] { f.showPreOrder(); }), prefix);
        EXPECT_EQ(printed([&] { f.show(); }), f.getText() + "\n\n");
        std::ostringstream measured;
        measured << f.length() << ' ' << f.temporalLength() << ' ' << f.getSpecLen(0) << ' '
                 << f.getSpecLen(3);
        EXPECT_EQ(measured.str(), measures);
        std::set<int> numbers = {99};
        f.createVarNumbers(numbers);
        std::istringstream in(props);
        EXPECT_EQ(numbers, std::set<int>(std::istream_iterator<int>(in), {}));
        EXPECT_TRUE(f.getLeft() == EctlForm(left) && f.getRight() == EctlForm(right));
    }
    EXPECT_EQ(count, 23);
    EXPECT_EQ(EctlForm("p1p2CTD").getText(), "p1p2&T+");
    EXPECT_EQ(EctlForm("E").buildTree(), nullptr);
}

TEST(EctlForm, operatorsAndTheirTexts) {
    const char* texts[] = {"T", "p", "p-", "&", "+", "EG", "EX", "EU", "EF", "EK", "$"};
    for (int i = 0; i <= 10; ++i) {
        EXPECT_EQ(operStr(static_cast<EctlOper>(i)), texts[i]);
        EXPECT_EQ(oper(texts[i]), i);
    }
    for (const int i : {-1, 11}) EXPECT_EQ(operStr(static_cast<EctlOper>(i)), "$");
    for (const char* text : {"", "E", "EA", "x", "-"}) EXPECT_EQ(oper(text), OpNone);
    EXPECT_TRUE(oper("Cp") == OpCon && oper("D") == OpDis);
}

TEST(EctlForm, disjunctionAndEquality) {
    const EctlForm a("p1p2&");
    EctlForm d = dis(a, EctlForm("p3EX"));
    EXPECT_EQ(a.getText(), "p1p2&");
    EXPECT_TRUE(d == EctlForm("p1p2&p3EX+"));
    EXPECT_EQ(program(d), program(EctlForm("p1p2&p3EX+")));
    d.dis(d);
    EXPECT_EQ(program(d), program(EctlForm("p1p2&p3EX+p1p2&p3EX++")));
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
    std::string wrapping = "p1";
    for (int i = 0; i < 40; ++i) wrapping += "EG"; // 3 to the power 40, halved: beyond 32 bits
    EXPECT_EQ(EctlForm(wrapping).getSpecLen(2), 344978448);
}

} // namespace
