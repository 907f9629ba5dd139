#include "model/ntamodel.h"

#include "model/step.h"
#include "network.h"
#include "store.h"

#include <bitset>

namespace tervoxal {

namespace {

/// The step formula as plainly as it can be said: every part built anew at each use.
BoolForm plainStep(const NetTimedModel& model, const SymState& s1, const SymState& s2) {
    BoolForm result(false);
    for (const auto& [action, automata] : model.actionAutomata) {
        BoolForm move(true);
        for (const uint automaton : automata) {
            const auto a = static_cast<int>(automaton);
            BoolForm any(false);
            for (const auto& [from, to] : model.actionEdges.at({automaton, action})) {
                const BoolForm target = model.bef(a, static_cast<int>(to), s2.loc);
                const BoolForm source = model.bef(a, static_cast<int>(from), s1.loc);
                any = dis(any, con(source, target));
            }
            move = con(move, any);
        }
        BoolForm stay(true);
        for (uint a = 1; a < model.nrOfBits.size(); ++a) {
            if (automata.contains(a)) continue;
            stay = con(stay, eq(s1.loc, s2.loc, model.bitShift[a], model.nrOfBits[a]));
        }
        move = con(move, stay);
        result = dis(result, move);
    }
    return result;
}

TEST(Step, createsTheNodesOfThePlainFormulaInTheirOrder) {
    const Scratch dir;
    for (uint seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        dir.write("net.in", randomNetwork(random, random() % 7));
        NetTimedModel model;
        read(model, dir.path / "net");
        Step laidOut(model);
        std::string plainText;
        for (const bool plain : {true, false}) {
            BoolForm::clear();
            SymState s1 = model.genSymState(1, 0);
            BoolForm path = model.properInitState(0, s1);
            for (int i = 1; i < 4; ++i) {
                const SymState s2 = model.genSymState(1 + i * model.totalNrVertBits, i);
                path = con(path, plain ? plainStep(model, s1, s2) : laidOut.formula(s1, s2));
                s1 = s2;
            }
            if (plain) plainText = storeText(path);
            EXPECT_EQ(storeText(path), plainText);
        }
    }
}

TEST(Model, otherFormulas) {
    NetTimedModel model;
    model.readFormula(EXAMPLES "/two-formula"); // neither needs the other
    read(model, EXAMPLES "/two");
    BoolForm::clear();
    const SymState s1 = model.genSymState(1, 0);
    const SymState s2 = model.genSymState(4, 1);
    EXPECT_EQ(storeText(model.properInitState(0, s1)), "&-3,-2 &-1,#1 #2");
    EXPECT_EQ(model.fI(1, s1), con(BoolForm(1), con(BoolForm(2), neg(BoolForm(3)))));
    EXPECT_EQ(model.fT(s1, s2), model.actionSucc(7, s1, s2));
    EXPECT_EQ(model.fH(s1, s2), eq(s1.loc, s2.loc));
    EXPECT_EQ(model.fP(3, s2), BoolForm(4));
    EXPECT_EQ(model.fP(9, s2), BoolForm(false));
    model.valuation.insert({{1, 0}, 3});
    EXPECT_EQ(model.fP(3, s2), BoolForm(true));
    EXPECT_EQ(model.bef(2, 2, s1.loc), con(neg(BoolForm(2)), BoolForm(3)));
    EXPECT_EQ(model.bev(3, 1), BoolFormVect(s2.len, std::bitset<2048>(6)));
    for (const int shift : {3, 2147483647})
        EXPECT_DEATH((void)model.bev(1, shift), "bsLen \\+ shift <= len");
    const char* const fault = "ntamodel.*NetTimedModel::bef.*loc.size\\(\\) == totalNrVertBits";
    const SymState other(4, 1, 0);
    EXPECT_DEATH((void)model.bef(1, 0, other.loc), fault);
    EXPECT_DEATH((void)model.actionSucc(1, s1, other), fault);
    EXPECT_DEATH((void)model.fT(other, s1), fault);
    model.actionAutomata.clear();
    EXPECT_EQ(model.actionSucc(1, s1, other), BoolForm(false));
}

} // namespace

} // namespace tervoxal
