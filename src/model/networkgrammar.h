// The grammar of a network file, once for all who read one: what the lines are and in which order
// they stand. docs/network.md tells it in full. What becomes of the lines is up to a handler.
//
// The parser calls these members of the handler, in the order of the file:
//
//     heading()                    the network's heading
//     title()                      the title of the next automaton
//     body()                       the first line behind the title
//     location(l, behind)          a declared location, and the scanner behind its number
//     transition(t, named, behind) a transition; named: its action has a number in the file
//     valuation()                  the line `valuation`
//     value(l)                     a line of a valuation, of location l
//     prop(l, p)                   a proposition of that line
//     behindValue(l, p, behind)    the end of that line; p is its last proposition, if any
//     ignored()                    a line of a valuation that begins with no number
//     closed()                     the end of an automaton
//     end()                        the closing line of the network
//
// and these where the file is malformed. A handler that comes back from them, in place of ending
// the process, is taken on as far as the rest can be understood:
//
//     refused(message)             a fault in the current line, or the end of the file ahead of its
//                                  time
//     mend(message)                the line is not the one due, which is that fault; true if the
//                                  handler has put another text or a later line in its place, which
//                                  is then looked at once more
//     disorder(message)            the line still is not the one due

#pragma once

#include "lines.h"
#include "scanner.h"

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

/// A transition as a file tells it. Ordered by action, then source, then target.
struct Transition {
    unsigned int action;
    unsigned int source;
    unsigned int target;

    bool operator==(const Transition&) const = default;
};

inline bool operator<(const Transition& a, const Transition& b) {
    return std::tie(a.action, a.source, a.target) < std::tie(b.action, b.source, b.target);
}

template <class Handler>
class NetworkParser {
public:
    /// The network's first automaton has the number automata + 1. Both references outlive this.
    NetworkParser(Lines& lines, Handler& handler, int automata = 0)
        : lines(lines), handler(handler), automaton(automata) {}

    /// Heading, automata and closing line. Nothing behind the closing line is read.
    void network() {
        if (!lines.next()) return handler.refused("network: end of file before the heading");
        handler.heading();
        while (section()) {
        }
    }

    /// One automaton; false at the closing line of the network, or where the file ends too soon.
    bool section() {
        if (!held && !lines.next()) {
            handler.refused("network: end of file before the closing line");
            return false;
        }
        held = false;
        if (at("end")) {
            handler.end();
            return false;
        }
        ++automaton;
        handler.title();
        if (!next()) return false;
        handler.body();
        bool more = true;
        while (more && !at("valuation")) {
            if (at("location")) {
                more = location();
            } else if (at("transition")) {
                more = transition();
            } else if (const char* const fault = "description error"; !handler.mend(fault)) {
                handler.disorder(fault);
                if (at("end")) { // closes an automaton without a valuation
                    handler.closed();
                    return true;
                }
                more = next() && (!at("end") || next());
            }
        }
        return more && valuation();
    }

private:
    [[nodiscard]] bool at(std::string_view keyword) const {
        return lines.text.starts_with(keyword);
    }
    bool atEnd(const char* fault) { return at("end") || (handler.mend(fault) && at("end")); }
    bool next() {
        if (lines.next()) return true;
        refused("end of file before the closing line");
        return false;
    }
    void refused(const std::string& what) {
        handler.refused("automaton " + std::to_string(automaton) + ": " + what);
    }

    /// Whether a number could be read.
    bool number(Scanner& fields, unsigned int& n, const char* what) {
        const Found found = fields.number(n);
        if (found == Found::number) return true;
        if (found == Found::negative) refused(std::string(what) + " is negative");
        if (found == Found::tooLarge) refused(std::string(what) + " is out of range");
        missing = found == Found::nothing;
        return false;
    }
    bool requiredNumber(Scanner& fields, unsigned int& n, const char* what) {
        if (number(fields, n, what)) return true;
        if (missing) refused(std::string(what) + " is missing");
        return false;
    }

    bool location() {
        Scanner fields(lines.text);
        fields.skipWord();
        unsigned int l = 0;
        if (requiredNumber(fields, l, "location number")) handler.location(l, fields);
        if (!next()) return false;
        const char* const fault = "location error";
        if (atEnd(fault)) return next();
        handler.disorder(fault);
        return true;
    }

    bool transition() {
        Scanner fields(lines.text);
        fields.skipWord();
        Transition t{};
        if (requiredNumber(fields, t.source, "source location") &&
            requiredNumber(fields, t.target, "target location")) {
            const bool named = number(fields, t.action, "action number");
            handler.transition(t, named, fields);
        }
        if (!next()) return false;
        if (lines.text == "end") return next();
        const char* const fault = "transition error";
        if (!handler.mend(fault) || lines.text != "end") handler.disorder(fault);
        return !at("end") || next();
    }

    bool valuation() {
        handler.valuation();
        if (!next()) return false;
        while (!at("end")) {
            value();
            if (!next()) return false;
        }
        if (!next()) return false;
        const char* const fault = "end expected";
        if (!atEnd(fault)) {
            handler.disorder(fault);
            held = true; // it may be the title of the next automaton
        }
        handler.closed();
        return true;
    }

    void value() {
        Scanner fields(lines.text);
        unsigned int l = 0;
        if (!number(fields, l, "location number")) return handler.ignored();
        handler.value(l);
        std::optional<unsigned int> last;
        for (unsigned int p = 0; number(fields, p, "proposition number"); last = p) {
            handler.prop(l, p);
        }
        handler.behindValue(l, last, fields);
    }

    Lines& lines;
    Handler& handler;
    int automaton;
    bool held = false;    // whether the next section begins with the current line
    bool missing = false; // whether the number not read was none at all
};
