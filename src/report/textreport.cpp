#include "report/report.h"

#include "text/amounts.h"
#include "text/readable.h"

#include <string_view>

namespace tervoxal {

namespace {

std::string shownAction(uint number, const Names& names) {
    const auto name = names.actions.find(number);
    const std::string text = std::to_string(number);
    return name == names.actions.end() ? text : text + ' ' + readable(name->second);
}

/// A line that begins a block: a star in front where the formula holds.
std::string_view margin(const Walk& walk) { return walk.holds() ? "* " : "  "; }

void showState(std::ostream& out, const Walk& walk, const Names& names) {
    out << margin(walk) << "state " << walk.position() << '\n';
    for (uint a = 1; a < walk.state().size(); ++a) {
        out << "      " << readable(names.automaton(a)) << ": "
            << readable(names.location(a, walk.state()[a])) << '\n';
    }
}

void showStep(std::ostream& out, const Walk& walk, const Names& names) {
    std::string_view before;
    out << margin(walk) << "step " << walk.position() << ": ";
    for (const uint action : walk.actions()) {
        out << before << shownAction(action, names) << '\n';
        before = "      or ";
    }
    for (const Change& change : walk.changes()) {
        const uint a = change.automaton;
        out << "      " << readable(names.automaton(a)) << ": "
            << readable(names.location(a, change.source)) << " -> "
            << readable(names.location(a, change.target)) << '\n';
    }
    if (walk.changes().empty()) out << "      nothing moves\n";
}

} // namespace

void showText(std::ostream& out, const Report& report) {
    const Names& names = report.names;
    Walk walk = report.start;
    out << readable(report.network) << ", " << steps(walk.length()) << "; * marks where "
        << readable(report.formula) << " holds\n\n";
    showState(out, walk, names);
    out << '\n';
    while (out && walk.step()) showStep(out, walk, names);
    out << '\n';
    showState(out, walk, names);
}

} // namespace tervoxal
