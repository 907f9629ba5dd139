#include "query/hints.h"

#include "text/escapes.h"
#include "text/nearest.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

constexpr std::string_view separators = "!&|()\",";

/// Whether a bare name that stands before the text ends there.
bool endsBefore(std::string_view text) {
    return text.empty() || isBlank(text.front()) || text.starts_with("->") ||
           separators.find(text.front()) != std::string_view::npos;
}

/// Whether the word, with what follows it, is the name.
bool spells(const MistakenWord& word, const std::string& name) {
    if (word.quoted) return word.text == name;
    return !name.empty() && word.source.starts_with(name) &&
           endsBefore(word.source.substr(name.size()));
}

/// The longest of the names that the word spells, or names.end().
Vocabulary::Named::const_iterator spelled(const MistakenWord& word,
                                          const Vocabulary::Named& names) {
    auto longest = names.end();
    for (auto named = names.begin(); named != names.end(); ++named) {
        if (!spells(word, named->first)) continue;
        if (longest == names.end() || longest->first.size() < named->first.size()) longest = named;
    }
    return longest;
}

/// A thing as it is written between the brackets of an atom: its name, if only it has that and a
/// message can show it, else its number.
std::string written(unsigned int number, const std::string& name, std::size_t things) {
    if (things > 1 || name.empty() || excerpt(name) != name) return std::to_string(number);
    bool bare = name.find_first_not_of("0123456789") != std::string::npos;
    for (std::size_t i = 0; i < name.size(); ++i) {
        bare = bare && !endsBefore(std::string_view(name).substr(i));
    }
    return bare ? name : quoted(name);
}

std::string written(unsigned int number, const Vocabulary::Things& things) {
    for (const auto& [name, numbers] : things.named) {
        if (std::ranges::find(numbers, number) != numbers.end()) {
            return written(number, name, numbers.size());
        }
    }
    return std::to_string(number);
}

/// "x, y and others", with at most three told.
std::string listed(const std::vector<std::string>& texts) {
    std::string list;
    for (std::size_t i = 0; i < std::min<std::size_t>(texts.size(), 3); ++i) {
        list += (i == 0 ? "" : ", ") + texts[i];
    }
    return list + (texts.size() > 3 ? " and others" : "");
}

} // namespace

std::string operatorHint(const MistakenWord& word) {
    static constexpr std::string_view both = "(a -> b) & (b -> a)";
    static constexpr std::string_view either = "(a | b) & !(a & b)";
    static constexpr std::array<std::array<std::string_view, 3>, 13> words = {
        {{"and", "and", "&"},
         {"or", "or", "|"},
         {"not", "not", "!"},
         {"implies", "implies", "->"},
         {"xor", "a xor b", either},
         {"iff", "a iff b", both},
         {"<", "a <-> b", both},
         {"=", "a = b", both},
         {"^", "a ^ b", either},
         {"/\\", "/\\", "&"},
         {"\\/", "\\/", "|"},
         {"*", "*", "&"},
         {"+", "+", "|"}}};
    // These are found inside of words as well; the longer ones come first.
    static constexpr std::array<std::array<std::string_view, 3>, 4> signs = {
        {{"<=>", "a <=> b", both}, {"==", "a == b", both}, {"=>", "=>", "->"}, {"~", "~", "!"}}};
    if (word.quoted) return {};
    const auto hint = [](const std::array<std::string_view, 3>& row) {
        return "; \"" + std::string(row[1]) + "\" is written " + std::string(row[2]);
    };
    for (const auto& row : words) {
        if (editDistance(word.text, row[0], 0) > 0) continue;
        if (row[0] != "<" || word.source.starts_with("<->")) return hint(row);
    }
    const std::size_t size = word.text.size();
    if (word.text.ends_with('<') && word.source.substr(size).starts_with("->")) {
        return hint(words[6]);
    }
    for (const auto& row : signs) {
        if (word.text.find(row[0]) != std::string_view::npos) return hint(row);
    }
    return {};
}

std::string quotesHint(const MistakenWord& word, const Vocabulary::Named& names) {
    if (word.quoted) return {};
    const auto named = spelled(word, names);
    if (named != names.end() && named->first.size() > word.text.size()) {
        return "; the name " + inQuotes(named->first) + " needs double quotes";
    }
    // The words up to the next operator or bracket.
    std::size_t end = word.text.size();
    while (end < word.source.size() &&
           (isBlank(word.source[end]) || !endsBefore(word.source.substr(end)))) {
        ++end;
    }
    const std::string_view row = trimmed(word.source.substr(0, end));
    if (row.size() == word.text.size()) return {};
    Nearest nearest(row);
    for (const auto& [name, numbers] : names) {
        if (std::ranges::any_of(name, isBlank)) nearest.offer(name);
    }
    if (nearest.found().empty()) return {};
    return "; the nearest, in double quotes: " + inQuotes(nearest.found().front());
}

std::string atomHint(const MistakenWord& word, const Vocabulary& vocabulary) {
    std::string hint;
    const auto action = spelled(word, vocabulary.actions.named);
    if (action != vocabulary.actions.named.end()) {
        std::vector<std::string> texts;
        for (const unsigned int number : action->second) {
            texts.push_back("enabled(" + written(number, action->first, action->second.size()) +
                            ')');
        }
        hint += ", an action is: " + listed(texts);
    }
    hint += locationHint(word, vocabulary);
    const auto automaton = spelled(word, vocabulary.automata.named);
    if (automaton != vocabulary.automata.named.end()) {
        const std::vector<unsigned int>& numbers = automaton->second;
        hint += ", an automaton is: at(" +
                written(numbers.front(), automaton->first, numbers.size()) + ", LOCATION)";
    }
    return hint;
}

std::string locationHint(const MistakenWord& word, const Vocabulary& vocabulary) {
    std::vector<std::string> texts;
    for (const auto& [automaton, locations] : vocabulary.locations) {
        const auto named = spelled(word, locations.named);
        if (named == locations.named.end() || texts.size() > 3) continue;
        const auto& [name, numbers] = *named;
        texts.push_back("at(" + written(automaton, vocabulary.automata) + ", " +
                        written(numbers.front(), name, numbers.size()) + ')');
    }
    return texts.empty() ? "" : ", a location is: " + listed(texts);
}

std::string nearestHint(const MistakenWord& word, const Vocabulary::Named& names,
                        bool proposition) {
    Nearest nearest(word.text);
    for (const auto& [name, numbers] : names) nearest.offer(name);
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> keywords = {
        {{"deadlock", "deadlock"},
         {"enabled", "enabled(...)"},
         {"true", "true"},
         {"false", "false"}}};
    const bool grammar = proposition && !word.quoted;
    if (grammar) {
        for (const auto& [keyword, shown] : keywords) nearest.offer(keyword);
    }
    std::vector<std::string> texts;
    for (const std::string_view found : nearest.found()) {
        const auto* const keyword =
            std::ranges::find(keywords, found, &decltype(keywords)::value_type::first);
        const bool named = keyword == keywords.end() || names.contains(std::string(found));
        texts.push_back(named ? inQuotes(found) : std::string(keyword->second));
    }
    return texts.empty() ? "" : "; the nearest: " + listed(texts);
}

} // namespace tervoxal
