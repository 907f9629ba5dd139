#include "scanner.h"

#include <charconv>
#include <system_error>

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

void Scanner::skipWord() {
    skipBlanks();
    while (at != end && !isBlank(*at)) ++at;
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
