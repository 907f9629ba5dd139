#include "model/networkwriter.h"

#include "text/scanner.h"

#include <algorithm>
#include <string>

namespace tervoxal {

namespace {

/// The name on one line, without blanks at its ends.
std::string oneLine(std::string_view name) {
    std::string text(name);
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, ' ');
    return std::string(trimmed(text));
}

/// The name after the numbers of a line, or nothing.
void after(std::ostream& out, std::string_view name) {
    const std::string text = oneLine(name);
    if (!text.empty()) out << ' ' << text;
}

/// A line that is significant and no keyword, whatever its text is.
void titleLine(std::ostream& out, std::string_view name) {
    const std::string text = oneLine(name);
    if (text.empty() || text.front() == '#' || text.starts_with("end")) out << ' ';
    out << text << '\n';
}

bool beginsLikeNumber(std::string_view text) {
    uint n = 0;
    return Scanner(text).number(n) != Found::nothing;
}

} // namespace

NetworkWriter::NetworkWriter(std::ostream& out, std::string_view heading) : out(&out) {
    titleLine(out, heading);
}

void NetworkWriter::automaton(std::string_view title) { titleLine(*out, title); }

void NetworkWriter::location(uint l, std::string_view name) {
    *out << "location " << l;
    after(*out, name);
    *out << "\nend\n";
}

void NetworkWriter::transition(uint source, uint target, uint action, std::string_view name) {
    *out << "transition " << source << ' ' << target << ' ' << action;
    after(*out, name);
    *out << "\nend\n";
}

void NetworkWriter::valuation() { *out << "valuation\n"; }

void NetworkWriter::value(uint l, std::span<const uint> props, std::string_view name) {
    *out << l;
    for (const uint p : props) *out << ' ' << p;
    if (!props.empty()) {
        const std::string text = oneLine(name);
        after(*out, beginsLikeNumber(text) ? '_' + text : text);
    }
    *out << '\n';
}

void NetworkWriter::value(uint l, uint prop, std::string_view name) {
    value(l, std::span(&prop, 1), name);
}

void NetworkWriter::endAutomaton() { *out << "end\nend\n"; }

void NetworkWriter::comment(std::string_view text) { *out << '#' << oneLine(text) << '\n'; }

void NetworkWriter::end() { *out << "end\n"; }

} // namespace tervoxal
