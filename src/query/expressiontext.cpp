#include "query/expressiontext.h"

#include "query/vocabulary.h"
#include "text/escapes.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

/// Whether a name needs no quotes wherever it stands.
bool isBare(const std::string& name) {
    static const std::set<std::string> words = {
        "true", "false", "deadlock", "initial", "A", "AF", "AG", "AX", "E", "EF", "EG", "EX", "U"};
    const auto plain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_';
    };
    const bool number =
        name.find_first_not_of("0123456789", name.starts_with('p') ? 1 : 0) == std::string::npos;
    return !name.empty() && !number && std::ranges::all_of(name, plain) && !words.contains(name);
}

/// The name if it is given and no other one's, else the number after its prefix.
template <class Given, class Key>
std::string word(const Given& given, const Key& key, const Vocabulary::Named& named,
                 const std::string& number) {
    const auto found = given.find(key);
    if (found == given.end() || named.at(found->second).size() > 1) return number;
    return isBare(found->second) ? found->second : quoted(found->second);
}

} // namespace

/// A text and how strongly its operator binds: 1 |, 2 &, 3 all others.
struct ExpressionText::Operand {
    std::string text;
    int strength = 3;

    [[nodiscard]] std::string at(int least) const {
        return strength < least ? '(' + text + ')' : text;
    }
    [[nodiscard]] static Operand joined(const Operand& a, const Operand& b, bool conjunction) {
        const int strength = conjunction ? 2 : 1;
        return {a.at(strength) + (conjunction ? " & " : " | ") + b.at(strength + 1), strength};
    }
};

ExpressionText::ExpressionText(const NetTimedModel& model, const Names& names)
    : vocabulary(vocabularyOf(model, names)), names(names) {}

std::string ExpressionText::atom(const Condition::Token& token) const {
    using Term = Condition::Term;
    const std::string number = std::to_string(token.number);
    switch (token.term) {
    case Term::prop: return word(names.props, token.number, vocabulary.props, 'p' + number);
    case Term::enabled:
    case Term::after:
        return (token.term == Term::after ? "after(" : "enabled(") +
               word(names.actions, token.number, vocabulary.actions.named, number) + ')';
    case Term::at:
        return "at(" + word(names.automata, token.number, vocabulary.automata.named, number) +
               ", " +
               word(names.locations, NetTimedModel::Location(token.number, token.location),
                    vocabulary.locations.at(token.number).named, std::to_string(token.location)) +
               ')';
    case Term::deadlock: return "deadlock";
    default: return "initial";
    }
}

std::string ExpressionText::sum(const Condition::Token& token, bool reaches) const {
    // A count has each thing once, so what weighs more is in several counts.
    const auto counts = [&](std::int64_t sign) {
        std::string text;
        for (std::int64_t weight = 1;; ++weight) {
            std::string list;
            for (const Condition::Part& part : *token.parts) {
                if (sign * part.weight < weight) continue;
                list += (list.empty() ? "" : ", ") + atom(part.atom);
            }
            if (list.empty()) return text;
            text += (text.empty() ? "count(" : " + count(") + list + ')';
        }
    };
    const std::string left = counts(1);
    const std::string right = counts(-1);
    const std::int64_t least = token.least;
    if (right.empty()) {
        return left +
               (reaches ? " >= " + std::to_string(least) : " <= " + std::to_string(least - 1));
    }
    if (left.empty()) { // as many as the bound allows
        return right + (reaches ? " <= " + std::to_string(-least) : " > " + std::to_string(-least));
    }
    const std::string more = least > 0   ? " + " + std::to_string(least)
                             : least < 0 ? " - " + std::to_string(-least)
                                         : "";
    return left + (reaches ? " >= " : " < ") + right + more;
}

/// Writes from left to right: put together from the texts of operands, a long condition would take
/// time for its length at each operator.
ExpressionText::Operand ExpressionText::operand(const Condition& condition) const {
    using Term = Condition::Term;
    const std::vector<Condition::Token>& tokens = condition.tokens;
    std::vector<std::size_t> begin; // of what ends with each token
    std::vector<std::size_t> values;
    for (const Condition::Token& token : tokens) {
        const bool binary = token.term == Term::conjunction || token.term == Term::disjunction;
        if (binary) values.pop_back();
        if (!binary && token.term != Term::negation) values.push_back(begin.size());
        begin.push_back(values.back());
    }
    const auto strength = [&](std::size_t token) {
        const Term term = tokens[token].term;
        return term == Term::disjunction ? 1 : term == Term::conjunction ? 2 : 3;
    };
    /// What is still to be written: a text, or what ends with a token and binds that strongly.
    struct Piece {
        const char* text;
        std::size_t token = 0;
        int least = 0;
    };
    const std::size_t last = tokens.size() - 1;
    Operand result{"", strength(last)};
    std::vector<Piece> pieces = {{nullptr, last}}; // the next one last
    while (!pieces.empty()) {
        const auto [text, token, least] = pieces.back();
        pieces.pop_back();
        if (text != nullptr) {
            result.text += text;
            continue;
        }
        const int own = strength(token);
        if (own < least) {
            result.text += '(';
            pieces.push_back({")"});
        }
        switch (tokens[token].term) {
        case Term::falsity: result.text += "false"; break;
        case Term::truth: result.text += "true"; break;
        case Term::sum: result.text += sum(tokens[token], true); break;
        case Term::negation:
            if (tokens[token - 1].term == Term::sum) {
                result.text += sum(tokens[token - 1], false);
                break;
            }
            result.text += '!';
            pieces.push_back({nullptr, token - 1, 3});
            break;
        case Term::conjunction:
        case Term::disjunction:
            pieces.push_back({nullptr, token - 1, own + 1});
            pieces.push_back({own == 2 ? " & " : " | "});
            pieces.push_back({nullptr, begin[token - 1] - 1, own});
            break;
        default: result.text += atom(tokens[token]);
        }
    }
    return result;
}

std::string ExpressionText::of(const Condition& condition) const { return operand(condition).text; }

std::string ExpressionText::of(const TemporalFormula& formula, std::size_t node) const {
    using Term = TemporalFormula::Term;
    std::vector<bool> needed(node + 1); // the nodes below
    needed[node] = true;
    for (std::size_t n = node + 1; n-- > 0;) {
        const TemporalFormula::Node& own = formula.nodes[n];
        if (!needed[n] || own.term == Term::condition) continue;
        needed[own.left] = true;
        needed[own.right] = true;
    }
    const auto isConstant = [&](std::size_t n, Condition::Term term) {
        const TemporalFormula::Node& own = formula.nodes[n];
        return own.term == Term::condition && own.condition.tokens.size() == 1 &&
               own.condition.tokens[0].term == term;
    };
    std::vector<Operand> texts(node + 1);
    for (std::size_t n = 0; n <= node; ++n) {
        if (!needed[n]) continue;
        const TemporalFormula::Node& own = formula.nodes[n];
        if (own.term == Term::condition) {
            texts[n] = operand(own.condition);
            continue;
        }
        const Operand& left = texts[own.left];
        const Operand& right = texts[own.right];
        const std::string path = own.universal ? "A" : "E";
        switch (own.term) {
        case Term::next: texts[n] = {path + "X " + right.at(3)}; break;
        case Term::until:
            texts[n] = isConstant(own.left, Condition::Term::truth)
                           ? Operand{path + "F " + right.at(3)}
                           : Operand{path + '[' + left.text + " U " + right.text + ']'};
            break;
        case Term::release:
            // Expressions have no release, which is the negation of until.
            texts[n] = isConstant(own.left, Condition::Term::falsity)
                           ? Operand{path + "G " + right.at(3)}
                           : Operand{std::string(own.universal ? "!E[!" : "!A[!") + left.at(3) +
                                     " U !" + right.at(3) + ']'};
            break;
        default: texts[n] = Operand::joined(left, right, own.term == Term::conjunction);
        }
    }
    return texts[node].text;
}

} // namespace tervoxal
