#include "solver.h"

#include <cadical.hpp>
#include <cassert>
#include <limits>
#include <utility>

class Solver::Library : public CaDiCaL::Terminator {
public:
    Library() { solver.set("quiet", 1); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() override {
        if (stop) solver.disconnect_terminator();
    }

    bool terminate() override { return stop(); }

    CaDiCaL::Solver solver;
    std::function<bool()> stop;
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

Solver::Verdict Solver::solve(int conflicts) {
    library->solver.limit("conflicts", conflicts);
    switch (library->solver.solve()) {
    case 10: return Verdict::satisfiable;
    case 20: return Verdict::unsatisfiable;
    default: return Verdict::unknown;
    }
}

bool Solver::value(int literal) const { return library->solver.val(literal) > 0; }

void Solver::setStop(std::function<bool()> stop) {
    library->stop = std::move(stop);
    library->solver.connect_terminator(library.get());
}
