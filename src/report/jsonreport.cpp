#include "report/jsonreport.h"

#include "report/report.h"
#include "text/readable.h"

#include <string_view>

namespace tervoxal {

namespace {

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
    out << "],\"holds\":" << (walk.holds() ? "true" : "false");
    if (!walk.parts().empty()) {
        out << ",\"met\":[";
        Separator between(",");
        for (const std::string& part : walk.parts()) out << between.next() << jsonString(part);
        out << ']';
    }
    out << '}';
}

} // namespace

std::string jsonString(const std::string& text) {
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

void showJsonNetwork(std::ostream& out, const NetTimedModel& model, const Names& names) {
    out << "\"automata\":[";
    Separator lines(",");
    auto vertex = model.verts.begin();
    for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
        out << lines.next() << "\n{\"name\":" << jsonString(names.automaton(a))
            << ",\"locations\":[";
        Separator commas(",");
        for (; vertex != model.verts.end() && vertex->first.first == a; ++vertex) {
            out << commas.next() << jsonString(names.location(a, vertex->first.second));
        }
        out << "]}";
    }
    out << "],\n\"actionNames\":{";
    Separator commas(",");
    for (const auto& [number, name] : names.actions) {
        out << commas.next() << '"' << number << "\":" << jsonString(name);
    }
    out << '}';
}

void showJsonEnd(std::ostream& out, const Walk& walk) {
    if (!walk.isCourse()) return;
    const Path& path = walk.whole();
    out << "\"loop\":" << (path.loop ? std::to_string(*path.loop) : "null")
        << ",\"ends\":" << (path.ends ? "true" : "false") << ",\n";
}

void showJsonPositions(std::ostream& out, Walk walk) {
    out << "\"positions\":[\n";
    showPosition(out, walk);
    while (out && walk.step()) {
        out << ",\n";
        showPosition(out, walk);
    }
    out << ']';
}

void showJson(std::ostream& out, const Report& report) {
    out << "{\"network\":" << jsonString(report.network)
        << ",\n\"formula\":" << jsonString(report.formula) << ",\n\"k\":" << report.start.length()
        << ",\n";
    showJsonNetwork(out, report.start.model(), report.names);
    out << ",\n";
    showJsonEnd(out, report.start);
    showJsonPositions(out, report.start);
    out << "}\n";
}

} // namespace tervoxal
