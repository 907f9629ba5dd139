#include "query/expression.h"

#include "query/hints.h"
#include "query/sum.h"
#include "text/escapes.h"
#include "text/fatal.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

using Term = Condition::Term;
using Things = Vocabulary::Things;

/// The kinds of tokens; operators in ascending strength, temporal ones of one operand with Not.
/// OpenPath is E[ or A[, Until what stands between its operands. Release has no token: it is what
/// the negation of Until becomes.
enum Kind {
    OpenPath,
    Open,
    Implies,
    Or,
    And,
    Not,
    Next,
    Finally,
    Globally,
    Until,
    Release,
    Close,
    ClosePath,
    False,
    True,
    Atom,
    End
};

struct Token {
    Kind kind;
    Condition::Token atom{Term::truth};
    bool universal = false; // of OpenPath and a temporal operator: on all paths
    std::size_t begin = 0;
    std::size_t end = 0;
};

bool isUnary(Kind kind) { return kind >= Not && kind <= Globally; }

/// Where a token stands.
struct Context {
    bool operand;          // an operand is due
    std::size_t openPaths; // brackets of OpenPath around it
};

/// What a word is looked up as.
struct Sort {
    std::string one;
    std::string many;
    std::string of;    // what it belongs to, after a blank
    std::string write; // in place of a name that is not unique
};

const Sort propositions{"proposition", "propositions", "", "p and the number"};
const Sort actions{"action", "actions", "", "the number"};
const Sort automata{"automaton", "automata", "", "the number"};
const Sort amounts{"count", "counts", "", ""};

/// Whether a name matches a pattern, in which ? stands for one character (UTF-8) and * for any
/// number of them. Of several * only the last one met can have to give way.
bool matches(std::string_view pattern, std::string_view name) {
    const auto isPart = [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) == 0x80U; };
    std::size_t p = 0;
    std::size_t n = 0;
    std::optional<std::pair<std::size_t, std::size_t>> star; // after it, in pattern and name
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = {++p, n};
        } else if (p < pattern.size() && pattern[p] == '?') {
            ++p;
            ++n;
            while (n < name.size() && isPart(name[n])) ++n;
        } else if (p < pattern.size() && pattern[p] == name[n]) {
            ++p;
            ++n;
        } else if (star) {
            p = star->first;
            n = ++star->second;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

/// A name or a number.
struct Word {
    std::string text;
    std::size_t begin;
    bool quoted;
};

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Cuts an expression into tokens and looks its names up.
class Tokens {
public:
    Tokens(const std::string& text, const Vocabulary& vocabulary, const std::string& where)
        : text(text), vocabulary(vocabulary), where(where) {}

    Token next(const Context& around) {
        if (waiting < written.size()) return written[waiting++];
        context = around;
        skipBlanks();
        const std::size_t begin = at;
        Token token = at == text.size() ? Token{End} : read();
        if (token.kind != Atom) last.reset();
        token.begin = begin;
        token.end = at;
        for (std::size_t i = waiting; i < written.size(); ++i) {
            written[i].begin = begin;
            written[i].end = at;
        }
        return token;
    }

    [[noreturn]] void refuse(std::size_t position, const std::string& what) const {
        error(where + "column " + std::to_string(position + 1) + ": " + what);
    }

    /// Of two operands in a row.
    [[noreturn]] void refuseSecond(const Token& first, const Token& second) const {
        const MistakenWord name = meant(first);
        const MistakenWord word = meant(second);
        std::string hint = operatorHint(word);
        if (hint.empty() && first.kind == Atom) hint = quotesHint(name, vocabulary.props);
        refuse(second.begin, "an operator is missing before " + inQuotes(word.text) + hint);
    }

    std::string beyondFormula;
    std::vector<std::string> warnings;
    bool paths = false; // whether some token is temporal

private:
    void skipBlanks() {
        while (at < text.size() && isBlank(text[at])) ++at;
    }

    Token read() {
        const auto symbol = [this](Kind kind, std::size_t length) {
            at += length;
            return Token{kind};
        };
        switch (text[at]) {
        case '!': return symbol(Not, 1);
        case '&': return symbol(And, 1);
        case '|': return symbol(Or, 1);
        case '(': return symbol(Open, 1);
        case ')': return symbol(Close, 1);
        case ']':
            if (context.openPaths > 0) return symbol(ClosePath, 1);
            [[fallthrough]];
        default: return arrow() ? symbol(Implies, 2) : operand(word("!&|()\""));
        }
    }

    [[nodiscard]] bool arrow() const { return text.compare(at, 2, "->") == 0; }

    /// The next word; a bare one ends before a blank, of an arrow and of the enders.
    Word word(std::string_view enders) {
        const std::size_t begin = at;
        if (at < text.size() && text[at] == '"') {
            at = closingQuote(text, begin + 1);
            if (at == std::string::npos) refuse(begin, "the name in double quotes does not end");
            const std::size_t inner = begin + 1;
            return {unescaped(std::string_view(text).substr(inner, at++ - inner)), begin, true};
        }
        std::size_t brackets = 0; // of the word itself
        while (at < text.size() && !isBlank(text[at]) &&
               enders.find(text[at]) == std::string_view::npos && !arrow()) {
            if (text[at] == '[') ++brackets;
            if (text[at] == ']' && context.openPaths > 0 && brackets-- == 0) break;
            ++at;
        }
        return {text.substr(begin, at - begin), begin, false};
    }

    Token operand(const Word& word) {
        if (!word.quoted) {
            if (word.text == "true" || word.text == "false") {
                warn(word, "a constant", propositions, vocabulary.props);
                return {word.text == "true" ? True : False};
            }
            if (word.text == "deadlock" && opens()) return deadlockBut(word);
            if (word.text == "deadlock") {
                warn(word, "that no action is possible", propositions, vocabulary.props);
                return beyond(word, {Term::deadlock});
            }
            if (word.text == "initial" && !isProposition(word)) {
                paths = true;
                return beyond(word, {Term::initial});
            }
            if (word.text == "after" && opens()) return after(word);
            if (const auto token = temporal(word)) return *token;
            if (word.text == "enabled" && opens()) return enabled(word);
            if (word.text == "at" && opens()) return located(word);
            if ((word.text == "any" || word.text == "all") && opens()) {
                return joined(things(word), word.text == "any" ? Or : And);
            }
            const bool counts = word.text == "count" && opens();
            const bool number = isNumber(word.text) && !isProposition(word) && isSummed();
            if (counts || number) {
                at = word.begin;
                return comparison();
            }
        }
        const unsigned int prop = proposition(word);
        last = word;
        return {Atom, {Term::prop, prop}};
    }

    unsigned int proposition(const Word& word) {
        if (word.quoted || word.text[0] != 'p' ||
            !isNumber(std::string_view(word.text).substr(1))) {
            return named(word, propositions, vocabulary.props);
        }
        const Word digits{word.text.substr(1), word.begin, false};
        const unsigned int prop = numberIn(digits, propositions);
        warn(word, "proposition " + std::to_string(prop), propositions, vocabulary.props, prop);
        return prop;
    }

    /// What comes next are these tokens.
    Token write(std::vector<Token> tokens) {
        written = std::move(tokens);
        waiting = 1;
        return written.front();
    }

    /// The atoms with operators between them, in brackets.
    Token joined(const std::vector<Condition::Token>& atoms, Kind operation, bool negated = false) {
        std::vector<Token> tokens = {{Open}};
        for (const Condition::Token& atom : atoms) {
            if (tokens.size() > 1) tokens.push_back({operation});
            if (negated) tokens.push_back({Not});
            tokens.push_back({Atom, atom});
        }
        if (atoms.empty()) tokens.push_back({operation == And ? True : False});
        tokens.push_back({Close});
        return write(std::move(tokens));
    }

    Token deadlockBut(const Word& word) {
        beyond(word, {Term::deadlock});
        std::set<unsigned int> left = vocabulary.actions.numbers;
        expect('(', word);
        do {
            for (const unsigned int action : matching(word, actions, vocabulary.actions)) {
                left.erase(action);
            }
        } while (goesOn(word));
        std::vector<Condition::Token> atoms;
        atoms.reserve(left.size());
        for (const unsigned int action : left) atoms.push_back({Term::enabled, action});
        return joined(atoms, And, true);
    }

    /// Whether another one follows in the brackets; they are closed otherwise.
    bool goesOn(const Word& atom) {
        skipBlanks();
        if (at < text.size() && text[at] == ',') {
            ++at;
            return true;
        }
        expect(')', atom);
        return false;
    }

    /// What stands between the brackets of count, any and all, each thing once.
    std::vector<Condition::Token> things(const Word& atom) {
        std::vector<Condition::Token> all;
        std::set<std::tuple<Term, unsigned int, unsigned int>> known;
        const auto add = [&](const Condition::Token& thing) {
            if (known.insert({thing.term, thing.number, thing.location}).second) {
                all.push_back(thing);
            }
        };
        expect('(', atom);
        do {
            skipBlanks();
            const Word word = argumentWord(atom, propositions);
            if (!word.quoted && word.text == "enabled" && opens()) {
                beyond(word, {Term::enabled});
                expect('(', word);
                for (const unsigned int x : matching(word, actions, vocabulary.actions)) {
                    add({Term::enabled, x});
                }
                expect(')', word);
            } else if (!word.quoted && word.text == "at" && opens()) {
                beyond(word, {Term::at});
                for (const auto& [a, l] : places(word)) add({Term::at, a, l});
            } else if (isPattern(word)) {
                for (const unsigned int p : allMatching(word, propositions, vocabulary.props)) {
                    add({Term::prop, p});
                }
            } else {
                add({Term::prop, proposition(word)});
            }
        } while (goesOn(atom));
        return all;
    }

    /// The places of an at(a, l) of which both may be patterns.
    std::vector<std::pair<unsigned int, unsigned int>> places(const Word& word) {
        expect('(', word);
        const std::vector<unsigned int> found = matching(word, automata, vocabulary.automata);
        expect(',', word);
        std::vector<std::pair<unsigned int, unsigned int>> all;
        skipBlanks();
        const std::size_t begin = at;
        for (const unsigned int a : found) {
            at = begin;
            const Sort locations{"location", "locations", " of automaton " + std::to_string(a),
                                 "the number"};
            const Things& things = vocabulary.locations.at(a);
            const Word location = argumentWord(word, locations);
            const bool there = isPattern(location) || things.named.contains(location.text) ||
                               (!location.quoted && isNumber(location.text));
            if (found.size() > 1 && !there) continue; // others may have it
            at = begin;
            for (const unsigned int l : matching(word, locations, things, found.size() > 1)) {
                all.emplace_back(a, l);
            }
        }
        if (all.empty()) {
            refuse(begin, "none of the automata has such a location");
        }
        expect(')', word);
        return all;
    }

    static bool isPattern(const Word& word) {
        return word.quoted && word.text.find_first_of("*?") != std::string::npos;
    }

    /// The numbers of the things of all names that match; there is one unless there may be none.
    std::vector<unsigned int> allMatching(const Word& pattern, const Sort& sort,
                                          const Vocabulary::Named& names, bool mayBeNone = false) {
        std::vector<unsigned int> all;
        for (const auto& [name, numbers] : names) {
            if (matches(pattern.text, name)) all.insert(all.end(), numbers.begin(), numbers.end());
        }
        if (all.empty() && !mayBeNone) {
            refuse(pattern.begin, "no name of " + (sort.one[0] == 'a' ? "an " : std::string("a ")) +
                                      sort.one + sort.of + " matches " + inQuotes(pattern.text) +
                                      nearestHint(meant(pattern), names, false));
        }
        std::ranges::sort(all);
        return all;
    }

    /// What stands next: a number, a name or a pattern.
    std::vector<unsigned int> matching(const Word& atom, const Sort& sort, const Things& things,
                                       bool mayBeNone = false) {
        skipBlanks();
        const std::size_t begin = at;
        const Word word = argumentWord(atom, sort);
        if (isPattern(word)) return allMatching(word, sort, things.named, mayBeNone);
        if (mayBeNone && !word.quoted && isNumber(word.text) &&
            !things.numbers.contains(numberIn(word, sort))) {
            return {};
        }
        at = begin;
        return {one(atom, sort, things)};
    }

    /// A relation of two sums, as an inequality or two.
    Token comparison() {
        const std::size_t begin = at;
        std::vector<Condition::Part> parts;
        std::int64_t number = addSide(parts, 1);
        const Relation relation = takeRelation();
        number += addSide(parts, -1);
        skipBlanks();
        if (relates()) {
            refuse(at, "two comparisons in a row need & between them: "
                       "count(a, b) >= 1 & count(a, b) <= 2");
        }
        // The parts add up to -number or more where the left side is not below the right one.
        const auto atLeast = [&](std::int64_t more) { return sumOf(parts, more - number); };
        const auto token = [&](std::int64_t more) {
            const Condition::Token sum = atLeast(more);
            return Token{sum.term == Term::sum     ? Atom
                         : sum.term == Term::truth ? True
                                                   : False,
                         sum};
        };
        Token lower = token(0);
        Token higher = token(1);
        const bool needsLower = relation != Relation::atMost && relation != Relation::above;
        const bool needsHigher = relation != Relation::atLeast && relation != Relation::below;
        const bool never =
            (relation == Relation::atLeast && lower.kind == False) ||
            (relation == Relation::above && higher.kind == False) ||
            (relation == Relation::below && lower.kind == True) ||
            (relation == Relation::atMost && higher.kind == True) ||
            (relation == Relation::equal && (lower.kind == False || higher.kind == True));
        const bool constant =
            (!needsLower || lower.kind != Atom) && (!needsHigher || higher.kind != Atom);
        if (never || constant) {
            warnings.push_back("column " + std::to_string(begin + 1) +
                               ": the comparison holds in " +
                               (never ? "no state" : "every state or in none"));
        }
        switch (relation) {
        case Relation::atLeast: return lower;
        case Relation::above: return higher;
        case Relation::below: return write({{Open}, {Not}, lower, {Close}});
        case Relation::atMost: return write({{Open}, {Not}, higher, {Close}});
        case Relation::equal: return write({{Open}, lower, {And}, {Not}, higher, {Close}});
        case Relation::unequal: break;
        }
        return write({{Open}, {Not}, lower, {Or}, higher, {Close}});
    }

    enum class Relation { below, atMost, equal, unequal, atLeast, above };

    /// Whether a relation, a plus or a minus follows.
    [[nodiscard]] bool isSummed() const {
        const char c = follows();
        const std::string_view rest = trimmed(std::string_view(text).substr(at));
        return relates() || c == '+' || (c == '-' && !rest.starts_with("->"));
    }

    /// Whether a relation follows.
    [[nodiscard]] bool relates() const {
        const std::string_view rest = trimmed(std::string_view(text).substr(at));
        return !rest.empty() &&
               (rest[0] == '<' || rest[0] == '>' || rest[0] == '=' || rest.starts_with("!="));
    }

    Relation takeRelation() {
        skipBlanks();
        static const std::vector<std::pair<std::string_view, Relation>> relations = {
            {"<=", Relation::atMost}, {">=", Relation::atLeast}, {"!=", Relation::unequal},
            {"<", Relation::below},   {">", Relation::above},    {"=", Relation::equal}};
        static const std::vector<std::pair<std::string_view, std::string_view>> slips = {
            {"==", "="}, {"=>", ">="}, {"=<", "<="}, {"<>", "!="}};
        const std::string_view rest = std::string_view(text).substr(at);
        for (const auto& [slip, meant] : slips) {
            if (rest.starts_with(slip)) {
                refuse(at, inQuotes(slip) + " is written " + std::string(meant));
            }
        }
        for (const auto& [sign, relation] : relations) {
            if (!rest.starts_with(sign)) continue;
            at += sign.size();
            return relation;
        }
        refuse(at,
               "count(...) is a number, compare it: count(...) >= 2, also with <, <=, =, !=, >");
    }

    /// One side of a comparison: its counts go to the parts, its numbers are given back.
    std::int64_t addSide(std::vector<Condition::Part>& parts, int side) {
        std::int64_t number = 0;
        for (int sign = side;; ++at) {
            skipBlanks();
            std::size_t end = at;
            while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
            if (end > at) {
                const Word digits{text.substr(at, end - at), at, false};
                number += sign * std::int64_t{numberIn(digits, amounts)};
                at = end;
            } else {
                const std::size_t begin = at;
                const Word counting = word("!&|()\",<>=+-");
                if (counting.quoted || counting.text != "count" || !opens()) {
                    refuse(begin, "a number or count(...) is missing in a comparison");
                }
                for (const Condition::Token& thing : things(counting)) {
                    parts.push_back({thing, sign});
                }
            }
            skipBlanks();
            if (at == text.size() || arrow() || (text[at] != '+' && text[at] != '-')) return number;
            sign = text[at] == '+' ? side : -side;
        }
    }

    [[nodiscard]] bool isProposition(const Word& word) const {
        return vocabulary.props.contains(word.text);
    }

    /// The temporal operator that the word begins with, if it is meant as one: a proposition of
    /// that name is meant where no operand follows.
    std::optional<Token> temporal(const Word& word) {
        static const std::map<std::string_view, Kind> unary = {{"EX", Next},     {"EF", Finally},
                                                               {"EG", Globally}, {"AX", Next},
                                                               {"AF", Finally},  {"AG", Globally}};
        if (!context.operand && context.openPaths > 0 && word.text == "U") return Token{Until};
        const bool universal = word.text[0] == 'A';
        if ((universal || word.text[0] == 'E') && !isProposition(word)) {
            const bool apart = word.text.size() == 1 && follows() == '[';
            if (apart || (word.text.size() > 1 && word.text[1] == '[')) {
                at = apart ? text.find('[', at) + 1 : word.begin + 2;
                refuseInFormula(word.begin, text.substr(word.begin, 1) + "[... U ...]");
                return Token{OpenPath, {Term::truth}, universal};
            }
        }
        const auto operation = unary.find(word.text);
        if (operation == unary.end() || (isProposition(word) && !operandFollows())) return {};
        warn(word, "a temporal operator", propositions, vocabulary.props);
        refuseInFormula(word.begin, word.text);
        return Token{operation->second, {Term::truth}, universal};
    }

    void refuseInFormula(std::size_t begin, const std::string& name) {
        paths = true;
        if (!beyondFormula.empty()) return;
        beyondFormula = "column " + std::to_string(begin + 1) + ": a run has no " + name;
    }

    /// The next character that is no blank, 0 at the end.
    [[nodiscard]] char follows() const {
        const std::string_view rest = trimmed(std::string_view(text).substr(at));
        return rest.empty() ? '\0' : rest[0];
    }

    /// Whether what comes next can begin an operand.
    [[nodiscard]] bool operandFollows() const {
        const std::string_view rest = trimmed(std::string_view(text).substr(at));
        return !rest.empty() && !rest.starts_with("->") &&
               std::string_view("&|),]").find(rest[0]) == std::string_view::npos;
    }

    Token after(const Word& word) {
        const unsigned int action = argument(word, '(', actions, vocabulary.actions);
        expect(')', word);
        paths = true;
        return beyond(word, {Term::after, action});
    }

    Token beyond(const Word& word, const Condition::Token& atom) {
        if (beyondFormula.empty()) {
            beyondFormula = "column " + std::to_string(word.begin + 1) +
                            ": formula files have no word for " + word.text;
        }
        return {Atom, atom};
    }

    bool opens() {
        skipBlanks();
        return at < text.size() && text[at] == '(';
    }

    Token enabled(const Word& word) {
        const unsigned int action = argument(word, '(', actions, vocabulary.actions);
        expect(')', word);
        return beyond(word, {Term::enabled, action});
    }

    Token located(const Word& word) {
        const unsigned int automaton = argument(word, '(', automata, vocabulary.automata);
        const Sort locations{"location", "locations", " of automaton " + std::to_string(automaton),
                             "the number"};
        const unsigned int location =
            argument(word, ',', locations, vocabulary.locations.at(automaton));
        expect(')', word);
        return beyond(word, {Term::at, automaton, location});
    }

    void expect(char symbol, const Word& atom) {
        skipBlanks();
        if (at == text.size() || text[at] != symbol) {
            refuse(at, inQuotes({&symbol, 1}) + " is missing in " + atom.text + "(...)");
        }
        ++at;
    }

    /// What stands after the symbol: a number or a name of one of the things.
    unsigned int argument(const Word& atom, char symbol, const Sort& sort, const Things& things) {
        expect(symbol, atom);
        return one(atom, sort, things);
    }

    Word argumentWord(const Word& atom, const Sort& sort) {
        skipBlanks();
        Word argument = word("!&|()\",");
        if (argument.text.empty() && !argument.quoted) {
            refuse(at, "the " + sort.one + " is missing in " + atom.text + "(...)");
        }
        return argument;
    }

    unsigned int one(const Word& atom, const Sort& sort, const Things& things) {
        const Word argument = argumentWord(atom, sort);
        if (argument.quoted || !isNumber(argument.text)) {
            const unsigned int number = named(argument, sort, things.named);
            skipBlanks();
            const bool closed = at == text.size() || text[at] == ',' || text[at] == ')';
            const std::string hint = closed ? "" : quotesHint(meant(argument), things.named);
            if (!hint.empty())
                refuse(argument.begin, inQuotes(argument.text) + " is not all" + hint);
            return number;
        }
        const unsigned int number = numberIn(argument, sort);
        if (!things.numbers.contains(number)) {
            refuse(argument.begin,
                   "no " + sort.one + sort.of + " has the number " + std::to_string(number));
        }
        warn(argument, "a number", sort, things.named, number);
        return number;
    }

    [[nodiscard]] unsigned int numberIn(const Word& digits, const Sort& sort) const {
        int number = 0;
        if (wholeNumber(digits.text, number) != Found::number) {
            refuse(digits.begin, sort.one + " number above 2147483647");
        }
        return static_cast<unsigned int>(number);
    }

    /// Warns of a word that is no name where something else than this number has it as a name.
    void warn(const Word& word, const std::string& meaning, const Sort& sort,
              const Vocabulary::Named& names, std::optional<unsigned int> number = {}) {
        const auto named = names.find(word.text);
        if (named == names.end()) return;
        const std::vector<unsigned int>& numbers = named->second;
        const bool same = numbers.size() == 1 && numbers.front() == number;
        if (same || !warned.insert({sort.one + sort.of, word.text}).second) return;
        warnings.push_back("column " + std::to_string(word.begin + 1) + ": " + excerpt(word.text) +
                           " is " + meaning + "; the name of " + sort.one + ' ' +
                           std::to_string(numbers.front()) + sort.of + " needs double quotes");
    }

    [[nodiscard]] unsigned int named(const Word& word, const Sort& sort,
                                     const Vocabulary::Named& names) const {
        const auto named = names.find(word.text);
        if (named == names.end()) refuseUnknown(word, sort, names);
        const std::vector<unsigned int>& numbers = named->second;
        if (numbers.size() > 1) {
            refuse(word.begin, sort.many + ' ' + std::to_string(numbers[0]) + " and " +
                                   std::to_string(numbers[1]) +
                                   (numbers.size() > 2 ? " and others" : "") + sort.of +
                                   " are named " + inQuotes(word.text) + ", write " + sort.write);
        }
        return numbers.front();
    }

    [[noreturn]] void refuseUnknown(const Word& word, const Sort& sort,
                                    const Vocabulary::Named& names) const {
        static const std::map<std::string_view, std::string_view> temporal = {
            {"A", "A[... U ...]"},
            {"E", "E[... U ...]"},
            {"AU", "A[... U ...]"},
            {"EU", "E[... U ...]"},
            {"EK", "EX, EF, EG or E[... U ...]"},
            {"F", "EF or AF, in the end on some path or on all"},
            {"G", "EG or AG, always on some path or on all"},
            {"X", "EX or AX, after the next step on some path or on all"},
            {"U", "E[... U ...] or A[... U ...]"},
            {"R", "!E[!... U !...]"},
            {"W", "!E[!... U ...]"}};
        const auto operation = temporal.find(word.text);
        if (!word.quoted && operation != temporal.end() && &sort == &propositions) {
            refuse(word.begin,
                   word.text + " alone is no operator, write " + std::string(operation->second));
        }
        const MistakenWord mistaken = meant(word);
        const bool proposition = &sort == &propositions;
        const bool number = proposition && !word.quoted && isNumber(word.text);
        std::string hint = number ? ", proposition " + word.text + " is p" + word.text : "";
        if (hint.empty() && proposition) hint = operatorHint(mistaken);
        if (hint.empty()) hint = quotesHint(mistaken, names);
        if (hint.empty() && proposition && last) hint = quotesHint(meant(*last), names);
        if (hint.empty() && proposition) hint = atomHint(mistaken, vocabulary);
        if (hint.empty() && &sort == &automata) hint = locationHint(mistaken, vocabulary);
        if (hint.empty()) hint = nearestHint(mistaken, names, proposition);
        refuse(word.begin, "no " + sort.one + sort.of + " is named " + inQuotes(word.text) + hint);
    }

    [[nodiscard]] MistakenWord meant(const Word& word) const {
        return {word.text, std::string_view(text).substr(word.begin), word.quoted};
    }
    [[nodiscard]] MistakenWord meant(const Token& token) const {
        const std::string_view source = std::string_view(text).substr(token.begin);
        return {trimmed(source.substr(0, token.end - token.begin)), source,
                text[token.begin] == '"'};
    }

    const std::string& text;
    const Vocabulary& vocabulary;
    const std::string& where;
    std::size_t at = 0;
    std::vector<Token> written; // that stand for one of the text
    std::size_t waiting = 0;    // the first of them that is still to come
    std::optional<Word> last;   // the name that is the token before, if it is one
    Context context{true, 0};
    std::set<std::pair<std::string, std::string>> warned;
};

/// One entry of the expression in postfix order.
struct Step {
    Kind kind;
    Condition::Token atom;
    bool negated; // an atom that is, once the negations have gone in
    bool universal;
    std::size_t begin; // of an operator
};

/// Operator-precedence parsing (the shunting-yard algorithm).
std::vector<Step> parsed(const std::string& text, Tokens& tokens) {
    std::vector<Step> steps;
    std::vector<Token> open; // operators and brackets that wait for their right end
    std::size_t openPaths = 0;
    const auto emit = [&](const Token& token, Kind kind) {
        steps.push_back({kind, token.atom, false, token.universal, token.begin});
    };
    const auto close = [&](Kind weakest) {
        for (; !open.empty() && open.back().kind >= weakest; open.pop_back()) {
            if (open.back().kind == Until) return;
            emit(open.back(), open.back().kind);
        }
    };
    const auto textOf = [&](const Token& token) {
        return inQuotes(
            trimmed(std::string_view(text).substr(token.begin, token.end - token.begin)));
    };
    bool operand = true; // whether one is due
    for (Token before{Open};;) {
        const Token token = tokens.next({operand, openPaths});
        const bool begins = isUnary(token.kind) || token.kind == Open || token.kind == OpenPath ||
                            (token.kind >= False && token.kind <= Atom);
        if (operand && !begins) {
            const bool twice = token.kind == before.kind && before.end == token.begin &&
                               (token.kind == And || token.kind == Or);
            tokens.refuse(token.begin,
                          "an operand is missing " +
                              (token.kind == End ? "at the end" : "before " + textOf(token)) +
                              (twice ? ", the operator is written once" : ""));
        }
        if (!operand && begins) tokens.refuseSecond(before, token);
        switch (token.kind) {
        case False:
        case True:
        case Atom:
            emit(token, token.kind);
            operand = false;
            break;
        case OpenPath: ++openPaths; [[fallthrough]];
        case Not:
        case Next:
        case Finally:
        case Globally:
        case Open: open.push_back(token); break;
        case Until:
            close(Implies);
            if (open.back().kind != OpenPath) {
                tokens.refuse(token.begin, open.back().kind == Until
                                               ? "E[...] and A[...] have one U"
                                               : "U stands between brackets of its own, write "
                                                 "E[... U ...]");
            }
            open.push_back(token);
            operand = true;
            break;
        case ClosePath:
            close(Implies);
            if (open.back().kind != Until) {
                tokens.refuse(token.begin, open.back().kind == Open
                                               ? R"("(" is not closed before "]")"
                                               : "U is missing, write E[... U ...]");
            }
            open.pop_back();
            emit(open.back(), Until);
            open.pop_back();
            --openPaths;
            break;
        case Release: break; // no token

        case Implies:
        case Or:
        case And:
            close(token.kind == Implies ? Or : token.kind);
            open.push_back(token);
            operand = true;
            break;
        case Close:
        case End:
            close(Implies);
            if (token.kind == End) {
                if (open.empty()) return steps;
                if (open.back().kind == Until) open.pop_back();
                tokens.refuse(open.back().begin,
                              open.back().kind == Open
                                  ? "\"(\" is not closed"
                                  : textOf(open.back()) + " is not closed, write E[... U ...]");
            }
            if (open.empty() || open.back().kind != Open) {
                tokens.refuse(token.begin, "\")\" closes nothing");
            }
            open.pop_back();
            break;
        }
        before = token;
    }
}

/// Takes the negations to the atoms (negation normal form). A Not means nothing from then
/// on, and there is no Implies.
void pushNegationsIn(std::vector<Step>& steps) {
    // From the end on, an operator comes before its operands, the right one first.
    std::vector<bool> negations = {false};
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        const bool negated = negations.back();
        negations.pop_back();
        switch (step->kind) {
        case Not: negations.push_back(!negated); break;
        case And:
        case Or:
        case Implies:
            negations.push_back((step->kind == Implies) != negated);
            negations.push_back(negated);
            step->kind = (step->kind == And) != negated ? And : Or;
            break;
        case Next:
            step->universal = step->universal != negated;
            negations.push_back(negated);
            break;
        case Finally:
        case Globally:
            step->universal = step->universal != negated;
            step->kind = (step->kind == Finally) != negated ? Finally : Globally;
            negations.push_back(negated);
            break;
        case Until:
        case Release:
            step->universal = step->universal != negated;
            step->kind = (step->kind == Until) != negated ? Until : Release;
            negations.insert(negations.end(), 2, negated);
            break;
        case False:
        case True: step->kind = (step->kind == True) != negated ? True : False; break;
        default: step->negated = negated; break;
        }
    }
}

/// The same steps as those who ask about paths know them, without Not.
std::vector<TemporalToken> tokensOf(const std::vector<Step>& steps) {
    using Of = TemporalToken::Kind;
    std::vector<TemporalToken> tokens;
    const auto add = [&](const Condition::Token& token) {
        tokens.push_back({Of::condition, token});
    };
    for (const Step& step : steps) {
        const auto addTemporal = [&](Of kind) {
            tokens.push_back({kind, {Term::truth}, step.universal, step.begin + 1});
        };
        switch (step.kind) {
        case Not: break;
        case And: add({Term::conjunction}); break;
        case Or: add({Term::disjunction}); break;
        case False: add({Term::falsity}); break;
        case True: add({Term::truth}); break;
        case Next: addTemporal(Of::next); break;
        case Finally: addTemporal(Of::finally); break;
        case Globally: addTemporal(Of::globally); break;
        case Until: addTemporal(Of::until); break;
        case Release: addTemporal(Of::release); break;
        default:
            add(step.atom);
            if (step.negated) add({Term::negation});
            break;
        }
        if (step.kind == And || step.kind == Or) tokens.back().column = step.begin + 1;
    }
    return tokens;
}

} // namespace

Expression expressionOf(const std::string& text, const Vocabulary& vocabulary,
                        const std::string& where) {
    Tokens tokens(text, vocabulary, where);
    std::vector<Step> steps = parsed(text, tokens);
    pushNegationsIn(steps);
    TemporalFormula formula = temporalFormula(tokensOf(steps));
    Expression expression{
        {{{Term::falsity}}}, {}, std::move(tokens.beyondFormula), std::move(tokens.warnings)};
    if (tokens.paths) {
        expression.temporal = std::move(formula);
    } else {
        expression.condition = std::move(formula.nodes.back().condition);
    }
    return expression;
}

} // namespace tervoxal
