// Reports about random paths with names of any bytes: valid in their formats, and with the names.

#include "report/report.h"

#include "plain.h"
#include "report/picture.h"

#include <clocale>
#include <cwchar>

namespace tervoxal {

namespace {

/// Bytes as they stand in a name, and as UTF-8.
const std::array<std::pair<std::string, std::string>, 18> pieces = {{
    {"a", "a"},
    {" ", " "},
    {"\"", "\""},
    {"\\", "\\"},
    {"\\u0041", "\\u0041"},
    {"{}|<>,:]", "{}|<>,:]"},
    {"$end", "$end"},
    {"\t", "\t"},
    {"\n", "\n"},
    {"\r\x01\x1f\x7f", "\r\x01\x1f\x7f"},
    {"\xc3\xa4", "\xc3\xa4"},
    {"\xf0\x9f\x90\x84", "\xf0\x9f\x90\x84"},
    {"\xff", "\xef\xbf\xbd"},
    {"\xc2\x85", "\xc2\x85"},
    {"\x80x", "\xef\xbf\xbdx"},
    {"\xe2\x82.", "\xef\xbf\xbd\xef\xbf\xbd."},
    {"\xc0\xaf.", "\xef\xbf\xbd\xef\xbf\xbd."},
    {"\xed\xa0\x80.", "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd."},
}};

/// A name, and the same as UTF-8 after it in texts.
std::string randomName(Random& random, std::vector<std::string>& texts) {
    std::string name;
    texts.emplace_back();
    for (auto n = 1 + random() % 4; n > 0; --n) {
        const auto& [bytes, text] = pieces.at(random() % pieces.size());
        name += bytes;
        texts.back() += text;
    }
    return name;
}

/// A strict reader of JSON (RFC 8259) that keeps the strings, with keys among them.
class Json {
public:
    explicit Json(std::string text) : text(std::move(text)) {
        valid = value() && this->text.find_first_not_of(" \t\r\n", at) == std::string::npos;
    }
    bool valid;
    std::vector<std::string> strings;

private:
    bool take(char c) {
        at = std::min(text.find_first_not_of(" \t\r\n", at), text.size());
        if (at == text.size() || text[at] != c) return false;
        ++at;
        return true;
    }
    template <class Element>
    bool elements(char end, const Element& element) {
        if (take(end)) return true;
        do {
            if (!element()) return false;
        } while (take(','));
        return take(end);
    }
    bool value() { // NOLINT(misc-no-recursion): reports are nested three deep
        if (take('{'))
            return elements('}', [&] { return take('"') && string() && take(':') && value(); });
        if (take('[')) return elements(']', [&] { return value(); });
        if (take('"')) return string();
        for (const std::string word : {"true", "false", "null"}) {
            if (text.compare(at, word.size(), word) == 0) return at += word.size(), true;
        }
        const std::size_t begin = at;
        while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0) ++at;
        return at > begin && (text[begin] != '0' || at == begin + 1);
    }
    bool string() {
        std::string& s = strings.emplace_back();
        for (; at < text.size() && static_cast<unsigned char>(text[at]) >= ' '; ++at) {
            if (text[at] == '"') return ++at, true;
            if (text[at] == '\\') {
                static const std::string escapes = "\"\\/bfnrt";
                static const std::string meanings = "\"\\/\b\f\n\r\t";
                const std::size_t escape = escapes.find(text[++at]);
                if (text[at] == 'u') {
                    s += static_cast<char>(std::stoi(text.substr(at + 1, 4), nullptr, 16));
                    at += 4;
                } else if (escape == std::string::npos) {
                    return false;
                } else {
                    s += meanings[escape];
                }
            } else {
                s += text[at];
            }
        }
        return false;
    }

    std::string text;
    std::size_t at = 0;
};

/// Whether the text is UTF-8 without control characters but newlines.
bool isReadable(const std::string& text) {
    std::setlocale(LC_ALL, "C.UTF-8");
    std::wstring wide(text.size(), L'\0');
    const std::size_t size = std::mbstowcs(wide.data(), text.c_str(), wide.size());
    if (size == static_cast<std::size_t>(-1)) return false;
    return std::all_of(
        wide.begin(), wide.begin() + static_cast<std::ptrdiff_t>(size),
        [](wchar_t c) { return c == '\n' || std::iswcntrl(static_cast<wint_t>(c)) == 0; });
}

/// Checks the lines of a waveform, and gives the locations at each time, by scope.
std::vector<State> wave(const std::string& text, std::size_t automata) {
    std::vector<State> states;
    std::map<std::string, std::string> kinds; // of the codes
    std::map<std::string, std::size_t> automatonOf;
    std::vector<std::string> scopes;
    std::set<std::string> different;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        const std::vector<std::string> words{std::istream_iterator<std::string>(fields), {}};
        SCOPED_TRACE(line);
        EXPECT_FALSE(words.empty());
        if (words.empty()) continue;
        const std::string& first = words.front();
        if (first == "$scope") {
            EXPECT_EQ(words.size(), 4U);
            EXPECT_TRUE(different.insert(words.at(2)).second);
        } else if (first == "$var") {
            EXPECT_EQ(words.size(), 6U);
            EXPECT_TRUE(kinds.emplace(words.at(3), words.at(1)).second);
            if (words.at(4) == "location") automatonOf[words.at(3)] = automatonOf.size() + 1;
        } else if (first.front() == '#') {
            EXPECT_EQ(first, '#' + std::to_string(states.size()));
            states.push_back(states.empty() ? State(automata + 1) : states.back());
        } else if (first.front() != '$') {
            const bool scalar = first.front() == '0' || first.front() == '1';
            EXPECT_EQ(words.size(), scalar ? 1U : 2U);
            const std::string code = scalar ? first.substr(1) : words.back();
            EXPECT_EQ(kinds[code], first.front() == 's' ? "string" : "wire");
            if (automatonOf.contains(code)) {
                const std::string digits = scalar ? first.substr(0, 1) : first.substr(1);
                states.back().at(automatonOf[code]) =
                    static_cast<uint>(std::stoul(digits, nullptr, 2));
            }
        }
    }
    EXPECT_EQ(automatonOf.size(), automata);
    states.pop_back(); // the end of the last one
    return states;
}

/// Whether each string of a DOT graph ends in its line.
bool quotesMatch(const std::string& text) {
    bool inside = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (inside && text[i] == '\\')
            ++i;
        else if (text[i] == '"')
            inside = !inside;
        else if (text[i] == '\n' && inside)
            return false;
    }
    return !inside;
}

} // namespace

TEST(Report, isValidWhateverBytesTheNamesHave) {
    const Scratch dir;
    dir.write("form.in", "Tp17&");
    for (uint seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        dir.write("net.in", randomNetwork(random, 1 + random() % 4));
        NetTimedModel model;
        read(model, dir.path / "net");
        model.readFormula(dir.path / "form");
        std::vector<std::string> texts = {"network"};
        const std::string network = randomName(random, texts);
        texts.emplace_back("formula");
        const std::string formula = randomName(random, texts);
        texts.insert(texts.end(), {"k", "automata"});
        Names names;
        for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
            texts.emplace_back("name");
            names.automata[a] = randomName(random, texts);
            texts.emplace_back("locations");
            for (uint l = 0; model.verts.contains({a, l}); ++l)
                names.locations[{a, l}] = randomName(random, texts);
        }
        texts.emplace_back("actionNames");
        for (const auto& [action, automata] : model.actionAutomata) {
            texts.push_back(std::to_string(action));
            names.actions[action] = randomName(random, texts);
        }
        std::vector<std::string> ignored;
        names.props[17] = randomName(random, ignored);

        std::vector<State> states = {initialState(model)};
        Path path{static_cast<int>(random() % 6), states.front(), {}};
        for (int p = 1; p <= path.k; ++p) {
            const State from = states.back();
            states.push_back(randomStep(model, random, from));
            if (actionsBetween(model, from, states.back()).empty()) {
                states.pop_back();
                path.k = p - 1;
                break;
            }
            for (uint a = 1; a < from.size(); ++a) {
                if (from[a] != states.back()[a])
                    path.changes.push_back({p, {a, from[a], states.back()[a]}});
            }
        }
        const Transitions transitions(model);
        const Condition condition = conditionOf(*model.form);
        const Walk walk(transitions, path, condition);
        const auto report = [&](auto show) {
            std::ostringstream out;
            show(out, {walk, condition, names, network, formula});
            return out.str();
        };
        const Json json(report(showJson));
        SCOPED_TRACE(report(showJson));
        EXPECT_TRUE(json.valid);
        texts.emplace_back("positions");
        ASSERT_GT(json.strings.size(), texts.size());
        EXPECT_EQ(std::vector(json.strings.begin(),
                              json.strings.begin() + static_cast<std::ptrdiff_t>(texts.size())),
                  texts);
        EXPECT_TRUE(isReadable(report(showText))) << report(showText);
        EXPECT_TRUE(isReadable(report(showVcd))) << report(showVcd);
        EXPECT_EQ(wave(report(showVcd), states.front().size() - 1), states) << report(showVcd);
        const std::string picture = report(showDot);
        EXPECT_TRUE(isReadable(picture) && quotesMatch(picture)) << picture;
    }
}

} // namespace tervoxal
