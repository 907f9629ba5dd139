// Known words that are spelt almost like a given one, to guess what was meant.

#pragma once

#include <string_view>
#include <vector>

namespace tervoxal {

/// The least number of characters to insert, drop, replace or swap with their neighbour that turns
/// a into b, where capitals equal small letters: the optimal string alignment distance. A distance
/// above `most` is most + 1. Linear in the length of the words for a fixed `most`.
[[nodiscard]] int editDistance(std::string_view a, std::string_view b, int most);

/// Collects the words that a given one may be a slip of: the nearest first, those that are equally
/// near in the order in which they came, at most three.
class Nearest {
public:
    explicit Nearest(std::string_view word);

    /// Looks at one more word, which must outlive this.
    void offer(std::string_view candidate);
    [[nodiscard]] std::vector<std::string_view> found() const;

private:
    struct Candidate {
        int distance;
        std::string_view word;
    };

    std::string_view word;
    int most;
    std::vector<Candidate> best;
};

} // namespace tervoxal
