#include "text/readable.h"

#include <cstddef>
#include <cstdint>

namespace tervoxal {

namespace {

/// The bytes of the UTF-8 character that the text begins with, 0 if there is none.
std::size_t characterSize(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const unsigned int lead = byte(0);
    if (lead < 0x80U) return 1;
    const std::size_t size = lead >= 0xf0U ? 4 : lead >= 0xe0U ? 3 : 2;
    std::uint32_t point = lead & (0x7fU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if (byte(i) >> 6U != 2U) return 0;
        point = point << 6U | (byte(i) & 0x3fU);
    }
    const bool shortest = point >= (size == 2 ? 0x80U : size == 3 ? 0x800U : 0x10000U);
    const bool surrogate = point >= 0xd800U && point <= 0xdfffU;
    return lead >= 0xc0U && lead <= 0xf7U && shortest && !surrogate && point <= 0x10ffffU ? size
                                                                                          : 0;
}

bool isControl(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character.front());
    if (character.size() == 1) return lead < 0x20U || lead == 0x7fU;
    return lead == 0xc2U && static_cast<unsigned char>(character[1]) < 0xa0U;
}

} // namespace

std::string utf8(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        valid += size == 0 ? "\xef\xbf\xbd" : text.substr(0, size);
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return valid;
}

std::string readable(std::string_view text) {
    const std::string valid = utf8(text);
    std::string shown;
    for (std::string_view rest = valid; !rest.empty();) {
        const std::string_view character = rest.substr(0, characterSize(rest));
        shown += isControl(character) ? " " : character;
        rest.remove_prefix(character.size());
    }
    return shown;
}

std::string excerpt(std::string_view text) {
    std::size_t size = 40;
    if (text.size() <= size) return readable(text);
    while (size > 37 && (static_cast<unsigned char>(text[size]) & 0xc0U) == 0x80U) --size;
    return readable(text.substr(0, size)) + "...";
}

std::string inQuotes(std::string_view text) { return '"' + excerpt(text) + '"'; }

} // namespace tervoxal
