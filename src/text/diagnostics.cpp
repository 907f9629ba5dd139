#include "text/diagnostics.h"

#include <algorithm>

namespace tervoxal {

namespace {

constexpr std::size_t mostAlike = 10;

/// The text without its numbers and without what stands between its first and its last double
/// quote: a name in quotes may hold quotes itself.
std::string gist(const std::string& text) {
    const std::size_t first = std::min(text.find('"'), text.size());
    const std::size_t last = first == text.size() ? first : text.rfind('"');
    std::string rest = text.substr(0, first) + text.substr(last);
    std::erase_if(rest, [](char c) { return c >= '0' && c <= '9'; });
    return rest;
}

} // namespace

void Diagnostics::add(long line, Kind kind, const std::string& text) {
    errors = errors || kind == Kind::error;
    Alike& others = alike[(kind == Kind::error ? 'e' : 'w') + gist(text)];
    if (++others.count > mostAlike) return;
    others.last = found.size();
    found.push_back({line, kind, text});
}

void Diagnostics::show(std::ostream& out, const std::string& file) const {
    std::vector<std::size_t> more(found.size(), 0);
    for (const auto& [text, others] : alike) {
        if (others.count > mostAlike) more[others.last] = others.count - mostAlike;
    }
    std::vector<std::size_t> order(found.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
        return found[a].line < found[b].line;
    });
    for (const std::size_t i : order) {
        const Finding& f = found[i];
        out << file << ':' << f.line << ": " << (f.kind == Kind::error ? "error: " : "warning: ")
            << f.text;
        if (more[i] > 0) out << " (and " << more[i] << " more like it)";
        out << '\n';
    }
}

} // namespace tervoxal
