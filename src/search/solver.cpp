#include "search/solver.h"

#include <cadical.hpp>
#include <cassert>
#include <limits>
#include <utility>

namespace tervoxal {

class Solver::Library : public CaDiCaL::Terminator, public CaDiCaL::Learner {
public:
    Library() {
        solver.set("quiet", 1);
        // In a ring of 8000 automata, 827 lengths are refuted in 10 s, and 163 if the solver spends
        // part of the time in its stable mode, which is made for finding models.
        solver.set("stabilize", 0);
        // It takes the time of each question: that of the process costs a sixth of short ones.
        solver.set("realtime", 1);
        solver.connect_learner(this);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() override {
        if (stop) solver.disconnect_terminator();
        solver.disconnect_learner();
    }

    bool terminate() override { return stop(); }
    // A clause is learned from each conflict. It is asked for its size, and not taken.
    bool learning(int /*size*/) override {
        ++conflicts;
        return false;
    }
    void learn(int /*literal*/) override {}

    CaDiCaL::Solver solver;
    std::function<bool()> stop;
    std::int64_t conflicts = 0;
    bool constrained = false; // the next question has a clause of its own
};

Solver::Solver() : library(std::make_unique<Library>()) {}

Solver::~Solver() = default;

int Solver::newVariables(std::int64_t count) {
    assert(count <= std::numeric_limits<int>::max() - 1 - last);
    const int first = last + 1;
    last += static_cast<int>(count);
    library->solver.reserve(last);
    return first;
}

void Solver::add(std::span<const int> literals) {
    for (const int literal : literals) library->solver.add(literal);
}

void Solver::add(std::initializer_list<int> clause) {
    for (const int literal : clause) library->solver.add(literal);
    library->solver.add(0);
}

void Solver::assume(int literal) { library->solver.assume(literal); }

void Solver::constrain(std::span<const int> clause) {
    library->constrained = true;
    for (const int literal : clause) library->solver.constrain(literal);
    library->solver.constrain(0);
}

Solver::Verdict Solver::solve(int conflicts) {
    library->solver.limit("conflicts", conflicts);
    const int verdict = library->solver.solve();
    const bool constrained = std::exchange(library->constrained, false);
    if (verdict == 10) return Verdict::satisfiable;
    if (verdict == 20) return Verdict::unsatisfiable;
    // The library keeps the clause of a question that it gave up, for the next one.
    if (constrained) {
        for (const int literal : {1, -1, 0}) library->solver.constrain(literal);
    }
    return Verdict::unknown;
}

// Versions differ in what they tell of a negative literal.
bool Solver::value(int literal) const {
    return literal > 0 ? library->solver.val(literal) > 0 : library->solver.val(-literal) < 0;
}

bool Solver::failed(int literal) const { return library->solver.failed(literal); }

void Solver::setStop(std::function<bool()> stop) {
    library->stop = std::move(stop);
    library->solver.connect_terminator(library.get());
}

std::int64_t Solver::conflicts() const { return library->conflicts; }

} // namespace tervoxal
