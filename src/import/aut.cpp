#include "import/aut.h"

#include "model/networkwriter.h"
#include "text/escapes.h"
#include "text/fatal.h"
#include "text/lines.h"
#include "text/message.h"
#include "text/scanner.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace tervoxal {

namespace {

constexpr unsigned long largest = std::numeric_limits<int>::max();

/// A decimal number, alone but for blanks around it.
std::optional<unsigned long> numberIn(std::string_view text) {
    unsigned long n = 0;
    if (wholeNumber(trimmed(text), n) != Found::number) return std::nullopt;
    return n;
}

/// The three fields between the brackets of a line: the first ends at the first comma, the last
/// begins after the last one.
struct Fields {
    std::string_view first;
    std::string_view middle;
    std::string_view last;
};

std::optional<Fields> fieldsOf(std::string_view text) {
    if (!text.starts_with('(') || !text.ends_with(')')) return std::nullopt;
    text = text.substr(1, text.size() - 2);
    const std::size_t first = text.find(',');
    const std::size_t last = text.rfind(',');
    if (first == last) return std::nullopt; // one comma or none
    return Fields{text.substr(0, first), trimmed(text.substr(first + 1, last - first - 1)),
                  text.substr(last + 1)};
}

/// The text of a label. None where it is empty without quotes, or lacks its closing quote.
std::optional<std::string> labelOf(std::string_view text) {
    if (text.empty()) return std::nullopt;
    if (text.front() != '"') return std::string(text);
    if (text.size() < 2 || text.back() != '"') return std::nullopt;
    return unescaped(text.substr(1, text.size() - 2));
}

/// The numbers of actions, shared by all systems that are read.
class Actions {
public:
    explicit Actions(std::vector<std::string>& labels) : labels(&labels) {}

    /// From here on internal labels belong to another system.
    void nextSystem() { internal.reset(); }

    uint numberOf(const std::string& label) {
        if (label == "i" || label == "tau") {
            if (!internal) internal = add(label);
            return *internal;
        }
        const auto known = numbers.lower_bound(label);
        if (known != numbers.end() && known->first == label) return known->second;
        return numbers.emplace_hint(known, label, add(label))->second;
    }

private:
    uint add(const std::string& label) {
        labels->push_back(label);
        return static_cast<uint>(labels->size() - 1);
    }

    std::vector<std::string>* labels;
    std::map<std::string, uint> numbers; // of labels that are not internal
    std::optional<uint> internal;
};

/// One file, line by line.
class Reader {
public:
    Reader(const std::string& file, Actions& actions) : file(&file), actions(&actions) {}

    LabelledSystem read() {
        std::ifstream in = openInput(*file);
        LabelledSystem system{};
        bool header = false;
        for (std::string text; std::getline(in, text); ++line) {
            const std::string_view content = trimmed(text);
            if (content.empty()) continue;
            if (header) {
                addTransition(system, content);
            } else {
                readHeader(system, content);
                header = true;
            }
        }
        refuseUnread(in, *file);
        if (!header) refuse("end of file before the header");
        if (system.transitions.size() < transitions) {
            refuse("end of file after " + std::to_string(system.transitions.size()) + " of " +
                   std::to_string(transitions) + " transitions");
        }
        return system;
    }

private:
    void readHeader(LabelledSystem& system, std::string_view content) {
        constexpr std::string_view keyword = "des";
        const bool begins = content.starts_with(keyword);
        const auto fields = fieldsOf(trimmed(content.substr(begins ? keyword.size() : 0)));
        const auto initial = fields ? numberIn(fields->first) : std::nullopt;
        const auto count = fields ? numberIn(fields->middle) : std::nullopt;
        const auto states = fields ? numberIn(fields->last) : std::nullopt;
        if (!begins || !initial || !count || !states) {
            refuse("des (INITIAL, TRANSITIONS, STATES) expected");
        }
        if (*states == 0) refuse("the system has no state");
        if (*states > largest) refuse("more than " + std::to_string(largest) + " states");
        system.states = static_cast<uint>(*states);
        system.initial = stateIn(system, fields->first);
        transitions = *count;
    }

    void addTransition(LabelledSystem& system, std::string_view content) {
        const auto fields = fieldsOf(content);
        const auto label = fields ? labelOf(fields->middle) : std::nullopt;
        if (!label) refuse("(FROM, LABEL, TO) expected");
        if (system.transitions.size() == transitions) {
            refuse("more transitions than the " + std::to_string(transitions) + " of the header");
        }
        const uint source = stateIn(system, fields->first);
        const uint target = stateIn(system, fields->last);
        system.transitions.push_back({source, target, actions->numberOf(*label)});
    }

    uint stateIn(const LabelledSystem& system, std::string_view text) const {
        const auto state = numberIn(text);
        if (!state || *state >= system.states) {
            refuse(shown(text) + " is no state from 0 to " + std::to_string(system.states - 1));
        }
        return static_cast<uint>(*state);
    }

    [[noreturn]] void refuse(const std::string& what) const { error(message(*file, line, what)); }

    const std::string* file;
    Actions* actions;
    unsigned long line = 1;
    unsigned long transitions = 0; // that the header tells
};

/// Gives each system a title of its own.
class Titles {
public:
    std::string titleOf(const std::string& file) {
        const std::string stem = std::filesystem::path(file).stem().string();
        std::string title = stem;
        uint& count = counts[stem];
        while (!taken.insert(title).second) title = stem + "_" + std::to_string(++count + 1);
        return title;
    }

private:
    std::set<std::string> taken;
    std::map<std::string, uint> counts; // of the numbers tried for a file's name
};

} // namespace

LabelledSystems readAut(const std::vector<std::string>& files) {
    LabelledSystems all;
    Actions actions(all.labels);
    Titles titles;
    unsigned long states = 0;
    for (const std::string& file : files) {
        actions.nextSystem();
        all.systems.push_back(Reader(file, actions).read());
        all.systems.back().title = titles.titleOf(file);
        states += all.systems.back().states;
        if (states > largest) {
            error(file + ": more than " + std::to_string(largest) + " states with those before");
        }
    }
    return all;
}

void writeNetwork(const LabelledSystems& systems, std::ostream& out) {
    std::string heading;
    for (const LabelledSystem& system : systems.systems) {
        heading += (heading.empty() ? "" : " || ") + system.title;
    }
    NetworkWriter writer(out, heading);
    uint firstProp = 1;
    for (const LabelledSystem& system : systems.systems) {
        // Its own inverse: states to locations and back.
        const auto swapped = [&system](uint s) {
            return s == system.initial ? 0 : s == 0 ? system.initial : s;
        };
        writer.automaton(system.title);
        for (uint l = 0; l < system.states; ++l) {
            const uint s = swapped(l);
            writer.location(l, s == l ? "" : std::to_string(s));
        }
        for (const auto& [source, target, action] : system.transitions) {
            writer.transition(swapped(source), swapped(target), action, systems.labels[action]);
        }
        writer.valuation();
        for (uint l = 0; l < system.states; ++l) {
            const uint s = swapped(l);
            writer.value(l, firstProp + s, system.title + "." + std::to_string(s));
        }
        writer.endAutomaton();
        firstProp += system.states;
    }
    writer.end();
}

} // namespace tervoxal
