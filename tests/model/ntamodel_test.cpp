#include "ntamodel.h"

#include "store.h"
#include "support.h"

#include <random>

namespace {

void read(NetTimedModel& model, const std::string& text) {
    const Scratch dir;
    dir.write("net.in", text);
    testing::internal::CaptureStdout();
    model.readNetwork(dir.path / "net");
    testing::internal::GetCapturedStdout();
    model.compNrOfBits(1);
}

/// A network of one automaton that ends in a valuation block.
std::string automaton(const std::string& body, const std::string& values = "") {
    return "network\nautomaton\n" + body + "valuation\n" + values + "end\nend\nend\n";
}

const std::string zero = "location 0\nend\n";
const std::string one = "location 1\nend\n";

TEST(NetworkReader, fillsTheTables) {
    NetTimedModel model;
    read(model, twoProcesses);
    using Tables = std::map<NetTimedModel::LocalAction, std::set<NetTimedModel::Move>>;
    EXPECT_EQ(model.nrOfAutomata, 2);
    EXPECT_EQ(model.verts.size(), 5U);
    EXPECT_EQ(model.edges.size(), 5U);
    EXPECT_EQ(model.actionAutomata,
              (std::map<uint, std::set<uint>>{{0, {2}}, {1, {1, 2}}, {2, {1}}, {3, {2}}}));
    EXPECT_EQ(model.actionEdges, (Tables{{{1, 1}, {{0, 1}}},
                                         {{1, 2}, {{1, 0}}},
                                         {{2, 0}, {{1, 2}}},
                                         {{2, 1}, {{0, 1}}},
                                         {{2, 3}, {{2, 0}}}}));
    EXPECT_EQ(model.valuation, (std::set<std::pair<NetTimedModel::Location, uint>>{
                                   {{1, 0}, 1}, {{1, 1}, 2}, {{1, 1}, 3}, {{2, 2}, 4}}));
}

TEST(NetworkReader, takesWhatIsNoError) {
    const struct {
        std::string text;
        std::size_t locations, edges, values;
        uint action; // the last one
    } rows[] = {
        {"end\nend\n", 0, 0, 0, 0},
        {"# comment\n\n network\nend of it, no newline", 0, 0, 0, 0},
        {"network\nautomaton\nlocation 0\nend x\nvaluation x\nend x\nend\r\nendless\nrest", 1, 0, 0,
         0},
        {automaton("location 0\n#\n\nend\nlocation 0\nend\n"), 1, 0, 0, 0},
        {automaton("locations\t+1 x\nend\n" + zero), 2, 0, 0, 0},
        {automaton(zero + "transition 0 0\nend\ntransition 0 0 0\nend\n"), 1, 1, 0, 0},
        {automaton("transition 0 1 x\nend\n" + one + zero), 2, 1, 0, 0},
        {automaton(zero + one + "transition 1 0 3 4\nend\ntransition 1 0 -\nend\n"), 2, 2, 0, 3},
        {automaton(zero + "transitions 0 0 2147483647x 99999999999\nend\n"), 1, 1, 0, 2147483647},
        {automaton(zero, "0\nx 99999999999\n  \n0 4 x 5\n+0 4 2147483647 6x7\n-0 9\n"), 1, 0, 4, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        NetTimedModel model;
        read(model, row.text);
        EXPECT_EQ(model.verts.size(), row.locations);
        EXPECT_EQ(model.edges.size(), row.edges);
        EXPECT_EQ(model.valuation.size(), row.values);
        if (row.edges > 0) {
            EXPECT_EQ(model.actionAutomata.rbegin()->first, row.action);
        }
    }
}

TEST(NetworkReaderDeathTest, refusesWithOneLine) {
    const struct {
        std::string text, message;
    } rows[] = {
        {"", "network: end of file before the heading"},
        {"#\n\n", "network: end of file before the heading"},
        {"end\n", "network: end of file before the closing line"},
        {"network\nautomaton\n", "automaton 1: end of file before the closing line"},
        {"n\na\nlocation 0\n", "automaton 1: end of file before the closing line"},
        {"n\na\n" + zero + "valuation\nend\n", "automaton 1: end of file before the closing line"},
        {"n\na\n" + zero + "valuation\nend\nend\n", "network: end of file before the closing line"},
        {"n\na\n" + zero + "end\n", "description error"},
        {automaton(zero + " location 1\nend\n"), "description error"},
        {automaton("location 0\n end\n"), "location error"},
        {automaton(zero + "transition 0 0\nend \n"), "transition error"},
        {automaton(zero + "transition 0 0\nends\n"), "transition error"},
        {"n\na\n" + zero + "valuation\nend\nlocation 1\n", "end expected"},
        {automaton(""), "automaton 1: no location is declared"},
        {automaton(one), "automaton 1: location 0 is not declared"},
        {automaton(zero + "location 2\nend\n"), "automaton 1: location 1 is not declared"},
        {automaton(zero + "transition 0 1\nend\n"), "automaton 1: location 1 is not declared"},
        {automaton(zero + "transition 7 0\nend\n"), "automaton 1: location 7 is not declared"},
        {automaton(zero, "1\n"), "automaton 1: location 1 is not declared"},
        {automaton(zero, "2147483647 1\n"), "automaton 1: location 2147483647 is not declared"},
        {automaton("location\nend\n"), "automaton 1: location number is missing"},
        {automaton("location x\nend\n"), "automaton 1: location number is missing"},
        {automaton("location +-1\nend\n"), "automaton 1: location number is missing"},
        {automaton("location -1\nend\n"), "automaton 1: location number is negative"},
        {automaton("location 2147483648\nend\n"), "automaton 1: location number is out of range"},
        {automaton("transition x\nend\n"), "automaton 1: source location is missing"},
        {automaton("transition 0\nend\n"), "automaton 1: target location is missing"},
        {automaton("transition 0 1-2\nend\n"), "automaton 1: action number is negative"},
        {automaton(zero, "0 1 -2\n"), "automaton 1: proposition number is negative"},
        {automaton(zero, "0 99999999999\n"), "automaton 1: proposition number is out of range"},
        {automaton(zero, "-1\n"), "automaton 1: location number is negative"},
        {oneAutomaton.substr(0, oneAutomaton.size() - 4) + "a\n" + one +
             "valuation\nend\nend\nend\n",
         "automaton 2: location 0 is not declared"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        NetTimedModel model;
        EXPECT_EXIT(read(model, row.text), testing::ExitedWithCode(1), "^" + row.message + "\n$");
    }
    NetTimedModel model;
    EXPECT_EXIT(model.readNetwork("/no/net"), testing::ExitedWithCode(1),
                "^Nie moge otworzyc pliku /no/net.in\n$");
    EXPECT_EXIT(model.readFormula("/no/form"), testing::ExitedWithCode(1),
                "^Nie moge otworzyc pliku /no/form.in\n$");
    const Scratch dir;
    dir.write("form.in", "#p1\n\n");
    EXPECT_EXIT(model.readFormula(dir.path / "form"), testing::ExitedWithCode(1),
                "^formula: end of file before the formula\n$");
}

TEST(FormulaReader, takesTheFirstSignificantLine) {
    const Scratch dir;
    dir.write("form.in", "# formula\n\np1p-2&\n(");
    NetTimedModel model;
    model.readFormula(dir.path / "form");
    EXPECT_EQ(model.form->getText(), "p1p-2&");
}

TEST(Layout, bitsFollowTheNumberOfLocations) {
    std::string text = "n\n";
    for (const int locations : {2, 5, 1, 4, 1, 8, 9, 65536, 65537}) {
        text += "a\n";
        for (int l = 0; l < locations; ++l) text += "location " + std::to_string(l) + "\nend\n";
        text += "valuation\nend\nend\n";
    }
    NetTimedModel model;
    read(model, text + "end\n");
    EXPECT_EQ(model.nrOfBits, (std::vector{0, 1, 3, 0, 2, 0, 3, 4, 16, 17}));
    EXPECT_EQ(model.bitShift, (std::vector{0, 0, 1, 4, 4, 6, 6, 9, 13, 29}));
    EXPECT_EQ(model.totalNrVertBits, 46);
    EXPECT_EQ(model.getSymStateLen(3), 46);

    emptyStore();
    const SymState s = model.genSymState(47, 1);
    EXPECT_EQ(s.len, 46);
    EXPECT_EQ(s.loc[0].nr, 47);
    EXPECT_EQ(model.bef(2, 5, s.loc).nr, 1000002); // 48 and not 49 and 50
    EXPECT_EQ(BoolForm::tv, (std::vector<Triple>{{bfCon, -49, 48}, {bfCon, 50, 1000001}}));
    EXPECT_EQ(model.bef(3, 0, s.loc), BoolForm(true));
    const BoolFormVect v = model.bev(5, 40);
    for (int i = 0; i < 46; ++i) EXPECT_EQ(v[i], BoolForm(i == 40 || i == 42));
    EXPECT_DEATH((void)model.bev(1, 46), "bsLen \\+ shift <= len");
    EXPECT_DEATH((void)model.bef(1, 0, BoolFormVect(45, 1)),
                 "ntamodel.*NetTimedModel::bef.*loc.size\\(\\) == totalNrVertBits");
}

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
        std::vector<Triple> plain;
        for (BoolForm (*step)(const NetTimedModel&, const SymState&, const SymState&) :
             {plainStep, +[](const NetTimedModel&m, const SymState&s1, const SymState&s2) {
                  return m.actionSucc(1, s1, s2);
              }}) {
            emptyStore();
            BoolForm path = model.properInitState(0, model.genSymState(1, 0));
            for (int i = 0; i < 3; ++i) {
                const SymState s1 = model.genSymState(1 + i * bits, i);
                const SymState s2 = model.genSymState(1 + (i + 1) * bits, i + 1);
                path = con(path, step(model, s1, s2));
            }
            if (step == plainStep) plain = BoolForm::tv;
        }
        EXPECT_EQ(BoolForm::tv, plain);
    }
}

TEST(Step, exampleNodes) {
    NetTimedModel model;
    const std::string body = zero + one + "transition 0 1 ";
    read(model, "n\na\n" + body + "1\nend\nvaluation\n0 7\n1 8\nend\nend\na\n" + body +
                    "2\nend\nvaluation\n1 7\nend\nend\nend\n");
    emptyStore();
    const SymState s1 = model.genSymState(1, 0);
    const SymState s2 = model.genSymState(3, 1);
    EXPECT_EQ(model.properInitState(0, s1).nr, 1000001);
    EXPECT_EQ(model.actionSucc(1, s1, s2).nr, -1000008);
    const std::vector<Triple> triples = {{bfCon, -2, -1},
                                         {bfCon, -1, 3},
                                         {bfEqu, 2, 4},
                                         {bfCon, 1000002, 1000003},
                                         {bfCon, -2, 4},
                                         {bfEqu, 1, 3},
                                         {bfCon, 1000005, 1000006},
                                         {bfCon, -1000007, -1000004}};
    EXPECT_EQ(BoolForm::tv, triples);
    EXPECT_EQ(model.fI(0, s1).nr, 1000001);
    EXPECT_EQ(model.fT(s1, s2).nr, -1000008);
    EXPECT_EQ(BoolForm::tv.size(), 8U);
    EXPECT_EQ(model.fP(7, s1), neg(con(BoolForm(1), neg(BoolForm(2))))); // not 1 or 2
    EXPECT_EQ(model.fP(8, s2).nr, 3);
    EXPECT_EQ(model.fP(9, s1), BoolForm(false));
    EXPECT_EQ(model.fI(1, s1), con(BoolForm(1), BoolForm(2)));
    EXPECT_EQ(model.fH(s1, s2), eq(s1.loc, s2.loc));
}

} // namespace
