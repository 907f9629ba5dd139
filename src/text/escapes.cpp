#include "text/escapes.h"

namespace tervoxal {

namespace {

/// Whether there is a backslash that means the character after it.
bool escapes(std::string_view text, std::size_t i) {
    return text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '"' || text[i + 1] == '\\');
}

} // namespace

std::size_t closingQuote(std::string_view text, std::size_t begin) {
    for (std::size_t i = begin; i < text.size(); ++i) {
        if (text[i] == '"') return i;
        if (escapes(text, i)) ++i;
    }
    return std::string_view::npos;
}

std::string unescaped(std::string_view text) {
    std::string meant;
    for (std::size_t i = 0; i < text.size(); ++i) meant += text[escapes(text, i) ? ++i : i];
    return meant;
}

std::string quoted(std::string_view text) {
    std::string all = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') all += '\\';
        all += c;
    }
    return all + '"';
}

std::string shellWord(std::string_view text) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                       "0123456789_-./,:+@%=";
    if (!text.empty() && text.find_first_not_of(plain) == std::string_view::npos) {
        return std::string(text);
    }
    std::string word = "'";
    for (const char c : text) {
        if (c == '\'') {
            word += "'\\''";
        } else {
            word += c;
        }
    }
    return word + '\'';
}

} // namespace tervoxal
