#include "report/report.h"

#include "text/amounts.h"
#include "text/readable.h"

#include <string_view>
#include <vector>

namespace tervoxal {

namespace {

std::string shownAction(uint number, const Names& names) {
    const auto name = names.actions.find(number);
    const std::string text = std::to_string(number);
    return name == names.actions.end() ? text : text + ' ' + readable(name->second);
}

/// A line that begins a block: a star in front where the formula holds.
std::string_view margin(const Walk& walk) { return walk.holds() ? "* " : "  "; }

/// What is met here of a formula about paths.
void showParts(std::ostream& out, const Walk& walk) {
    for (const std::string& part : walk.parts()) {
        out << "      met: " << readable(part) << '\n';
    }
}

void showState(std::ostream& out, const Walk& walk, const Names& names,
               const std::vector<uint>& automata) {
    out << margin(walk) << "state " << walk.position() << '\n';
    if (walk.position() == 0) showParts(out, walk);
    for (const uint a : automata) {
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
    showParts(out, walk);
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
    const std::vector<uint> automata = shownAutomata(report);
    Walk walk = report.start;
    out << readable(report.network) << ", " << steps(walk.length());
    if (walk.isCourse()) {
        out << "; * marks where parts of " << readable(report.formula) << " are met";
    } else if (!report.formula.empty()) {
        out << "; * marks where " << readable(report.formula) << " holds";
    }
    out << '\n';
    const auto all = static_cast<std::size_t>(walk.model().nrOfAutomata);
    if (automata.size() < all) {
        out << "left out: " << all - automata.size() << " of " << all
            << " automata, which stay and are not asked about; --all shows them\n";
    }
    out << '\n';
    showState(out, walk, names, automata);
    if (walk.length() > 0) {
        out << '\n';
        while (out && walk.step()) showStep(out, walk, names);
        out << '\n';
        showState(out, walk, names, automata);
    }
    const Path& path = walk.whole();
    if (path.loop) out << "\n  goes on at state " << *path.loop << '\n';
    if (path.ends && walk.isCourse()) out << "\n  ends here: no action is possible\n";
}

} // namespace tervoxal
