#include "report.h"

#include "readable.h"

#include <string_view>

namespace {

/// A JSON string.
std::string quoted(const std::string& text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string literal = "\"";
    for (const char c : utf8(text)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20U) {
            literal += "\\u00";
            literal += digits[byte / 16U];
            literal += digits[byte % 16U];
        } else {
            if (c == '"' || c == '\\') literal += '\\';
            literal += c;
        }
    }
    return literal + '"';
}

/// The comma ahead of all elements but the first one.
class Separator {
public:
    explicit Separator(std::string_view between) : between(between) {}
    std::string_view next() { return first ? first = false, "" : between; }

private:
    std::string_view between;
    bool first = true;
};

void showAutomata(std::ostream& out, const NetTimedModel& model, const Names& names) {
    out << "\"automata\":[";
    Separator lines(",");
    auto vertex = model.verts.begin();
    for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
        out << lines.next() << "\n{\"name\":" << quoted(names.automaton(a)) << ",\"locations\":[";
        Separator commas(",");
        for (; vertex != model.verts.end() && vertex->first.first == a; ++vertex) {
            out << commas.next() << quoted(names.location(a, vertex->first.second));
        }
        out << "]}";
    }
    out << "],\n\"actionNames\":{";
    Separator commas(",");
    for (const auto& [number, name] : names.actions) {
        out << commas.next() << '"' << number << "\":" << quoted(name);
    }
    out << "},\n";
}

void showPosition(std::ostream& out, const Walk& walk) {
    out << "{\"position\":" << walk.position();
    if (walk.position() > 0) {
        out << ",\"actions\":[";
        Separator commas(",");
        for (const uint action : walk.actions()) out << commas.next() << action;
        out << ']';
    }
    out << ",\"locations\":[";
    Separator commas(",");
    for (uint a = 1; a < walk.state().size(); ++a) out << commas.next() << walk.state()[a];
    out << "],\"holds\":" << (walk.holds() ? "true" : "false") << '}';
}

} // namespace

void showJson(std::ostream& out, const Report& report) {
    Walk walk = report.start;
    out << "{\"network\":" << quoted(report.network) << ",\n\"formula\":" << quoted(report.formula)
        << ",\n\"k\":" << walk.length() << ",\n";
    showAutomata(out, walk.model(), report.names);
    out << "\"positions\":[\n";
    showPosition(out, walk);
    while (out && walk.step()) {
        out << ",\n";
        showPosition(out, walk);
    }
    out << "]}\n";
}
