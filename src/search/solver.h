// An incremental SAT solver: clauses come and stay, and each question is about all of them under
// literals that are assumed for it alone. This is the one class that knows the library which does
// the work.
//
// Variables are numbered from 1, and a literal is a variable or the negative of one.

#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>

namespace tervoxal {

class Solver {
public:
    enum class Verdict { satisfiable, unsatisfiable, unknown };

    Solver();
    Solver(const Solver&) = delete;
    Solver& operator=(const Solver&) = delete;
    ~Solver();

    /// The first of `count` new variables in a row. Precondition, asserted: they are numbers.
    int newVariables(std::int64_t count);
    int newVariable() { return newVariables(1); }
    /// The number of variables so far.
    [[nodiscard]] int variables() const { return last; }

    /// Clauses one after the other, each closed by a 0.
    void add(std::span<const int> literals);
    void add(std::initializer_list<int> clause);

    /// For the next question alone.
    void assume(int literal);
    /// One of the literals, likewise for the next question alone. One clause at a time.
    void constrain(std::span<const int> clause);
    /// Gives up, with unknown, when it has met that many conflicts, -1 for any number, or when it
    /// is stopped. The same calls give the same answers, but for the stop.
    [[nodiscard]] Verdict solve(int conflicts);
    /// The conflicts of all questions so far.
    [[nodiscard]] std::int64_t conflicts() const;
    /// In the model; precondition: the last question was satisfiable.
    [[nodiscard]] bool value(int literal) const;

    /// Whether an assumption was used; precondition: the last question was unsatisfiable.
    [[nodiscard]] bool failed(int literal) const;

    /// Asks often from now on whether to stop.
    void setStop(std::function<bool()> stop);

private:
    class Library;
    std::unique_ptr<Library> library;
    int last = 0;
};

} // namespace tervoxal
