// A workflow as a safe Petri net, built from blocks: a place, one block after another, a choice or
// a fork between two places, a loop. From its last place it begins anew. It is safe and
// free-choice, and two places hold tokens at once exactly if they are in different branches of the
// same fork, so for questions about places it is known from the start whether they are met.

#pragma once

#include <random>
#include <string>
#include <vector>

namespace tervoxal {

class Workflow {
public:
    /// A workflow of that many places, at least 10. They are numbered from 0, which is the only one
    /// with a token at the start. The same seed gives the same one everywhere.
    Workflow(long places, long seed);

    struct Transition {
        std::vector<long> from;
        std::vector<long> to;
    };

    [[nodiscard]] long size() const { return static_cast<long>(branches.size()); }
    [[nodiscard]] const std::vector<Transition>& transitions() const { return all; }
    /// Whether some state has tokens in all of the places, which differ.
    [[nodiscard]] bool together(const std::vector<long>& places) const;
    /// Two or three places, such that together() gives what is asked for.
    [[nodiscard]] std::vector<long> places(bool met);

private:
    /// The first and the last place of a block.
    struct Block {
        long in;
        long out;
    };
    /// Which way a place lies from a block of several: its branch, all of which are at work at once
    /// in a fork.
    struct Branch {
        long block;
        long number;
        bool fork;
    };

    [[nodiscard]] long below(long bound);
    long place();
    Block build(long size);
    std::vector<Block> buildBranches(long size, long number, bool fork);

    std::mt19937 random;
    std::vector<Branch> way;                   // to the block at hand
    std::vector<std::vector<Branch>> branches; // of each place, the way to it
    std::vector<Transition> all;
    long blocks = 0;
};

} // namespace tervoxal
