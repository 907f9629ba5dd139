#include "query/expression.h"

#include "query/hints.h"
#include "text/escapes.h"
#include "text/fatal.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace tervoxal {

namespace {

using Term = Condition::Term;
using Things = Vocabulary::Things;

/// The kinds of tokens; operators in ascending strength.
enum Kind { Open, Implies, Or, And, Not, Close, False, True, Atom, End };

struct Token {
    Kind kind;
    Condition::Token atom{Term::truth};
    std::size_t begin = 0;
    std::size_t end = 0;
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

    Token next() {
        skipBlanks();
        const std::size_t begin = at;
        Token token = at == text.size() ? Token{End} : read();
        if (token.kind != Atom) last.reset();
        token.begin = begin;
        token.end = at;
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
        while (at < text.size() && !isBlank(text[at]) &&
               enders.find(text[at]) == std::string_view::npos && !arrow()) {
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
            if (word.text == "deadlock") {
                warn(word, "that no action is possible", propositions, vocabulary.props);
                return beyond(word, {Term::deadlock});
            }
            if (word.text == "enabled" && opens()) return enabled(word);
            if (word.text == "at" && opens()) return located(word);
            if (word.text[0] == 'p' && isNumber(std::string_view(word.text).substr(1))) {
                const Word digits{word.text.substr(1), word.begin, false};
                const unsigned int prop = numberIn(digits, propositions);
                warn(word, "proposition " + std::to_string(prop), propositions, vocabulary.props,
                     prop);
                return {Atom, {Term::prop, prop}};
            }
        }
        const unsigned int prop = named(word, propositions, vocabulary.props);
        last = word;
        return {Atom, {Term::prop, prop}};
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
        skipBlanks();
        const Word argument = word("!&|()\",");
        if (argument.text.empty() && !argument.quoted) {
            refuse(at, "the " + sort.one + " is missing in " + atom.text + "(...)");
        }
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
        static const std::set<std::string_view> temporal = {
            "A", "AF", "AG", "AX", "E", "EF", "EG", "EK", "EU", "EX", "F", "G", "R", "U", "W", "X"};
        const std::string_view rest = trimmed(std::string_view(text).substr(at));
        const bool operand = !rest.empty() && !rest.starts_with("->") &&
                             std::string_view("&|),").find(rest[0]) == std::string_view::npos;
        if (!word.quoted && operand && temporal.contains(word.text)) {
            refuse(word.begin,
                   word.text + " is a temporal operator, and expressions have none: what is asked "
                               "is whether a state can be reached in which they hold");
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
    std::optional<Word> last; // the name that is the token before, if it is one
    std::set<std::pair<std::string, std::string>> warned;
};

/// One entry of the expression in postfix order.
struct Step {
    Kind kind;
    Condition::Token atom;
    bool negated; // an atom that is, once the negations have gone in
};

/// Operator-precedence parsing (the shunting-yard algorithm).
std::vector<Step> parsed(const std::string& text, Tokens& tokens) {
    std::vector<Step> steps;
    std::vector<Token> open; // operators and brackets that wait for their right end
    const auto close = [&](Kind weakest) {
        for (; !open.empty() && open.back().kind >= weakest; open.pop_back()) {
            steps.push_back({open.back().kind, {Term::truth}, false});
        }
    };
    const auto textOf = [&](const Token& token) {
        return inQuotes(
            trimmed(std::string_view(text).substr(token.begin, token.end - token.begin)));
    };
    bool operand = true; // whether one is due
    for (Token before{Open};;) {
        const Token token = tokens.next();
        const bool begins =
            token.kind == Not || token.kind == Open || (token.kind >= False && token.kind <= Atom);
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
            steps.push_back({token.kind, token.atom, false});
            operand = false;
            break;
        case Not:
        case Open: open.push_back(token); break;
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
                if (!open.empty()) tokens.refuse(open.back().begin, "\"(\" is not closed");
                return steps;
            }
            if (open.empty()) tokens.refuse(token.begin, "\")\" closes nothing");
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
        case False:
        case True: step->kind = (step->kind == True) != negated ? True : False; break;
        default: step->negated = negated; break;
        }
    }
}

Condition conditionOf(const std::vector<Step>& steps) {
    Condition condition;
    for (const Step& step : steps) {
        switch (step.kind) {
        case Not: break;
        case And: condition.tokens.push_back({Term::conjunction}); break;
        case Or: condition.tokens.push_back({Term::disjunction}); break;
        case False: condition.tokens.push_back({Term::falsity}); break;
        case True: condition.tokens.push_back({Term::truth}); break;
        default:
            condition.tokens.push_back(step.atom);
            if (step.negated) condition.tokens.push_back({Term::negation});
            break;
        }
    }
    return condition;
}

} // namespace

Expression expressionOf(const std::string& text, const Vocabulary& vocabulary,
                        const std::string& where) {
    Tokens tokens(text, vocabulary, where);
    std::vector<Step> steps = parsed(text, tokens);
    pushNegationsIn(steps);
    return {conditionOf(steps), std::move(tokens.beyondFormula), std::move(tokens.warnings)};
}

} // namespace tervoxal
