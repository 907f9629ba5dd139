// Damaged input: a run reads it as it stands, or refuses it with one line and touches no output.

#include "support.h"

#include <array>
#include <random>
#include <utility>
#include <vector>

namespace {

using Random = std::mt19937; // % n: unlike the distributions the same everywhere

std::string manyAutomata() {
    std::ostringstream text;
    text << "# generated\n\nmany automata\n";
    for (int a = 1; a <= 9; ++a) {
        text << "automaton " << a << '\n';
        for (int l = 0; l < a; ++l) text << "location " << l << "\nend\n";
        for (int l = 0; l < a; ++l) {
            text << "transition " << l << ' ' << (l + 1) % a << ' ' << (l % 2) * a << "\nend\n";
        }
        text << "valuation\n# marks\n0 1 2\n" << a / 2 << ' ' << a << "\nend\nend\n";
    }
    return text.str() + "end\n";
}

const std::array<std::pair<std::string, std::string>, 3> inputs = {{
    {oneAutomaton, "p5\n"},
    {twoProcesses, "# both\np3p4&"},
    {manyAutomata(), "\np1p-2&p3+Tp7p9&++\nbehind\n"},
}};

const std::array<std::string, 18> oddNumbers = {
    "2147483647", "2147483648", "4294967296",           "99999999999999999999", "-1", "-0",
    "+1",         "-2147483649", "0",                   "007",                  "x",  "1.5",
    "0x10",       "1e9",        "--1",                  "",                     " ",  "3 4"};

struct Mutation {
    const char* name;
    void (*apply)(std::string& text, std::size_t at, Random& random);
};

std::size_t lineBegin(const std::string& text, std::size_t at) {
    return at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
}

/// Takes the line around a position out of the text.
std::string takeLine(std::string& text, std::size_t at) {
    const std::size_t begin = lineBegin(text, at);
    const std::string line = text.substr(begin, text.find('\n', at) - begin) + '\n';
    text.erase(begin, line.size());
    return line;
}

const std::array<Mutation, 11> mutations = {{
    {"bit", [](auto& text, auto at, auto& random) { text[at] ^= static_cast<char>(1U << random() % 8); }},
    {"byte", [](auto& text, auto at, auto& random) { text[at] = static_cast<char>(random()); }},
    {"NUL", [](auto& text, auto at, auto& random) { text.insert(at, 1 + random() % 3, '\0'); }},
    {"cut", [](auto& text, auto at, auto& /*random*/) { text.resize(at); }},
    {"drop", [](auto& text, auto at, auto& /*random*/) { takeLine(text, at); }},
    {"double", [](auto& text, auto at, auto& /*random*/) {
        const std::string line = takeLine(text, at);
        text.insert(lineBegin(text, at), line + line);
    }},
}};

} // namespace
