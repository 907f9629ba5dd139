#include "expression.h"

#include "fatal.h"
#include "nearest.h"
#include "readable.h"
#include "scanner.h"

#include <charconv>
#include <cstddef>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

/// The kinds of tokens; operators in ascending strength.
enum Kind { Open, Implies, Or, And, Not, Close, False, True, Prop, End };

struct Token {
    Kind kind;
    int number; // of a proposition, else 0
    std::size_t begin;
    std::size_t end;
};

[[noreturn]] void refuse(std::size_t position, const std::string& what) {
    error("column " + std::to_string(position + 1) + ": " + what);
}

/// Cuts an expression into tokens and looks its names up.
class Tokens {
public:
    Tokens(const std::string& text, const PropNumbers& props) : text(text), props(props) {}

    Token next() {
        while (at < text.size() && isBlank(text[at])) ++at;
        const std::size_t begin = at;
        const Token token = at == text.size() ? Token{End, 0, at, at} : read();
        return {token.kind, token.number, begin, at};
    }

    std::vector<std::string> warnings;

private:
    Token read() {
        const auto symbol = [this](Kind kind, std::size_t length) {
            at += length;
            return Token{kind, 0, 0, 0};
        };
        switch (text[at]) {
        case '!': return symbol(Not, 1);
        case '&': return symbol(And, 1);
        case '|': return symbol(Or, 1);
        case '(': return symbol(Open, 1);
        case ')': return symbol(Close, 1);
        case '"': return quotedName();
        default: return arrow() ? symbol(Implies, 2) : bareWord();
        }
    }

    [[nodiscard]] bool arrow() const { return text.compare(at, 2, "->") == 0; }

    Token quotedName() {
        const std::size_t begin = at++;
        std::string name;
        for (; at < text.size() && text[at] != '"'; ++at) {
            const bool escape = text[at] == '\\' && at + 1 < text.size() &&
                                (text[at + 1] == '"' || text[at + 1] == '\\');
            if (escape) ++at;
            name += text[at];
        }
        if (at == text.size()) refuse(begin, "the name in double quotes does not end");
        ++at;
        return {Prop, lookUp(name, begin), 0, 0};
    }

    Token bareWord() {
        constexpr std::string_view enders = "!&|()\"";
        const std::size_t begin = at;
        while (at < text.size() && !isBlank(text[at]) &&
               enders.find(text[at]) == std::string_view::npos && !arrow()) {
            ++at;
        }
        const std::string word = text.substr(begin, at - begin);
        Token token{Prop, 0, 0, 0};
        if (word == "true" || word == "false") {
            token.kind = word == "true" ? True : False;
            warn(word, begin, "a constant", -1);
            return token;
        }
        if (word.size() < 2 || word[0] != 'p' ||
            word.find_first_not_of("0123456789", 1) != std::string::npos) {
            token.number = lookUp(word, begin);
            return token;
        }
        const auto parsed =
            std::from_chars(word.data() + 1, word.data() + word.size(), token.number);
        if (parsed.ec != std::errc()) refuse(begin, "proposition number above 2147483647");
        warn(word, begin, "proposition " + std::to_string(token.number), token.number);
        return token;
    }

    /// Warns of a word that is no name where another proposition than this one has it as a name.
    void warn(const std::string& word, std::size_t begin, const std::string& meaning, int number) {
        const auto named = props.find(word);
        if (named == props.end()) return;
        const std::vector<unsigned int>& numbers = named->second;
        const bool same = numbers.size() == 1 && static_cast<int>(numbers.front()) == number;
        if (same || !warned.insert(word).second) return;
        warnings.push_back("column " + std::to_string(begin + 1) + ": " + excerpt(word) + " is " +
                           meaning + "; the name of proposition " +
                           std::to_string(numbers.front()) + " needs double quotes");
    }

    [[nodiscard]] int lookUp(const std::string& name, std::size_t begin) const {
        const auto named = props.find(name);
        if (named == props.end()) refuseUnknown(name, begin);
        const std::vector<unsigned int>& numbers = named->second;
        if (numbers.size() > 1) {
            refuse(begin, "propositions " + std::to_string(numbers[0]) + " and " +
                              std::to_string(numbers[1]) +
                              (numbers.size() > 2 ? " and others" : "") + " are named " +
                              inQuotes(name) + ", write p and the number");
        }
        return static_cast<int>(numbers.front());
    }

    [[noreturn]] void refuseUnknown(const std::string& name, std::size_t begin) const {
        Nearest nearest(name);
        for (const auto& [known, numbers] : props) nearest.offer(known);
        std::string hint;
        for (const std::string_view word : nearest.found()) {
            hint += (hint.empty() ? "; the nearest: " : ", ") + inQuotes(word);
        }
        refuse(begin, "no proposition is named " + inQuotes(name) + hint);
    }

    const std::string& text;
    const PropNumbers& props;
    std::size_t at = 0;
    std::set<std::string> warned;
};

/// One entry of the expression in postfix order.
struct Step {
    Kind kind;
    int number;   // of a proposition, else 0
    bool negated; // a proposition that is, once the negations have gone in
};

/// Operator-precedence parsing (the shunting-yard algorithm).
std::vector<Step> parsed(const std::string& text, Tokens& tokens) {
    std::vector<Step> steps;
    std::vector<Token> open; // operators and brackets that wait for their right end
    const auto close = [&](Kind weakest) {
        for (; !open.empty() && open.back().kind >= weakest; open.pop_back()) {
            steps.push_back({open.back().kind, 0, false});
        }
    };
    const auto textOf = [&](const Token& token) {
        return inQuotes(std::string_view(text).substr(token.begin, token.end - token.begin));
    };
    bool operand = true; // whether one is due
    for (Token before{Open, 0, 0, 0};;) {
        const Token token = tokens.next();
        const bool begins =
            token.kind == Not || token.kind == Open || (token.kind >= False && token.kind <= Prop);
        if (operand && !begins) {
            const bool twice = token.kind == before.kind && before.end == token.begin &&
                               (token.kind == And || token.kind == Or);
            refuse(token.begin,
                   "an operand is missing " +
                       (token.kind == End ? "at the end" : "ahead of " + textOf(token)) +
                       (twice ? ", the operator is written once" : ""));
        }
        if (!operand && begins)
            refuse(token.begin, "an operator is missing ahead of " + textOf(token));
        switch (token.kind) {
        case False:
        case True:
        case Prop:
            steps.push_back({token.kind, token.number, false});
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
                if (!open.empty()) refuse(open.back().begin, "\"(\" is not closed");
                return steps;
            }
            if (open.empty()) refuse(token.begin, "\")\" closes nothing");
            open.pop_back();
            break;
        }
        before = token;
    }
}

/// Takes the negations to the propositions (negation normal form). A Not means nothing from then
/// on, and there is no Implies.
void pushNegationsIn(std::vector<Step>& steps) {
    // From the end on, an operator comes ahead of its operands, the right one first.
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

/// Writes the postfix notation, and folds the constants away.
std::string written(const std::vector<Step>& steps) {
    // An operand is a constant, or what stands from begin on up to where the next one begins.
    struct Operand {
        Kind kind; // False, True, or Prop for any other formula
        std::size_t begin;
    };
    std::string text;
    std::vector<Operand> operands;
    for (const Step& step : steps) {
        switch (step.kind) {
        case Not: break;
        case And:
        case Or: {
            const Operand right = operands.back();
            operands.pop_back();
            Operand& left = operands.back();
            const Kind neutral = step.kind == And ? True : False;
            if (left.kind == Prop && right.kind == Prop) {
                text += step.kind == And ? '&' : '+';
            } else if (left.kind == neutral) {
                left = right;
            } else if (right.kind != neutral) {
                text.resize(left.begin);
                left.kind = step.kind == And ? False : True;
            }
            break;
        }
        default:
            operands.push_back({step.kind, text.size()});
            if (step.kind == Prop) {
                text += (step.negated ? "p-" : "p") + std::to_string(step.number);
            }
            break;
        }
    }
    if (operands.back().kind == Prop) return text;
    return operands.back().kind == True ? "T" : "p0p-0&";
}

} // namespace

Translated translated(const std::string& expression, const PropNumbers& props) {
    Tokens tokens(expression, props);
    std::vector<Step> steps = parsed(expression, tokens);
    pushNegationsIn(steps);
    return {written(steps), std::move(tokens.warnings)};
}
