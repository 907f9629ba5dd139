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

    // That is so as well where the question was given up.
    bool stop = true;
    solver.setStop([&] { return stop; });
    const int d = solver.newVariables(60);
    for (int i = 0; i < 60; i += 3) {
        for (const int j : {d + (i + 7) % 60, -d - (i + 11) % 60}) {
            solver.add({d + i, j, a});
            solver.add({-d - i - 1, -j, d + i + 2});
        }
    }
    const std::vector<int> none = {-a};
    solver.add({a, b, c});
    solver.constrain(none);
    solver.assume(-c);
    ASSERT_EQ(solver.solve(-1), Solver::Verdict::unknown);
    stop = false;
    solver.assume(a);
    EXPECT_EQ(solver.solve(-1), Solver::Verdict::satisfiable);
}

} // namespace tervoxal
