#include "condition.h"

Condition conditionOf(const EctlForm& form) {
    using Term = Condition::Term;
    refuseWithoutValue(form.onp);
    Condition condition;
    for (const OnpNode& token : form.onp) {
        switch (token.op) {
        case OpTrue: condition.tokens.push_back({Term::truth}); break;
        case OpVar:
        case OpNegVar:
            condition.tokens.push_back({Term::prop, static_cast<unsigned int>(token.varNr)});
            if (token.op == OpNegVar) condition.tokens.push_back({Term::negation});
            break;
        case OpCon: condition.tokens.push_back({Term::conjunction}); break;
        case OpDis: condition.tokens.push_back({Term::disjunction}); break;
        default: return {{{Term::falsity}}};
        }
    }
    return condition;
}
