#include "query/condition.h"

#include "text/fatal.h"

#include <cstddef>
#include <optional>

namespace tervoxal {

std::vector<Condition::Token> tokensOf(const OnpNode& token) {
    using Term = Condition::Term;
    const auto number = static_cast<unsigned int>(token.varNr);
    switch (token.op) {
    case OpTrue: return {{Term::truth}};
    case OpCon: return {{Term::conjunction}};
    case OpDis: return {{Term::disjunction}};
    case OpVar: return {{Term::prop, number}};
    case OpNegVar: return {{Term::prop, number}, {Term::negation}};
    default: break;
    }
    assert(false);
    return {};
}

Condition conditionOf(const EctlForm& form) {
    using Term = Condition::Term;
    refuseWithoutValue(form.onp);
    Condition condition;
    std::vector<Condition::Token>& tokens = condition.tokens;
    std::size_t values = 0; // that the tokens leave
    for (const OnpNode& token : form.onp) {
        if (token.op > OpDis) { // false, and so is its conjunction with each of them
            tokens.push_back({Term::falsity});
            tokens.insert(tokens.end(), values, {Term::conjunction});
            return condition;
        }
        token.op <= OpNegVar ? ++values : --values;
        for (const Condition::Token& own : tokensOf(token)) tokens.push_back(own);
    }
    return condition;
}

Condition negated(const Condition& condition) {
    using Term = Condition::Term;
    Condition result;
    std::vector<Condition::Token>& tokens = result.tokens;
    for (const Condition::Token& token : condition.tokens) {
        switch (token.term) {
        case Term::falsity: tokens.push_back({Term::truth}); break;
        case Term::truth: tokens.push_back({Term::falsity}); break;
        case Term::conjunction: tokens.push_back({Term::disjunction}); break;
        case Term::disjunction: tokens.push_back({Term::conjunction}); break;
        case Term::negation:
            assert(tokens.back().term == Term::negation);
            tokens.pop_back();
            break;
        default: tokens.push_back(token); tokens.push_back({Term::negation});
        }
    }
    return result;
}

namespace {

/// Writes what it is called with, after what it has written.
struct Writer {
    /// An operand is a constant, or what stands from begin on up to where the next one begins.
    struct Operand {
        std::optional<bool> constant;
        std::size_t begin;
    };

    [[nodiscard]] Operand constant(bool value) const { return {value, text.size()}; }
    Operand atom(const Condition::Token& token) {
        assert(token.term == Condition::Term::prop);
        const std::size_t begin = text.size();
        text += 'p' + std::to_string(token.number);
        return {{}, begin};
    }
    Operand negation(Operand a) {
        if (a.constant) {
            a.constant = !*a.constant;
        } else {
            assert(text.find_first_not_of("0123456789", a.begin + 1) == std::string::npos);
            text.insert(a.begin + 1, 1, '-');
        }
        return a;
    }
    Operand conjunction(const Operand& a, const Operand& b) { return joined(a, b, '&'); }
    Operand disjunction(const Operand& a, const Operand& b) { return joined(a, b, '+'); }

    Operand joined(const Operand& a, const Operand& b, char op) {
        const bool neutral = op == '&';
        if (a.constant == neutral) return b;
        if (b.constant == neutral) return a;
        if (a.constant || b.constant) {
            text.resize(a.begin);
            return {!neutral, a.begin};
        }
        text += op;
        return a;
    }

    std::string text;
};

} // namespace

std::string postfixOf(const Condition& condition) {
    Writer writer;
    const std::optional<bool> constant = valueOf(condition, writer).constant;
    return !constant ? writer.text : *constant ? "T" : "p0p-0&";
}

} // namespace tervoxal
