#include "translation/tectltran.h"

#include "network.h"
#include "store.h"

namespace tervoxal {

namespace {

BoolForm tree(const EctlTransl& t, const std::string& text) {
    const EctlForm form(text);
    Node* const root = form.buildTree();
    const BoolForm f = t.transl(root, 1);
    form.destroyTree(root);
    return f;
}

// The tree builds right operands first, and nothing below a temporal operator, which makes only its
// own subtree false.
TEST(Translation, ofListsAndTrees) {
    NetTimedModel model;
    read(model, EXAMPLES "/two");
    EctlTransl t(model, 2);
    EXPECT_TRUE(t.states.empty());
    const BoolForm path = t.symbPath();
    ASSERT_EQ(t.states.size(), 3U);
    EXPECT_EQ(t.symbPath(), path); // though the states are there twice
    EXPECT_EQ(t.states[2].loc, BoolFormVect(3, t.getStartNr(2)));
    checkTable("translations.tsv", [&](auto& text) {
        BoolForm::clear();
        const std::string list = storeText(t.transl(EctlForm(text), 1));
        BoolForm::clear();
        return list + '\t' + storeText(tree(t, text));
    });
    EXPECT_EQ(tree(t, deepFormula()), t.transl(EctlForm(deepFormula()), 1));
    const EctlForm p4("p4");
    EXPECT_EQ(t.transl(p4), dis(dis(t.transl(p4, 0), t.transl(p4, 1)), t.transl(p4, 2)));
    EXPECT_EQ(t.transl(static_cast<Node*>(nullptr), 1), BoolForm(false));
    const EctlForm few = dis(EctlForm("E"), EctlForm("p1"));
    EXPECT_EXIT((void)t.transl(few), testing::ExitedWithCode(1),
                "^formula: an operator finds too few operands\n$");
}

// Without bits the variables limit no path. So many states would not fit into memory.
TEST(Translation, keepsAMillionStatesOfALongerPath) {
    const Scratch dir;
    dir.write("still.in", "network\na\nlocation 0\nend\ntransition 0 0 1\nend\n"
                          "valuation\n0 1\nend\nend\nend\n");
    NetTimedModel model;
    read(model, dir.path / "still");
    EctlTransl t(model, 2147483647);
    EXPECT_EQ(t.symbPath(), BoolForm(true));
    EXPECT_EQ(t.states.size(), 1000000U);
    EXPECT_EQ(t.transl(EctlForm("p1"), 2147483647), t.transl(EctlForm("p1"), 0));
}

} // namespace

} // namespace tervoxal
