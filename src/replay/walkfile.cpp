#include "replay/walkfile.h"

#include "system/filetext.h"
#include "text/fatal.h"
#include "text/readable.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

struct TakenStep {
    std::optional<uint> action;
    std::vector<Change> changes;
};

/// A place in a JSON text, of which only what is asked for is looked at.
class JsonReader {
public:
    JsonReader(std::string_view text, const std::string& name) : text(text), name(name) {}

    /// Calls member with each name, as it stands between the quotes; it reads the value.
    template <class Member>
    void object(const Member& member) {
        list('{', '}', [&] {
            const std::string_view key = string();
            expect(':');
            member(key);
        });
    }
    template <class Element>
    void array(const Element& element) {
        list('[', ']', element);
    }
    [[nodiscard]] uint number() {
        skipBlanks();
        uint n = 0;
        const char* const begin = text.data() + at;
        const auto parsed = std::from_chars(begin, text.data() + text.size(), n);
        if (parsed.ec != std::errc()) refuse("a number");
        at += static_cast<std::size_t>(parsed.ptr - begin);
        return n;
    }
    /// Goes after a value, whatever it is.
    void skip() {
        std::size_t open = 0;
        do {
            skipBlanks();
            const char c = next();
            if (c == '"') {
                (void)string();
            } else if (c == '{' || c == '[') {
                ++open;
                ++at;
            } else if (open > 0 && (c == '}' || c == ']')) {
                --open;
                ++at;
            } else if (open > 0 && (c == ',' || c == ':')) {
                ++at;
            } else {
                const std::size_t end = text.find_first_of(" \t\r\n,:[]{}\"", at);
                if (end == at) refuse("a value");
                at = std::min(end, text.size());
            }
        } while (open > 0);
    }
    void end() {
        skipBlanks();
        if (at < text.size()) refuse("the end");
    }

    [[noreturn]] void refuse(const std::string& due) const {
        const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<long>(at), '\n');
        error(name + ", line " + std::to_string(line) + ": " + due + " expected, not '" +
              excerpt(text.substr(at)) + "'");
    }

private:
    template <class Element>
    void list(char begin, char end, const Element& element) {
        expect(begin);
        if (take(end)) return;
        do {
            element();
        } while (take(','));
        expect(end);
    }
    std::string_view string() {
        expect('"');
        const std::size_t begin = at;
        while (next() != '"') at += text[at] == '\\' ? 2 : 1;
        return text.substr(begin, at++ - begin);
    }
    [[nodiscard]] char next() const {
        if (at >= text.size()) error(name + ": no walk; empty or cut off");
        return text[at];
    }
    bool take(char c) {
        skipBlanks();
        if (next() != c) return false;
        ++at;
        return true;
    }
    void expect(char c) {
        if (!take(c)) refuse({c});
    }
    void skipBlanks() { at = std::min(text.find_first_not_of(" \t\r\n", at), text.size()); }

    std::string_view text;
    const std::string& name;
    std::size_t at = 0;
};

TakenStep readStep(JsonReader& json) {
    TakenStep step;
    json.object([&](std::string_view member) {
        if (member == "action") {
            step.action = json.number();
        } else if (member == "changes") {
            json.array([&] {
                std::vector<uint> numbers;
                json.array([&] { numbers.push_back(json.number()); });
                if (numbers.size() != 3) json.refuse("an automaton, its source and its target");
                step.changes.push_back({numbers[0], numbers[1], numbers[2]});
            });
        } else {
            json.skip();
        }
    });
    return step;
}

std::vector<TakenStep> readSteps(std::istream& in, const std::string& name) {
    const std::string text = wholeText(in);
    JsonReader json(text, name);
    std::optional<std::vector<TakenStep>> steps;
    json.object([&](std::string_view member) {
        if (member != "walk") return json.skip();
        steps.emplace();
        json.array([&] { steps->push_back(readStep(json)); });
    });
    json.end();
    if (!steps) error(name + ": no walk; the object has no member \"walk\"");
    return std::move(*steps);
}

} // namespace

Path readWalk(std::istream& in, const std::string& name, const Transitions& transitions) {
    Path path{0, initialState(transitions.model), {}};
    State state = path.first;
    State before = state;
    for (TakenStep& step : readSteps(in, name)) {
        const std::string where = name + ", step " + std::to_string(++path.k) + ": ";
        if (!step.action) error(where + "no action");
        std::sort(step.changes.begin(), step.changes.end(),
                  [](const Change& x, const Change& y) { return x.automaton < y.automaton; });
        for (const Change& change : step.changes) {
            const auto& [a, source, target] = change;
            if (!transitions.model.verts.contains({a, source}) || before[a] != source ||
                state[a] != source) { // or it is told twice
                error(where + "automaton " + std::to_string(a) + " is not in location " +
                      std::to_string(source));
            }
            state[a] = target;
            if (source != target) path.changes.push_back({path.k, change});
        }
        std::erase_if(step.changes, [](const Change& c) { return c.source == c.target; });
        const std::vector<uint> possible = transitions.actions(before, state, step.changes);
        if (!std::ranges::binary_search(possible, *step.action)) {
            error(where + "action " + std::to_string(*step.action) +
                  " does not make these changes");
        }
        for (const Change& change : step.changes) before[change.automaton] = change.target;
    }
    return path;
}

} // namespace tervoxal
