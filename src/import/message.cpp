#include "message.h"

#include "scanner.h"

#include <cstddef>

std::string message(const std::string& file, unsigned long line, const std::string& text) {
    return file + ": line " + std::to_string(line) + ": " + text;
}

std::string normalised(std::string_view text) {
    std::string r;
    bool gap = false;
    for (const char c : text) {
        if (isBlank(c)) {
            gap = !r.empty();
            continue;
        }
        if (gap) r += ' ';
        gap = false;
        r += c;
    }
    return r;
}

std::string shown(std::string_view text) {
    constexpr std::size_t longest = 60;
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
    std::string r = normalised(text.substr(0, 4 * longest));
    if (r.size() > longest) {
        std::size_t size = longest;
        while (size > 0 && continues(r[size])) --size;
        r.resize(size);
        r += "...";
    }
    return "'" + r + "'";
}
