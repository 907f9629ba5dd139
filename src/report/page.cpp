#include "report/page.h"

#include "report/jsonreport.h"
#include "report/report.h"

#include <set>
#include <sstream>
#include <string>

namespace tervoxal {

namespace {

using Term = Condition::Term;

void showActions(std::ostream& out, const NetTimedModel& model) {
    out << ",\n\"actions\":[";
    Separator lines(",");
    for (const auto& [action, automata] : model.actionAutomata) {
        out << lines.next() << "\n[" << action;
        for (const uint a : automata) {
            out << ",[" << a;
            for (const auto& [source, target] : model.actionEdges.at({a, action})) {
                out << ',' << source << ',' << target;
            }
            out << ']';
        }
        out << ']';
    }
    out << ']';
}

void showProps(std::ostream& out, const Report& report) {
    std::map<uint, std::vector<NetTimedModel::Location>> carriers;
    for (const Condition::Token& token : report.condition.tokens) {
        forEachAtom(token, [&](const Condition::Token& atom) {
            if (atom.term == Term::prop) carriers[atom.number];
        });
    }
    for (const auto& [location, prop] : report.start.model().valuation) {
        const auto asked = carriers.find(prop);
        if (asked != carriers.end()) asked->second.push_back(location);
    }
    out << ",\n\"props\":{";
    Separator commas(",");
    for (const auto& [prop, locations] : carriers) {
        out << commas.next() << '"' << prop << "\":[" << jsonString(report.names.prop(prop));
        for (const auto& [a, l] : locations) out << ',' << a << ',' << l;
        out << ']';
    }
    out << '}';
}

void showToken(std::ostream& out, const Condition::Token& token) {
    switch (token.term) {
    case Term::falsity: out << R"("false")"; break;
    case Term::truth: out << R"("true")"; break;
    case Term::prop: out << R"(["prop",)" << token.number << ']'; break;
    case Term::at: out << R"(["at",)" << token.number << ',' << token.location << ']'; break;
    case Term::enabled: out << R"(["enabled",)" << token.number << ']'; break;
    case Term::deadlock: out << R"("deadlock")"; break;
    case Term::after:
    case Term::initial: out << R"("false")"; break; // formulas about paths have them alone
    case Term::sum:
        out << R"(["sum",)" << token.least;
        for (const auto& [atom, weight] : *token.parts) {
            out << ',' << weight << ',';
            showToken(out, atom);
        }
        out << ']';
        break;
    case Term::negation: out << R"("!")"; break;
    case Term::conjunction: out << R"("&")"; break;
    case Term::disjunction: out << R"("|")"; break;
    }
}

void showQuestion(std::ostream& out, const Report& report) {
    showProps(out, report);
    out << ",\n\"condition\":[";
    Separator commas(",");
    for (const Condition::Token& token : report.condition.tokens) {
        out << commas.next();
        showToken(out, token);
    }
    out << "],\n\"shown\":[";
    Separator between(",");
    for (const uint a : shownAutomata(report)) out << between.next() << a;
    out << ']';
}

void showSteps(std::ostream& out, Walk walk) {
    std::string holds = walk.holds() ? "0" : "";
    out << ",\n\"steps\":[";
    Separator lines(",");
    while (out && walk.step()) {
        out << lines.next() << "\n[[";
        Separator commas(",");
        for (const uint action : walk.actions()) out << commas.next() << action;
        out << ']';
        for (const Change& change : walk.changes()) {
            out << ',' << change.automaton << ',' << change.source << ',' << change.target;
        }
        out << ']';
        if (walk.holds()) holds += (holds.empty() ? "" : ",") + std::to_string(walk.position());
    }
    out << "],\n\"holds\":[" << holds << ']';
}

} // namespace

void showPage(std::ostream& out, const Report& report) {
    std::ostringstream data;
    data << '{';
    showJsonEnd(data, report.start);
    data << "\"network\":" << jsonString(report.network)
         << ",\n\"question\":" << jsonString(report.formula) << ",\n";
    showJsonNetwork(data, report.start.model(), report.names);
    showActions(data, report.start.model());
    showQuestion(data, report);
    showSteps(data, report.start);
    data << "}\n";
    out << pageHead;
    // Only strings hold a "<", and a browser looks for the end of the element in all of them.
    for (const char c : data.view()) {
        if (c == '<')
            out << "\\u003c";
        else
            out << c;
    }
    out << "</script>\n";
}

} // namespace tervoxal
