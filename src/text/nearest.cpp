#include "text/nearest.h"

#include <algorithm>
#include <cstddef>

namespace tervoxal {

namespace {

// Longer words are compared with none: they are hardly typed by hand.
constexpr std::size_t longestWord = 80;
constexpr std::size_t mostFound = 3;

char small(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace

int editDistance(std::string_view a, std::string_view b, int most) {
    const auto rows = static_cast<int>(a.size());
    const auto columns = static_cast<int>(b.size());
    if (rows - columns > most || columns - rows > most) return most + 1;
    // Entry j of row i is the distance of the first i characters of a and the first j of b. Only
    // the band of 2 * most + 1 entries around the diagonal can be at most `most`.
    const auto width = static_cast<std::size_t>(columns) + 1;
    std::vector<int> before(width, most + 1);
    std::vector<int> last(width, most + 1);
    std::vector<int> row(width, most + 1);
    for (int j = 0; j <= std::min(columns, most); ++j) last[static_cast<std::size_t>(j)] = j;
    for (int i = 1; i <= rows; ++i) {
        const int from = std::max(i - most, 0);
        const int to = std::min(i + most, columns);
        // Left of the band stands what the row was three rows ago.
        if (from > 0) row[static_cast<std::size_t>(from) - 1] = most + 1;
        for (int j = from; j <= to; ++j) {
            const auto at = static_cast<std::size_t>(j);
            if (j == 0) {
                row[at] = i;
                continue;
            }
            const auto x = static_cast<std::size_t>(i) - 1;
            const bool same = small(a[x]) == small(b[at - 1]);
            int distance = std::min({last[at] + 1, row[at - 1] + 1, last[at - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && small(a[x]) == small(b[at - 2]) &&
                small(a[x - 1]) == small(b[at - 1])) {
                distance = std::min(distance, before[at - 2] + 1);
            }
            row[at] = std::min(distance, most + 1);
        }
        before.swap(last);
        last.swap(row);
    }
    return last.back();
}

Nearest::Nearest(std::string_view word)
    : word(word), most(word.size() > longestWord ? -1 : 1 + static_cast<int>(word.size()) / 3) {}

void Nearest::offer(std::string_view candidate) {
    if (most < 0) return;
    const int distance = editDistance(word, candidate, most);
    // Where every character would have to change, the candidate is another word.
    if (distance > most || distance >= static_cast<int>(std::max(word.size(), candidate.size()))) {
        return;
    }
    const auto after = std::find_if(best.begin(), best.end(),
                                    [&](const Candidate& c) { return c.distance > distance; });
    best.insert(after, {distance, candidate});
    if (best.size() > mostFound) best.pop_back();
    if (best.size() == mostFound) most = best.back().distance;
}

std::vector<std::string_view> Nearest::found() const {
    std::vector<std::string_view> words;
    for (const Candidate& c : best) words.push_back(c.word);
    return words;
}

} // namespace tervoxal
