#include "workflow.h"

#include <algorithm>
#include <cstddef>

namespace tervoxal {

Workflow::Workflow(long places, long seed) : random(static_cast<unsigned int>(seed)) {
    const Block whole = build(std::max(10L, places));
    all.push_back({{whole.out}, {whole.in}});
}

// std::mt19937 gives the same numbers on every machine, the distributions of <random> do not.
long Workflow::below(long bound) { return static_cast<long>(random()) % bound; }

long Workflow::place() {
    branches.push_back(way);
    return size() - 1;
}

/// Blocks of that many places in all, as branches of one.
std::vector<Workflow::Block> Workflow::buildBranches(long size, long number, bool fork) {
    std::vector<Block> built;
    const long block = blocks++;
    for (long i = 0; i < number; ++i) {
        const long left = number - i;
        // From half of an even share to one and a half.
        const long own = left == 1 ? size : std::max(1L, size / left / 2 + below(size / left + 1));
        const long most = size - (left - 1);
        way.push_back({block, i, fork});
        built.push_back(build(std::min(own, most)));
        way.pop_back();
        size -= std::min(own, most);
    }
    return built;
}

Workflow::Block Workflow::build(long size) {
    if (size == 1) {
        const long only = place();
        return {only, only};
    }
    // There is a fork in any case, so there are questions that are met.
    const long kind = size < 4 ? 0 : branches.empty() ? 3 : below(8);
    if (kind < 3) {
        const std::vector<Block> halves = buildBranches(size, 2, false);
        all.push_back({{halves[0].out}, {halves[1].in}});
        return {halves[0].in, halves[1].out};
    }
    // The places at both ends are in no branch.
    const long in = place();
    const bool fork = kind < 6;
    const long number = kind == 7 ? 1 : std::min(size - 2, 2 + below(3));
    const std::vector<Block> inner = buildBranches(size - 2, number, fork);
    const long out = place();
    if (fork) {
        Transition split{{in}, {}};
        Transition join{{}, {out}};
        for (const Block& block : inner) {
            split.to.push_back(block.in);
            join.from.push_back(block.out);
        }
        all.push_back(split);
        all.push_back(join);
    } else {
        for (const Block& block : inner) {
            all.push_back({{in}, {block.in}});
            all.push_back({{block.out}, {out}});
        }
        if (number == 1) all.push_back({{inner[0].out}, {in}}); // a loop
    }
    return {in, out};
}

bool Workflow::together(const std::vector<long>& places) const {
    for (std::size_t i = 0; i < places.size(); ++i) {
        for (std::size_t j = i + 1; j < places.size(); ++j) {
            const auto& a = branches[static_cast<std::size_t>(places[i])];
            const auto& b = branches[static_cast<std::size_t>(places[j])];
            const auto parts = std::ranges::mismatch(a, b, [](const Branch& x, const Branch& y) {
                return x.block == y.block && x.number == y.number;
            });
            const bool apart = parts.in1 != a.end() && parts.in2 != b.end() &&
                               parts.in1->block == parts.in2->block && parts.in1->fork;
            if (!apart) return false;
        }
    }
    return true;
}

std::vector<long> Workflow::places(bool met) {
    for (;;) {
        std::vector<long> some;
        for (long n = 2 + below(2); n > 0; --n) some.push_back(below(size()));
        std::ranges::sort(some);
        if (std::ranges::adjacent_find(some) == some.end() && together(some) == met) return some;
    }
}

} // namespace tervoxal
