#include "networkcheck.h"

#include "carriagereturns.h"
#include "filetext.h"
#include "keywords.h"
#include "ntamodel.h"
#include "readable.h"
#include "section.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

bool beginsWithDigit(std::string_view text) {
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

/// Whether a line that begins like a declaration or an `end` is one from there to its end. Words
/// that begin like keywords are common in titles; lines that are complete are not.
bool complete(const KeywordLine& line) {
    const std::string_view behind = trimmed(line.behind);
    if (line.keyword == "end" || line.keyword == "valuation") return behind.empty();
    return !line.keyword.empty() && beginsWithDigit(behind);
}

/// Takes what the parser finds in a file, and goes on behind faults.
class NetworkChecker {
public:
    /// lines are those of in.
    NetworkChecker(std::istringstream& in, Lines& lines, Findings& findings)
        : in(in), lines(lines), findings(findings) {}

    void heading() {
        if (lines.text.starts_with(byteOrderMark)) {
            warn("a byte order mark ahead of the first line, which is the heading, whatever it is");
        }
        checkTitle("the heading");
    }
    void title() {
        titleLine = lines.number;
        nothingYet = true;
        section = Section();
        locationLines.clear();
        valueLines.clear();
        transitions.clear();
        locationNames.clear();
        locationsLost = false;
        transitionsLost = false;
        ++automaton;
        name = std::string(trimmed(lines.text));
        checkTitle("the title of automaton " + std::to_string(automaton));
    }
    void body() {}
    void location(uint l, const Scanner& behind) {
        checkKeyword("location");
        nothingYet = false;
        section.addLocation(l);
        locationLines.emplace_back(l, lines.number);
        checkName(behind);
        setName(locationNames, l, "location ", behind);
    }
    void transition(const Transition& t, bool named, const Scanner& behind) {
        checkKeyword("transition");
        nothingYet = false;
        section.addTransition(t, lines.number);
        transitions.emplace_back(t, lines.number);
        if (refusedLine == lines.number) return;
        checkName(behind);
        if (named) {
            setName(actionNames, t.action, "action ", behind);
        } else if (!behind.rest().empty()) {
            warn(inQuotes(behind.rest()) + " stands where an action number could, the action is 0");
        }
    }
    void valuation() {
        const std::string_view behind = trimmed(std::string_view(lines.text).substr(9));
        if (beginsWithDigit(behind)) {
            warn(inQuotes(behind) + " behind \"valuation\" is not read");
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
    void behindValue(uint l, const std::optional<uint>& p, const Scanner& behind) {
        if (refusedLine == lines.number) return;
        checkName(behind);
        if (p) {
            setName(propNames, *p, "proposition ", behind);
        } else if (!behind.rest().empty()) {
            warn(inQuotes(behind.rest()) +
                 " stands where a proposition number could, the line gives location " +
                 std::to_string(l) + " none");
        }
    }
    void ignored() {
        const std::string_view text = trimmed(lines.text);
        if (text.empty() || refusedLine == lines.number) return;
        if (text.front() == '#') return warn("a comment begins in the first column");
        const KeywordLine line = keywordLine(lines.text);
        const bool keyword = line.slip.empty() && !line.keyword.empty();
        warn("a line of the valuation that begins with no number is not read" +
             (keyword ? ": declarations stand ahead of \"valuation\"" : hint(line)));
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
        warn("text behind the closing line of the network, line " + std::to_string(closingLine) +
             ", is not read");
    }

    void refused(const std::string& message) {
        const std::size_t keyword = keywordEnd();
        const bool sticks = keyword > 0 && message.ends_with("missing") &&
                            beginsWithDigit(std::string_view(lines.text).substr(keyword));
        findings.error(std::max(lines.number, 1L),
                       message + (sticks ? ", a blank is due ahead of the first one" : ""));
        refusedLine = lines.number;
        locationsLost = locationsLost || lines.text.starts_with("location");
        transitionsLost = transitionsLost || lines.text.starts_with("transition");
    }
    bool mend(std::string_view message);
    void disorder(std::string_view message);

    /// The last word, at the end of the file.
    CheckedNetwork finished();

private:
    struct Name {
        std::string text;
        long line;
        bool contested; // whether another one was given as well
    };

    void warn(const std::string& text) { findings.warn(lines.number, text); }
    [[nodiscard]] static std::string hint(const KeywordLine& line) {
        return line.slip.empty() ? "" : ": " + line.slip;
    }
    /// Where the keyword of the line ends, 0 if there is none.
    [[nodiscard]] std::size_t keywordEnd() const {
        const KeywordLine line = keywordLine(lines.text);
        return line.slip.empty() ? line.keyword.size() : 0;
    }
    [[nodiscard]] std::string automatonText() const {
        return "automaton " + std::to_string(automaton) +
               (name.empty() ? "" : ' ' + inQuotes(name));
    }

    /// "location 3", "locations 3, 4 \"idle\" and 5", "locations 3, 4, 5, 6, 7 and 20 others".
    [[nodiscard]] std::string listed(const std::vector<uint>& locations) const;
    void checkTitle(const std::string& what);
    void checkKeyword(std::string_view keyword) {
        if (beginsWithDigit(std::string_view(lines.text).substr(keyword.size()))) {
            warn("the number that sticks to " + inQuotes(keyword) + " is not read");
        }
    }
    /// A name that begins where the number ahead of it ends was meant to be something else.
    void checkName(const Scanner& behind) {
        const std::string_view text = behind.rest();
        if (text.empty() || isBlank(*(text.data() - 1))) return;
        warn(inQuotes(text) + " sticks to the number ahead of it, numbers are separated by blanks");
    }
    template <class Key>
    void setName(std::map<Key, Name>& names, Key key, const char* what, const Scanner& behind) {
        const std::string_view text = behind.rest();
        if (text.empty()) return;
        const auto [place, first] = names.try_emplace(key, Name{{}, lines.number, false});
        Name& given = place->second;
        if (first) {
            given.text = text;
        } else if (given.text != text && !given.contested) {
            given.contested = true;
            warn(what + std::to_string(key) + " is named " + inQuotes(text) + " here and " +
                 inQuotes(given.text) + " in line " + std::to_string(given.line) +
                 ", the first name counts");
        }
    }
    /// The next significant line is one ahead of a valuation, or its beginning.
    bool declarationIsNext();
    /// Goes to the next line behind those that have nothing to say, false if there is none such.
    bool skipBlankLines(const std::string& fault);
    bool mendBody(const std::string& fault);
    bool mendBareEnd(const std::string& fault);
    void tell(const std::vector<Fault>& faults);
    void checkReach();

    std::istringstream& in;
    Lines& lines;
    Findings& findings;
    uint automaton = 0;
    long closingLine = 0;
    long refusedLine = 0;
    long bits = 0; // of a state
    std::set<uint> carried;
    std::map<uint, Name> actionNames;
    std::map<uint, Name> propNames;
    long carriageEnds = 0;
    long carriageLine = 0;

    // The automaton that is read.
    std::string name;
    long titleLine = 0;
    bool nothingYet = true; // whether it has no declaration so far
    Section section;
    std::vector<std::pair<uint, long>> locationLines;
    std::vector<std::pair<uint, long>> valueLines;
    std::vector<std::pair<Transition, long>> transitions;
    std::map<uint, Name> locationNames;
    bool locationsLost = false;
    bool transitionsLost = false;
};

std::string NetworkChecker::listed(const std::vector<uint>& locations) const {
    constexpr std::size_t most = 5;
    const std::size_t told = std::min(most, locations.size());
    std::string text = locations.size() == 1 ? "location " : "locations ";
    for (std::size_t i = 0; i < told; ++i) {
        const bool last = i + 1 == locations.size();
        text += (i == 0 ? "" : last ? " and " : ", ") + std::to_string(locations[i]);
        const auto named = locationNames.find(locations[i]);
        if (named != locationNames.end()) text += ' ' + inQuotes(named->second.text);
    }
    if (told < locations.size()) {
        text += " and " + std::to_string(locations.size() - told) + " others";
    }
    return text;
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

bool NetworkChecker::declarationIsNext() {
    const auto here = in.tellg();
    if (here == std::istringstream::pos_type(-1)) return false;
    Lines ahead(in);
    const bool more = ahead.next();
    in.clear();
    in.seekg(here);
    if (!more) return false;
    const KeywordLine line = keywordLine(ahead.text);
    return line.keyword != "end" && line.slip.empty() && complete(line);
}

bool NetworkChecker::skipBlankLines(const std::string& fault) {
    bool skipped = false;
    while (!lines.text.empty()) {
        const std::string_view text = trimmed(lines.text);
        if (!text.empty() && text.front() != '#') break;
        findings.error(lines.number,
                       fault + (text.empty() ? ": a line of blanks is no empty line"
                                             : ": a comment begins in the first column"));
        if (!lines.next()) break;
        skipped = true;
    }
    return skipped;
}

bool NetworkChecker::mend(std::string_view message) {
    const std::string fault(message);
    const bool skipped = skipBlankLines(fault);
    if (lines.text.empty()) return false;
    const bool body = fault == "description error";
    if (body && mendBody(fault)) return true;
    if (fault == "transition error" && mendBareEnd(fault)) return true;
    const KeywordLine line = keywordLine(lines.text);
    if (line.slip.empty() || (line.keyword != "end" && !body)) return skipped;
    findings.error(lines.number, fault + hint(line));
    std::string mended(line.keyword);
    mended += line.behind;
    lines.text = std::move(mended);
    return true;
}

/// A line that has to go: the true title behind one that was none, an `end` too many.
bool NetworkChecker::mendBody(const std::string& fault) {
    const KeywordLine line = keywordLine(lines.text);
    const bool end = line.keyword == "end" && line.slip.empty();
    const bool title = nothingYet && line.keyword.empty();
    if (!title && !(end && declarationIsNext())) return false;
    std::string why = inQuotes(trimmed(lines.text));
    if (nothingYet) {
        why +=
            " stands behind line " + std::to_string(titleLine) + ", which was taken for the title";
        locationsLost = true;
    } else {
        why += " is one too many";
    }
    findings.error(lines.number, fault + ": " + why);
    if (title) name = std::string(trimmed(lines.text));
    return lines.next();
}

/// The `end` behind a transition has to stand alone.
bool NetworkChecker::mendBareEnd(const std::string& fault) {
    if (!lines.text.starts_with("end") || lines.text == "end") return false;
    const std::string_view behind = std::string_view(lines.text).substr(3);
    if (behind == "\r") {
        if (++carriageEnds == 1) carriageLine = lines.number;
    } else {
        const std::string_view text = trimmed(behind);
        findings.error(lines.number,
                       fault + ": the \"end\" behind a transition stands alone, with no " +
                           (text.empty() ? "blank" : inQuotes(text)) + " behind it");
    }
    lines.text = "end";
    return true;
}

void NetworkChecker::disorder(std::string_view message) {
    if (lines.text.empty()) return; // the end of the file, which has an error of its own
    std::string why;
    if (message == "end expected") {
        why = "a second \"end\" is due behind the valuation, it closes the automaton";
    } else if (message != "description error") {
        why = "an \"end\" is due behind a " + std::string(message.substr(0, message.find(' ')));
    } else if (!lines.text.starts_with("end")) {
        why = inQuotes(trimmed(lines.text)) +
              R"( begins with none of "location", "transition", "valuation")";
        locationsLost = true;
    } else if (nothingYet) {
        why = "nothing stands behind line " + std::to_string(titleLine) +
              ", which was taken for a title";
        locationsLost = true;
    } else {
        why = "the automaton has no valuation";
    }
    findings.error(lines.number, std::string(message) + ": " + why);
}

void NetworkChecker::closed() {
    section.sort();
    const std::vector<Fault> faults = section.faults(lines.number);
    if (!locationsLost) tell(faults);
    if (!faults.empty()) return;
    for (std::size_t power = 1; power < section.locations.size(); power *= 2) ++bits;
    if (!locationsLost && !transitionsLost) checkReach();
}

/// Tells the faults of a section, and of undeclared locations each line that names one.
void NetworkChecker::tell(const std::vector<Fault>& faults) {
    std::set<std::pair<long, std::string>> told;
    const auto tellOnce = [&](const Fault& fault) {
        if (!told.emplace(fault.line, fault.text).second) return;
        findings.error(fault.line, "automaton " + std::to_string(automaton) + ": " + fault.text);
    };
    const auto named = [&](uint l, long line) {
        const auto& declared = section.locations;
        if (!std::binary_search(declared.begin(), declared.end(), l)) {
            tellOnce(undeclared(l, line));
        }
    };
    for (const Fault& fault : faults) tellOnce(fault);
    if (faults.empty() || section.locations.empty()) return;
    for (const auto& [t, line] : transitions) {
        named(t.source, line);
        named(t.target, line);
    }
    for (const auto& [l, line] : valueLines) named(l, line);
}

/// Graph search from location 0.
void NetworkChecker::checkReach() {
    const std::size_t count = section.locations.size();
    std::vector<std::size_t> first(count + 1, 0); // of the targets of a location
    for (const auto& [t, line] : transitions) ++first[t.source + 1];
    for (std::size_t l = 0; l < count; ++l) first[l + 1] += first[l];
    std::vector<uint> targets(transitions.size());
    std::vector<std::size_t> next = first;
    for (const auto& [t, line] : transitions) targets[next[t.source]++] = t.target;

    std::vector<bool> reached(count, false);
    reached[0] = true;
    for (std::vector<uint> open = {0}; !open.empty();) {
        const uint l = open.back();
        open.pop_back();
        for (std::size_t i = first[l]; i < first[l + 1]; ++i) {
            if (reached[targets[i]]) continue;
            reached[targets[i]] = true;
            open.push_back(targets[i]);
        }
    }

    std::vector<uint> unreached;
    for (uint l = 0; l < count; ++l) {
        if (!reached[l]) unreached.push_back(l);
    }
    if (unreached.empty()) return;
    const auto declared =
        std::find_if(locationLines.begin(), locationLines.end(),
                     [&](const auto& location) { return location.first == unreached.front(); });
    findings.warn(declared->second, automatonText() + ": " + listed(unreached) +
                                        " cannot be reached from location 0");

    // Transitions are sorted by action, so those of one action have their sources in a row.
    std::map<uint, long> dead; // actions and the lines of their first transitions
    std::map<uint, std::vector<uint>> sources;
    const std::vector<Transition>& sorted = section.transitions;
    for (std::size_t begin = 0, end = 0; begin < sorted.size(); begin = end) {
        std::vector<uint> from;
        bool taken = false;
        for (; end < sorted.size() && sorted[end].action == sorted[begin].action; ++end) {
            taken = taken || reached[sorted[end].source];
            if (!taken && (from.empty() || from.back() != sorted[end].source)) {
                from.push_back(sorted[end].source);
            }
        }
        if (taken) continue;
        dead[sorted[begin].action] = 0;
        sources[sorted[begin].action] = std::move(from);
    }
    for (const auto& [t, line] : transitions) {
        const auto action = dead.find(t.action);
        if (action == dead.end() || action->second != 0) continue;
        action->second = line;
        findings.warn(line, automatonText() + " can never take action " + std::to_string(t.action) +
                                ": it does so in " + listed(sources[t.action]) +
                                " alone, which cannot be reached");
    }
}

CheckedNetwork NetworkChecker::finished() {
    if (carriageEnds > 0) {
        findings.error(carriageLine,
                       "transition error: a carriage return stands behind \"end\", in " +
                           std::to_string(carriageEnds) + " lines, this one first");
    }
    const long needed = 2 * bits;
    if (!findings.refused() && needed >= BoolForm::maxVariable) {
        findings.error(closingLine, "path needs " + std::to_string(needed) +
                                        " variables even if k is 1, the limit is " +
                                        std::to_string(BoolForm::maxVariable - 1));
    }
    return {!findings.refused(), std::move(carried)};
}

} // namespace

CheckedNetwork checkNetwork(const std::string& file, Findings& findings) {
    std::string text = fileText(file);
    checkCarriageReturns(text, findings);
    std::istringstream in(std::move(text));
    Lines lines(in);
    NetworkChecker checker(in, lines, findings);
    NetworkParser(lines, checker).network();
    return checker.finished();
}
