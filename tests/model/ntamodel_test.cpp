#include "ntamodel.h"

#include "network.h"
#include "step.h"
#include "store.h"

#include <random>

namespace {

/// The step formula as plainly as it can be said: every part built anew at each use.
BoolForm plainStep(const NetTimedModel& model, const SymState& s1, const SymState& s2) {
    BoolForm result(false);
    for (const auto& [action, automata] : model.actionAutomata) {
        BoolForm move(true);
        for (const uint a : automata) {
            BoolForm any(false);
            for (const auto& [from, to] : model.actionEdges.at({a, action})) {
                const BoolForm target =
                    model.bef(static_cast<int>(a), static_cast<int>(to), s2.loc);
                const BoolForm source =
                    model.bef(static_cast<int>(a), static_cast<int>(from), s1.loc);
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
    for (uint seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&](uint n) { return static_cast<uint>(random() % n); };
        const uint automata = below(7);
        const uint actions = 1 + below(12);
        std::string text = "n\n";
        for (uint a = 0; a < automata; ++a) {
            const uint locations = 1 + below(below(2) == 0 ? 2 : 7);
            text += "a\n";
            for (uint l = 0; l < locations; ++l)
                text += "location " + std::to_string(l) + "\nend\n";
            for (uint m = below(9); m > 0; --m) {
                text += "transition " + std::to_string(below(locations)) + " ";
                text += std::to_string(below(locations)) + " ";
                text += std::to_string(below(actions) * 1000) + "\nend\n";
            }
            text += "valuation\nend\nend\n";
        }
        NetTimedModel model;
        read(model, text + "end\n");
        const int bits = model.totalNrVertBits;
        Step laidOut(model);
        std::vector<Triple> plain;
        for (const bool plainly : {true, false}) {
            emptyStore();
            BoolForm path = model.properInitState(0, model.genSymState(1, 0));
            for (int i = 0; i < 3; ++i) {
                const SymState s1 = model.genSymState(1 + i * bits, i);
                const SymState s2 = model.genSymState(1 + (i + 1) * bits, i + 1);
                path = con(path, plainly ? plainStep(model, s1, s2) : laidOut.formula(s1, s2));
            }
            if (plainly) plain = BoolForm::tv;
        }
        EXPECT_EQ(BoolForm::tv, plain);
    }
}

TEST(Model, otherFormulas) {
    NetTimedModel model;
    read(model, twoProcesses);
    emptyStore();
    const SymState s1 = model.genSymState(1, 0);
    const SymState s2 = model.genSymState(4, 1);
    EXPECT_EQ(s2.len, 3);
    EXPECT_EQ(model.fI(0, s1).nr, 1000002);
    EXPECT_EQ(model.properInitState(0, s1).nr, 1000002);
    EXPECT_EQ(model.fI(1, s1), con(BoolForm(1), con(BoolForm(2), neg(BoolForm(3)))));
    const BoolForm step = model.fT(s1, s2);
    const std::size_t nodes = BoolForm::tv.size();
    EXPECT_EQ(model.actionSucc(7, s1, s2), step);
    EXPECT_EQ(model.fH(s1, s2), eq(s1.loc, s2.loc));
    EXPECT_EQ(BoolForm::tv.size(), nodes + 2);
    EXPECT_EQ(model.fP(3, s2).nr, 4);
    EXPECT_EQ(model.fP(9, s2), BoolForm(false));
    EXPECT_EQ(model.bef(2, 2, s1.loc), con(neg(BoolForm(2)), BoolForm(3)));
    const BoolFormVect five = model.bev(3, 1);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(five[i], BoolForm(i > 0));
    EXPECT_DEATH((void)model.bev(1, 3), "bsLen \\+ shift <= len");
    EXPECT_DEATH((void)model.bef(1, 0, BoolFormVect(4, 1)),
                 "ntamodel.*NetTimedModel::bef.*loc.size\\(\\) == totalNrVertBits");
}

} // namespace
