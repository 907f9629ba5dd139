#include "model/networkfault.h"

namespace tervoxal {

namespace {

std::string text(NetworkFault::Field field) {
    using Field = NetworkFault::Field;
    switch (field) {
    case Field::location: return "location number";
    case Field::source: return "source location";
    case Field::target: return "target location";
    case Field::action: return "action number";
    default: return "proposition number";
    }
}

} // namespace

bool anotherLineIsDue(NetworkFault::Kind kind) {
    using Kind = NetworkFault::Kind;
    return kind == Kind::noDeclaration || kind == Kind::openLocation ||
           kind == Kind::openTransition || kind == Kind::openAutomaton;
}

std::string text(const NetworkFault& fault) {
    using Kind = NetworkFault::Kind;
    const std::string automaton = "automaton " + std::to_string(fault.automaton) + ": ";
    switch (fault.kind) {
    case Kind::noHeading: return "network: end of file before the heading";
    case Kind::noClosingLine: return "network: end of file before the closing line";
    case Kind::cutOff: return automaton + "end of file before the closing line";
    case Kind::noDeclaration: return "description error";
    case Kind::openLocation: return "location error";
    case Kind::openTransition: return "transition error";
    case Kind::openAutomaton: return "end expected";
    case Kind::missing: return automaton + text(fault.field) + " is missing";
    case Kind::negative: return automaton + text(fault.field) + " is negative";
    case Kind::tooLarge: return automaton + text(fault.field) + " is out of range";
    case Kind::noLocation: return automaton + "no location is declared";
    default: return automaton + "location " + std::to_string(fault.location) + " is not declared";
    }
}

std::string refusal(const NetworkFault& fault) {
    const std::string line = "line " + std::to_string(fault.line) + ": ";
    return (anotherLineIsDue(fault.kind) ? "" : line) + text(fault);
}

} // namespace tervoxal
