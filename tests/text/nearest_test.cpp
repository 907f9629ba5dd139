// Distances of random words against the whole table of the recurrence.

#include "text/nearest.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace tervoxal {

namespace {

int distance(const std::string& a, const std::string& b) {
    const auto same = [&](std::size_t i, std::size_t j) {
        return std::tolower(a[i - 1]) == std::tolower(b[j - 1]);
    };
    std::vector<std::vector<int>> d(a.size() + 1, std::vector<int>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            d[i][j] = static_cast<int>(std::max(i, j));
            if (i == 0 || j == 0) continue;
            const int replaced = d[i - 1][j - 1] + (same(i, j) ? 0 : 1);
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && same(i, j - 1) && same(i - 1, j))
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    }
    return d.back().back();
}

} // namespace

TEST(Nearest, distancesUpToABoundAreThoseOfTheWholeTable) {
    std::mt19937 random(1);
    const auto word = [&random] {
        std::string text;
        for (auto length = random() % 12; length > 0; --length) text += "abBcC"[random() % 5];
        return text;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::string a = word();
        const std::string b = word();
        const int most = static_cast<int>(random() % 6);
        EXPECT_EQ(editDistance(a, b, most), std::min(distance(a, b), most + 1))
            << a << ' ' << b << ' ' << most;
    }
}

} // namespace tervoxal
