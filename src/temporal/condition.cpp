#include "condition.h"

#include <cstddef>

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
        switch (token.op) {
        case OpTrue: tokens.push_back({Term::truth}); break;
        case OpCon: tokens.push_back({Term::conjunction}); break;
        case OpDis: tokens.push_back({Term::disjunction}); break;
        default:
            tokens.push_back({Term::prop, static_cast<unsigned int>(token.varNr)});
            if (token.op == OpNegVar) tokens.push_back({Term::negation});
        }
    }
    return condition;
}
