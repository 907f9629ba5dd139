#include "search/solver.h"

#include <gtest/gtest.h>
#include <vector>

namespace tervoxal {

// Versions of the library differ in what they tell of a negative literal.
TEST(Solver, tellsValuesAndWhatFailed) {
    Solver solver;
    const int a = solver.newVariables(3);
    const int b = a + 1;
    const int c = a + 2;
    solver.add({-a, -b});
    for (const bool first : {true, false}) {
        solver.assume(first ? a : b);
        ASSERT_EQ(solver.solve(-1), Solver::Verdict::satisfiable);
        EXPECT_EQ(solver.value(a), first);
        EXPECT_EQ(solver.value(-a), !first);
        EXPECT_EQ(solver.value(b), !first);
        EXPECT_EQ(solver.value(-b), first);
    }
    for (const int literal : {c, a, b}) solver.assume(literal);
    ASSERT_EQ(solver.solve(-1), Solver::Verdict::unsatisfiable);
    EXPECT_TRUE(solver.failed(a) && solver.failed(b) && !solver.failed(c));
    solver.assume(a);
    solver.constrain(std::vector<int>{b});
    EXPECT_EQ(solver.solve(-1), Solver::Verdict::unsatisfiable);
    EXPECT_EQ(solver.solve(-1), Solver::Verdict::satisfiable); // both were for one question
    solver.setStop([] { return true; });
    solver.add({a, c});
    EXPECT_NE(solver.solve(-1), Solver::Verdict::unsatisfiable);
}

} // namespace tervoxal
