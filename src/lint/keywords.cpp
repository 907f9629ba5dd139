#include "lint/keywords.h"

#include "text/nearest.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <array>
#include <cstddef>

namespace tervoxal {

namespace {

constexpr std::array<std::string_view, 4> keywords = {"location", "transition", "valuation", "end"};

bool misspelt(std::string_view word, std::string_view keyword, bool alone) {
    if (keyword == "end") {
        return alone && word.size() > 1 && word.size() < 5 && editDistance(word, keyword, 1) <= 1;
    }
    constexpr std::size_t shortest = 3;
    constexpr int most = 2;
    return (word.size() >= shortest && keyword.starts_with(word)) ||
           editDistance(word, keyword, most) <= most;
}

} // namespace

KeywordLine keywordLine(std::string_view line) {
    const std::string_view text = trimmed(line);
    std::string_view rest = text;
    const std::string_view word = takeWord(rest);
    const bool indented = !line.empty() && isBlank(line.front());
    for (const std::string_view keyword : keywords) {
        const std::string slip = indented ? inQuotes(keyword) + " is indented" : "";
        if (text.starts_with(keyword)) return {keyword, slip, text.substr(keyword.size())};
    }
    for (const std::string_view keyword : keywords) {
        if (editDistance(word.substr(0, keyword.size()), keyword, 0) == 0) {
            return {keyword, inQuotes(word) + " is not in small letters",
                    text.substr(keyword.size())};
        }
    }
    for (const std::string_view keyword : keywords) {
        if (misspelt(word, keyword, rest.empty())) {
            const std::string slip =
                "is " + inQuotes(word) + " meant to be " + inQuotes(keyword) + '?';
            return {keyword, slip, rest};
        }
    }
    return {};
}

} // namespace tervoxal
