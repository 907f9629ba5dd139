#include "lint/networkcheck.h"

#include "lint/actionnotes.h"
#include "lint/keywords.h"
#include "lint/listed.h"
#include "model/names.h"
#include "model/networkgrammar.h"
#include "model/ntamodel.h"
#include "model/section.h"
#include "system/filetext.h"
#include "text/carriagereturns.h"
#include "text/readable.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

bool beginsWithDigit(std::string_view text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

/// Whether a line that begins like a declaration or an `end` is one from there to its end. Words
/// that begin like keywords are common in titles; lines that are complete are not.
bool complete(const KeywordLine& line) {
    const std::string_view after = trimmed(line.after);
    if (line.keyword == "end" || line.keyword == "valuation") return after.empty();
    return !line.keyword.empty() && beginsWithDigit(after);
}

/// Takes what the parser finds in a file, and goes on at the next automaton after a fault.
class NetworkChecker {
public:
    NetworkChecker(Lines& lines, Diagnostics& findings) : lines(lines), findings(findings) {}

    void heading() {
        if (lines.text.starts_with(byteOrderMark)) {
            warn("a byte order mark before the first line, which is the heading, whatever it is");
        }
        checkTitle("the heading");
    }
    void title(int number) {
        automaton = number;
        name = std::string(trimmed(lines.text));
        titleLine = lines.number;
        section = Section();
        locationLines.clear();
        valueLines.clear();
        transitions.clear();
        locationNames.clear();
        checkTitle("the title of automaton " + std::to_string(automaton));
    }
    void body() {}
    void location(uint l, const Scanner& after) {
        checkKeyword("location");
        section.addLocation(l);
        locationLines.emplace_back(l, lines.number);
        checkName(after);
        setName(locationNames, l, "location ", after);
    }
    void transition(const Transition& t, bool named, const Scanner& after) {
        checkKeyword("transition");
        section.addTransition(t, lines.number);
        transitions.emplace_back(t, lines.number);
        checkName(after);
        if (named) {
            setName(actionNames, t.action, "action ", after);
        } else if (!after.rest().empty()) {
            warn(inQuotes(after.rest()) + " stands where an action number could, the action is 0");
        }
    }
    void valuation() {
        const std::string_view after = trimmed(std::string_view(lines.text).substr(9));
        if (beginsWithDigit(after)) {
            warn(inQuotes(after) + " after \"valuation\" is not read");
        }
    }
    void value(uint l) {
        section.addValue(l, lines.number);
        valueLines.emplace_back(l, lines.number);
    }
    void prop(uint l, uint p) {
        section.addProp(l, p);
        carried.insert(p);
    }
    void afterValue(uint l, const std::optional<uint>& p, const Scanner& after) {
        checkName(after);
        if (p) {
            setName(propNames, *p, "proposition ", after);
        } else if (!after.rest().empty()) {
            warn(inQuotes(after.rest()) +
                 " stands where a proposition number could, the line gives location " +
                 std::to_string(l) + " none");
        }
    }
    void ignored() {
        const std::string_view text = trimmed(lines.text);
        if (text.empty()) return;
        if (text.front() == '#') return warn("a comment begins in the first column");
        const KeywordLine line = keywordLine(lines.text);
        const bool keyword = line.slip.empty() && !line.keyword.empty();
        warn("a line of the valuation that begins with no number is not read" +
             (keyword ? ": declarations stand before \"valuation\"" : hint(line)));
    }
    void closed();
    void end() {
        closingLine = lines.number;
        const std::string closing = lines.text;
        if (!lines.next()) return;
        if (trimmed(closing) != "end") {
            findings.warn(closingLine, inQuotes(closing) +
                                           " closes the network, like all lines that "
                                           "begin with \"end\" and stand where a title can");
        }
        warn("text after the closing line of the network, line " + std::to_string(closingLine) +
             ", is not read");
    }

    bool refused(const NetworkFault& fault) {
        findings.error(fault.line, text(fault) + cause(fault.kind));
        return nextAutomaton(fault.kind);
    }

    /// The last word, at the end of the file. text: what it holds.
    CheckedNetwork finished(std::istream& text, const std::string& file);

private:
    struct Name {
        std::string text;
        long line;
    };

    void warn(const std::string& text) { findings.warn(lines.number, text); }
    [[nodiscard]] static std::string hint(const KeywordLine& line) {
        return line.slip.empty() ? "" : ": " + line.slip;
    }
    [[nodiscard]] std::string automatonText() const {
        return "automaton " + numbered(static_cast<uint>(automaton), name);
    }

    [[nodiscard]] std::string locationsText(const std::vector<uint>& locations) const;
    void checkTitle(const std::string& what);
    void checkKeyword(std::string_view keyword) {
        if (beginsWithDigit(std::string_view(lines.text).substr(keyword.size()))) {
            warn("the number that sticks to " + inQuotes(keyword) + " is not read");
        }
    }
    /// A name that begins where the number before it ends was meant to be something else.
    void checkName(const Scanner& after) {
        const std::string_view text = after.rest();
        if (text.empty() || isBlank(*(text.data() - 1))) return;
        warn(inQuotes(text) + " sticks to the number before it, numbers are separated by blanks");
    }
    template <class Key>
    void setName(std::map<Key, Name>& names, Key key, const char* what, const Scanner& after) {
        const std::string_view text = after.rest();
        if (text.empty()) return;
        const Name& given =
            names.try_emplace(key, Name{std::string(text), lines.number}).first->second;
        if (given.text == text) return;
        warn(what + std::to_string(key) + " is named " + inQuotes(text) + " here and " +
             inQuotes(given.text) + " in line " + std::to_string(given.line) +
             ", the first name counts");
    }
    [[nodiscard]] bool nothingDeclared() const {
        return locationLines.empty() && transitions.empty();
    }
    /// What may have led to a fault in the current line, as the end of its text.
    [[nodiscard]] std::string cause(NetworkFault::Kind kind) const;
    /// Goes to the next title or closing line, false if there is none: after two `end`s in a row,
    /// unless a declaration follows, before which one of them was too many.
    bool nextAutomaton(NetworkFault::Kind kind);
    void checkUndeclared(const NetworkFault& fault);
    [[nodiscard]] long declarationOf(uint l) const {
        return std::ranges::find(locationLines, l, &std::pair<uint, long>::first)->second;
    }
    void checkReach(std::map<uint, std::vector<uint>> sources);

    Lines& lines;
    Diagnostics& findings;
    long closingLine = 0;
    long bits = 0; // of a state
    std::set<uint> carried;
    std::map<uint, Name> actionNames;
    std::map<uint, Name> propNames;
    std::map<uint, bool> possibleAtStart; // each action
    std::vector<ActionUse> uses;
    std::set<uint> neverTaken; // actions that some automaton never takes

    // The automaton that is read.
    int automaton = 0;
    std::string name;
    long titleLine = 0;
    Section section;
    std::vector<std::pair<uint, long>> locationLines;
    std::vector<std::pair<uint, long>> valueLines;
    std::vector<std::pair<Transition, long>> transitions;
    std::map<uint, Name> locationNames;
};

std::string NetworkChecker::locationsText(const std::vector<uint>& locations) const {
    return listed("location", "locations", locations, [&](uint l) {
        const auto named = locationNames.find(l);
        return named == locationNames.end() ? "" : named->second.text;
    });
}

void NetworkChecker::checkTitle(const std::string& what) {
    const std::string_view text = trimmed(lines.text);
    if (text.empty()) return warn(what + " is a line of blanks, which is no empty line");
    if (text.front() == '#') {
        return warn(what + " is " + inQuotes(text) + ": a comment begins in the first column");
    }
    const KeywordLine line = keywordLine(lines.text);
    if (!complete(line)) return;
    warn(what + " is " + inQuotes(text) +
         (line.slip.empty() ? ", is there a line missing?" : hint(line)));
}

std::string NetworkChecker::cause(NetworkFault::Kind kind) const {
    using Kind = NetworkFault::Kind;
    const KeywordLine line = keywordLine(lines.text);
    if (kind == Kind::missing && beginsWithDigit(line.after)) {
        return ", a blank is due before the first one";
    }
    if (!anotherLineIsDue(kind)) return "";

    const std::string_view text = trimmed(lines.text);
    const bool end = line.keyword == "end";
    if (text.empty()) return ": a line of blanks is no empty line";
    if (text.front() == '#') return ": a comment begins in the first column";
    if (!line.slip.empty() && (end || kind == Kind::noDeclaration)) return ": " + line.slip;
    if (kind == Kind::openLocation) return ": an \"end\" is due after a location";
    if (kind == Kind::openAutomaton) {
        return ": a second \"end\" is due after the valuation, it closes the automaton";
    }
    if (kind == Kind::openTransition) {
        if (!end) return ": an \"end\" is due after a transition";
        const std::string_view after = trimmed(line.after);
        return ": the \"end\" after a transition stands alone, with no " +
               (after.empty() ? "blank" : inQuotes(after)) + " after it";
    }
    if (nothingDeclared()) {
        return ": " + inQuotes(text) + " stands after line " + std::to_string(titleLine) +
               ", which was taken for the title";
    }
    if (end) return ": this \"end\" is one too many, or the valuation is missing";
    return ": " + inQuotes(text) + R"( begins with none of "location", "transition", "valuation")";
}

bool NetworkChecker::nextAutomaton(NetworkFault::Kind kind) {
    using Kind = NetworkFault::Kind;
    if (kind == Kind::openAutomaton) {
        // The line is an `end` with a slip, or else it may be the next title.
        return keywordLine(lines.text).keyword != "end" || lines.next();
    }
    const bool behindEnd = kind == Kind::noDeclaration && !nothingDeclared();
    int ends = behindEnd ? 1 : 0; // in a row, with those that have a slip
    int closings = ends;          // without
    do {
        const KeywordLine line = keywordLine(lines.text);
        const bool closing = lines.text.starts_with("end");
        const bool title = !closing && !complete(line);
        if ((title && ends >= 2) || (closing && closings >= 2)) return true;
        ends = line.keyword == "end" && !title ? ends + 1 : 0;
        closings = closing ? closings + 1 : 0;
    } while (lines.next());
    return false;
}

void NetworkChecker::closed() {
    section.sort();
    if (const auto fault = section.fault(automaton, lines.number)) return checkUndeclared(*fault);
    for (std::size_t power = 1; power < section.locations.size(); power *= 2) ++bits;
    std::map<uint, std::vector<uint>> sources; // of each action, ascending
    for (const Transition& t : section.transitions) sources[t.action].push_back(t.source);
    for (const auto& [action, from] : sources) {
        bool& possible = possibleAtStart.try_emplace(action, true).first->second;
        possible = possible && from.front() == 0;
    }
    std::set<uint> used;
    for (const auto& [t, line] : transitions) {
        if (used.insert(t.action).second) {
            uses.push_back({t.action, static_cast<uint>(automaton), line});
        }
    }
    checkReach(std::move(sources));
}

/// Tells the fault of the automaton as a whole, and each line that names an undeclared location.
void NetworkChecker::checkUndeclared(const NetworkFault& fault) {
    findings.error(fault.line, text(fault)); // first, so that it is kept whatever is alike
    if (section.locations.empty()) return;
    const auto check = [&](uint l, long line) {
        const auto& declared = section.locations;
        const bool told = line == fault.line && l == fault.location;
        if (told || std::binary_search(declared.begin(), declared.end(), l)) return;
        NetworkFault named = fault;
        named.location = l;
        findings.error(line, text(named));
    };
    for (const auto& [t, line] : transitions) {
        check(t.source, line);
        if (t.target != t.source) check(t.target, line);
    }
    for (const auto& [l, line] : valueLines) check(l, line);
}

/// Graph search from location 0.
void NetworkChecker::checkReach(std::map<uint, std::vector<uint>> sources) {
    std::vector<std::pair<uint, uint>> moves;
    for (const Transition& t : section.transitions) moves.emplace_back(t.source, t.target);
    std::sort(moves.begin(), moves.end());
    std::vector<bool> reached(section.locations.size(), false);
    reached[0] = true;
    for (std::vector<uint> open = {0}; !open.empty();) {
        const uint l = open.back();
        open.pop_back();
        auto move = std::lower_bound(moves.begin(), moves.end(), std::pair(l, 0U));
        for (; move != moves.end() && move->first == l; ++move) {
            if (!reached[move->second]) open.push_back(move->second);
            reached[move->second] = true;
        }
    }

    std::vector<uint> unreached;
    std::vector<uint> ends;
    for (const uint l : section.locations) {
        const auto move = std::lower_bound(moves.begin(), moves.end(), std::pair(l, 0U));
        if (!reached[l]) {
            unreached.push_back(l);
        } else if (move == moves.end() || move->first != l) {
            ends.push_back(l);
        }
    }
    if (!ends.empty() && !moves.empty()) {
        findings.note("dead-end", declarationOf(ends.front()),
                      automatonText() + ": no transition leaves " + locationsText(ends));
    }
    if (unreached.empty()) return;
    findings.note("unreachable", declarationOf(unreached.front()),
                  automatonText() + ": " + locationsText(unreached) +
                      " cannot be reached from location 0");

    std::erase_if(sources, [&](const auto& action) {
        return std::any_of(action.second.begin(), action.second.end(),
                           [&](uint l) { return reached[l]; });
    });
    for (const auto& [t, line] : transitions) {
        const auto action = sources.find(t.action);
        if (action == sources.end()) continue;
        std::vector<uint>& from = action->second;
        from.erase(std::unique(from.begin(), from.end()), from.end());
        findings.note("unreachable", line,
                      automatonText() + " can never take action " + std::to_string(t.action) +
                          ": it does so in " + locationsText(from) +
                          " alone, which cannot be reached");
        neverTaken.insert(t.action);
        sources.erase(action);
    }
}

CheckedNetwork NetworkChecker::finished(std::istream& text, const std::string& file) {
    const long needed = 2 * bits;
    if (!findings.refused() && needed > mostVariables) {
        findings.error(closingLine, "path needs " + std::to_string(needed) +
                                        " variables even if k is 1, the limit is " +
                                        std::to_string(mostVariables));
    }
    if (findings.refused()) return {false, std::move(carried)};
    const bool steps = std::any_of(possibleAtStart.begin(), possibleAtStart.end(),
                                   [](const auto& action) { return action.second; });
    if (!steps) {
        findings.warn(closingLine,
                      (possibleAtStart.empty() ? "no automaton has a transition"
                                               : "no action is possible at the start") +
                          std::string(", the network makes no step"));
    } else {
        NetTimedModel model;
        Names known;
        text.clear();
        text.seekg(0);
        readNamedNetwork(model, known, text, file);
        noteActions(model, known, std::move(uses), neverTaken, findings);
    }
    return {true, std::move(carried)};
}

} // namespace

CheckedNetwork checkNetwork(const std::string& file, Diagnostics& findings) {
    std::string text = fileText(file);
    checkCarriageReturns(text, findings);
    std::istringstream in(std::move(text));
    Lines lines(in);
    NetworkChecker checker(lines, findings);
    NetworkParser(lines, checker).network();
    return checker.finished(in, file);
}

} // namespace tervoxal
