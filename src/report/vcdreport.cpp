#include "report/report.h"

#include "system/filenames.h"
#include "text/readable.h"

#include <algorithm>
#include <set>
#include <string_view>

namespace tervoxal {

namespace {

/// The number as the short name of a signal, of printable characters.
std::string code(std::size_t number) {
    std::string text;
    do {
        text += static_cast<char>('!' + number % 94);
        number /= 94;
    } while (number > 0);
    return text;
}

/// A name of a scope: what could end it or cut it in two becomes "_". No two are equal.
class ScopeNames {
public:
    std::string next(const std::string& name, uint number) {
        std::string scope = readable(name);
        for (char& c : scope) {
            const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
            if (!letter && (c < '0' || c > '9')) c = '_';
        }
        if (!used.insert(scope).second) {
            scope += "_" + std::to_string(number);
            while (!used.insert(scope).second) scope += '_';
        }
        return scope;
    }

private:
    std::set<std::string> used;
};

/// A string value: without blanks, and with the escapes that GTKWave reads.
std::string value(const std::string& name) {
    std::string text;
    for (const char c : readable(name)) {
        if (c == '\\') text += '\\';
        text += c == ' ' ? '_' : c;
    }
    return text;
}

std::string binary(uint number) {
    std::string digits;
    for (; number > 0; number /= 2) digits.insert(digits.begin(), number % 2 == 0 ? '0' : '1');
    return digits.empty() ? "0" : digits;
}

// The signals of the whole network, then two for each automaton.
enum Signal : std::size_t { holdsSignal, actionSignal, nameSignal, firstLocation };
std::string locationCode(uint a) { return code(firstLocation + 2 * (a - 1UL)); }
std::string nameCode(uint a) { return code(firstLocation + 2 * (a - 1UL) + 1); }

void showHeader(std::ostream& out, const Report& report) {
    const NetTimedModel& model = report.start.model();
    const auto variable = [&](std::string_view kind, int width, const std::string& id,
                              std::string_view name) {
        out << "$var " << kind << ' ' << width << ' ' << id << ' ' << name << " $end\n";
    };
    ScopeNames scopes;
    out << "$timescale 1 ns $end\n"
        << "$scope module " << scopes.next(lastPart(report.network), 0) << " $end\n";
    variable("wire", 1, code(holdsSignal), "holds");
    variable("wire", 31, code(actionSignal), "action");
    variable("string", 1, code(nameSignal), "action_name");
    for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
        out << "$scope module " << scopes.next(report.names.automaton(a), a) << " $end\n";
        variable("wire", std::max(1, model.nrOfBits[a]), locationCode(a), "location");
        variable("string", 1, nameCode(a), "name");
        out << "$upscope $end\n";
    }
    out << "$upscope $end\n$enddefinitions $end\n";
}

void showLocation(std::ostream& out, const Walk& walk, const Names& names, uint a) {
    const uint l = walk.state()[a];
    if (walk.model().nrOfBits[a] > 1) out << 'b';
    out << binary(l) << (walk.model().nrOfBits[a] > 1 ? " " : "") << locationCode(a) << "\ns"
        << value(names.location(a, l)) << ' ' << nameCode(a) << '\n';
}

} // namespace

void showVcd(std::ostream& out, const Report& report) {
    const Names& names = report.names;
    Walk walk = report.start;
    const Path path = twiceAround(walk.whole());
    walk.goOn(path);
    showHeader(out, report);
    bool held = walk.holds();
    uint latest = 0;
    out << "#0\n$dumpvars\n"
        << (held ? '1' : '0') << code(holdsSignal) << "\nbx " << code(actionSignal) << "\ns- "
        << code(nameSignal) << '\n';
    for (uint a = 1; a < walk.state().size(); ++a) showLocation(out, walk, names, a);
    out << "$end\n";
    while (out && walk.step()) {
        out << '#' << walk.position() << '\n';
        if (walk.holds() != held) out << (walk.holds() ? '1' : '0') << code(holdsSignal) << '\n';
        held = walk.holds();
        const uint least = walk.actions().front();
        if (least != latest || walk.position() == 1) {
            out << 'b' << binary(least) << ' ' << code(actionSignal) << "\ns"
                << value(names.action(least)) << ' ' << code(nameSignal) << '\n';
        }
        latest = least;
        for (const Change& change : walk.changes()) {
            showLocation(out, walk, names, change.automaton);
        }
    }
    out << '#' << walk.position() + 1L << '\n'; // else a viewer ends where the last state begins
}

} // namespace tervoxal
