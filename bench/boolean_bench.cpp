// The store, the conversion to clauses and the writer, each on its own.

#include "boolean/boolform.h"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdio>
#include <random>
#include <vector>

using namespace tervoxal;

namespace {

/// A formula of about `size` nodes, each over one recent formula and one from anywhere.
BoolForm formula(int size) {
    std::mt19937 random(1);
    std::vector<BoolForm> formulas;
    for (int v = 1; v <= 1000; ++v) formulas.emplace_back(v);
    for (int i = 0; i < size; ++i) {
        const BoolForm recent = formulas[formulas.size() - 1 - random() % 100];
        const BoolForm any = formulas[random() % formulas.size()];
        formulas.push_back(i % 8 == 0 ? equ(recent, any) : con(recent, neg(any)));
    }
    BoolForm all(true);
    for (std::size_t i = 1; i <= 100; ++i) all = con(all, neg(formulas[formulas.size() - i]));
    return all;
}

void createNodes(benchmark::State& state) {
    for (auto _ : state) {
        BoolForm::clear();
        benchmark::DoNotOptimize(formula(static_cast<int>(state.range())));
    }
    state.SetItemsProcessed(state.iterations() * state.range());
}

void findNodes(benchmark::State& state) {
    BoolForm::clear();
    (void)formula(static_cast<int>(state.range()));
    for (auto _ : state) benchmark::DoNotOptimize(formula(static_cast<int>(state.range())));
    state.SetItemsProcessed(state.iterations() * state.range());
}

void convert(benchmark::State& state) {
    BoolForm::clear();
    const BoolForm f = formula(static_cast<int>(state.range()));
    std::size_t clauses = 0;
    for (auto _ : state) {
        for (const Clause& c : f.clauses()) clauses += c.l3 != 0 ? 1 : 0;
    }
    state.SetItemsProcessed(static_cast<long>(clauses));
}

void write(benchmark::State& state) {
    BoolForm::clear();
    const ClauseRange clauses = formula(static_cast<int>(state.range())).clauses();
    for (auto _ : state) showCNF(clauses, "/dev/shm/tervoxal-bench");
    std::remove("/dev/shm/tervoxal-bench.cnf");
    state.SetItemsProcessed(state.iterations() * static_cast<long>(clauses.size()));
}

BENCHMARK(createNodes)->Arg(1000)->Arg(1000000);
BENCHMARK(findNodes)->Arg(1000)->Arg(1000000);
BENCHMARK(convert)->Arg(1000)->Arg(1000000);
BENCHMARK(write)->Arg(1000)->Arg(1000000);

} // namespace
