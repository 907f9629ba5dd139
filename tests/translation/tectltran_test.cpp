#include "tectltran.h"

#include "network.h"
#include "store.h"

namespace {

class Translation : public testing::Test {
protected:
    Translation() {
        read(model, twoProcesses);
        emptyStore();
    }
    BoolForm tree(const EctlTransl& t, const std::string& text) const {
        const EctlForm form(text);
        Node* const root = form.buildTree();
        const BoolForm f = t.transl(root, 1);
        form.destroyTree(root);
        return f;
    }
    NetTimedModel model;
};

TEST_F(Translation, treeAndListDifferInTemporalOperatorsOnly) {
    EctlTransl t(model, 2);
    EXPECT_TRUE(t.states.empty());
    (void)t.symbPath();
    ASSERT_EQ(t.states.size(), 3U);
    EXPECT_EQ(t.states[2].loc, BoolFormVect(3, t.getStartNr(2)));
    const BoolForm p3 = BoolForm(4);                        // automaton 1 in location 1
    const BoolForm p4 = con(neg(BoolForm(5)), BoolForm(6)); // automaton 2 in location 2
    const struct {
        const char* text;
        BoolForm list, tree;
    } rows[] = {
        {"T", BoolForm(true), BoolForm(true)},
        {"p3p-4+p1&", con(dis(p3, neg(p4)), neg(p3)), con(dis(p3, neg(p4)), neg(p3))},
        {"p3p4EF+", BoolForm(false), p3},
        {"p3EXT+", BoolForm(false), BoolForm(true)},
        {"Tp4EU", BoolForm(false), BoolForm(false)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(t.transl(EctlForm(row.text), 1), row.list) << row.text;
        EXPECT_EQ(tree(t, row.text), row.tree) << row.text;
    }
    EXPECT_EQ(t.transl(static_cast<Node*>(nullptr), 1), BoolForm(false));
    EXPECT_EQ(t.transl(dis(EctlForm("p3"), EctlForm("p4")), 1), dis(p3, p4));
    EXPECT_EXIT((void)t.transl(dis(EctlForm("E"), EctlForm("p1"))), testing::ExitedWithCode(1),
                "^formula: an operator finds too few operands\n$");
}

TEST_F(Translation, treeBuildsRightOperandsFirstAndNothingBelowTemporalOperators) {
    EctlTransl t(model, 2);
    (void)t.symbPath();
    const std::vector<Triple> list = {{bfCon, -5, 6}, {bfCon, 4, 1000001}, {bfCon, -4, 1000001}};
    emptyStore();
    (void)t.transl(EctlForm("p3p4&p1p4&+"), 1);
    EXPECT_EQ(std::vector(BoolForm::tv.begin(), BoolForm::tv.begin() + 3), list);
    emptyStore();
    EXPECT_EQ(tree(t, "p3p4&p1p4&+p1p2&p4&EX+").nr, -1000004);
    EXPECT_EQ(BoolForm::tv,
              (std::vector<Triple>{list[0], list[2], list[1], {bfCon, -1000003, -1000002}}));
}

TEST_F(Translation, treesOfAMillionOperators) {
    EctlTransl t(model, 1);
    (void)t.symbPath();
    std::string left = "p1";
    std::string right;
    for (int i = 0; i < 500000; ++i) {
        left += "p4+p3&";
        right += "p4p3";
    }
    right += "p1";
    for (int i = 0; i < 500000; ++i) right += "&+";
    EXPECT_EQ(tree(t, left), t.transl(EctlForm(left), 1));
    EXPECT_EQ(tree(t, right), t.transl(EctlForm(right), 1));
}

} // namespace
