#include "text/scanner.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace tervoxal {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view takeWord(std::string_view& text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    std::size_t size = 0;
    while (size < text.size() && !isBlank(text[size])) ++size;
    const std::string_view word = text.substr(0, size);
    text.remove_prefix(size);
    return word;
}

void Scanner::skipWord() {
    std::string_view text(at, end);
    takeWord(text);
    at = text.data();
}

Found Scanner::number(unsigned int& n) {
    skipBlanks();
    const bool sign = at != end && (*at == '+' || *at == '-');
    const char* const digits = sign ? at + 1 : at;
    int magnitude = 0;
    const auto parsed = std::from_chars(digits, end, magnitude);
    if (digits == end || *digits == '-' || parsed.ec == std::errc::invalid_argument) {
        return Found::nothing;
    }
    if (parsed.ec != std::errc()) return Found::tooLarge;
    if (magnitude != 0 && *at == '-') return Found::negative;
    at = parsed.ptr;
    n = static_cast<unsigned int>(magnitude);
    return Found::number;
}

} // namespace tervoxal
