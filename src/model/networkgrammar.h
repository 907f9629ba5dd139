// The grammar of a network file, once for all who read one: what the lines are and in which order
// they stand. docs/network.md tells it in full. What becomes of the lines is up to a handler.

#pragma once

#include "model/networkfault.h"
#include "text/lines.h"
#include "text/scanner.h"
#include "text/uint.h"

#include <algorithm>
#include <concepts>
#include <optional>
#include <string_view>

namespace tervoxal {

/// A transition as a file tells it. Ordered by action, then source, then target.
struct Transition {
    uint action;
    uint source;
    uint target;

    auto operator<=>(const Transition&) const = default; // NOLINT(modernize-use-nullptr)
};

/// What the parser calls, in the order of the file.
template <class Handler>
concept NetworkHandler = requires(Handler handler, int automaton, uint number,
                                  const Transition& transition, bool named,
                                  const std::optional<uint>& prop, const Scanner& after,
                                  const NetworkFault& fault) {
    // The heading of the network.
    handler.heading();
    // The title of the automaton of that number.
    handler.title(automaton);
    // The first line after the title.
    handler.body();
    // A declared location, and what stands after its number.
    handler.location(number, after);
    // A transition; named: the file gives its action a number.
    handler.transition(transition, named, after);
    // The line `valuation`.
    handler.valuation();
    // The location of a line of the valuation.
    handler.value(number);
    // A proposition of that line, after its location.
    handler.prop(number, number);
    // The end of that line: its location, its last proposition if it has one, and what stands
    // after its numbers.
    handler.afterValue(number, prop, after);
    // A line of the valuation that begins with no number.
    handler.ignored();
    // The end of an automaton.
    handler.closed();
    // The closing line of the network.
    handler.end();
    // A fault; the rest of the automaton is left out. The handler ends the process, or goes to the
    // first line of the next automaton and gives true, or gives false where there is none.
    { handler.refused(fault) } -> std::same_as<bool>;
};

template <NetworkHandler Handler>
class NetworkParser {
public:
    /// The network's first automaton has the number automata + 1. Both references outlive this.
    NetworkParser(Lines& lines, Handler& handler, int automata = 0)
        : lines(lines), handler(handler), automaton(automata) {}

    /// Heading, automata and closing line. Nothing after the closing line is read.
    void network() {
        if (!lines.next()) {
            refused(Kind::noHeading);
            return;
        }
        handler.heading();
        while (section()) {
        }
    }

    /// One automaton; false at the closing line of the network and where nothing more can be read.
    bool section() {
        if (!atNext && !lines.next()) return refused(Kind::noClosingLine);
        atNext = false;
        if (at("end")) {
            handler.end();
            return false;
        }
        handler.title(++automaton);
        if (next() && declarations() && valuation()) return true;
        return atNext;
    }

private:
    using Kind = NetworkFault::Kind;
    using Field = NetworkFault::Field;

    [[nodiscard]] bool at(std::string_view keyword) const {
        return lines.text.starts_with(keyword);
    }
    bool next() { return lines.next() || refused(Kind::cutOff); }
    /// False, so that the rest of the automaton is left out.
    bool refused(Kind kind, Field field = {}) {
        atNext = handler.refused({kind, std::max(lines.number, 1L), automaton, field});
        return false;
    }

    /// Whether what was found is a number or none at all.
    bool sound(Found found, Field field) {
        if (found == Found::negative) return refused(Kind::negative, field);
        if (found == Found::tooLarge) return refused(Kind::tooLarge, field);
        return true;
    }
    bool required(Scanner& fields, uint& n, Field field) {
        const Found found = fields.number(n);
        return found == Found::nothing ? refused(Kind::missing, field) : sound(found, field);
    }

    bool declarations() {
        handler.body();
        while (!at("valuation")) {
            const bool read = at("location")     ? location()
                              : at("transition") ? transition()
                                                 : refused(Kind::noDeclaration);
            if (!read) return false;
        }
        return true;
    }

    bool location() {
        Scanner fields(lines.text);
        fields.skipWord();
        uint l = 0;
        if (!required(fields, l, Field::location)) return false;
        handler.location(l, fields);
        return next() && (at("end") || refused(Kind::openLocation)) && next();
    }

    bool transition() {
        Scanner fields(lines.text);
        fields.skipWord();
        Transition t{};
        if (!required(fields, t.source, Field::source)) return false;
        if (!required(fields, t.target, Field::target)) return false;
        const Found action = fields.number(t.action);
        if (!sound(action, Field::action)) return false;
        handler.transition(t, action == Found::number, fields);
        return next() && (lines.text == "end" || refused(Kind::openTransition)) && next();
    }

    bool valuation() {
        handler.valuation();
        if (!next()) return false;
        while (!at("end")) {
            if (!value() || !next()) return false;
        }
        if (!next() || !(at("end") || refused(Kind::openAutomaton))) return false;
        handler.closed();
        return true;
    }

    bool value() {
        Scanner fields(lines.text);
        uint l = 0;
        Found found = fields.number(l);
        if (found == Found::nothing) {
            handler.ignored();
            return true;
        }
        if (!sound(found, Field::location)) return false;
        handler.value(l);
        std::optional<uint> last;
        uint p = 0;
        while ((found = fields.number(p)) == Found::number) {
            handler.prop(l, p);
            last = p;
        }
        if (!sound(found, Field::prop)) return false;
        handler.afterValue(l, last, fields);
        return true;
    }

    Lines& lines;
    Handler& handler;
    int automaton;
    bool atNext = false; // whether the handler has gone to the next automaton
};

} // namespace tervoxal
