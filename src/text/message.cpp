#include "text/message.h"

#include "text/readable.h"
#include "text/scanner.h"

#include <cstddef>

namespace tervoxal {

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
    constexpr std::size_t looksAt = 1000; // a name may have megabytes
    return inQuotes(normalised(text.substr(0, looksAt)));
}

} // namespace tervoxal
