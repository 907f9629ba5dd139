#include "query/temporalformula.h"

#include "text/fatal.h"

#include <algorithm>
#include <cassert>
#include <string_view>
#include <utility>

namespace tervoxal {

using Term = TemporalFormula::Term;
using Node = TemporalFormula::Node;

namespace {

bool isBinary(Condition::Term term) {
    return term == Condition::Term::conjunction || term == Condition::Term::disjunction;
}

/// A subformula that ends with a token.
struct Part {
    std::size_t begin; // its first token
    bool temporal;
};

/// Of each token the subformula that it ends.
std::vector<Part> partsOf(const std::vector<TemporalToken>& tokens) {
    using Kind = TemporalToken::Kind;
    std::vector<Part> parts;
    std::vector<std::size_t> open; // the ends of those that have no operator yet
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const TemporalToken& token = tokens[i];
        Part part{i, token.kind != Kind::condition};
        const Condition::Term term = token.condition.term;
        const bool binary = token.kind == Kind::condition
                                ? isBinary(term)
                                : token.kind == Kind::until || token.kind == Kind::release;
        const bool unary = !binary && (part.temporal || term == Condition::Term::negation);
        for (int operands = binary ? 2 : unary ? 1 : 0; operands > 0; --operands) {
            part.begin = parts[open.back()].begin;
            part.temporal = part.temporal || parts[open.back()].temporal;
            open.pop_back();
        }
        parts.push_back(part);
        open.push_back(i);
    }
    assert(open.size() == 1);
    return parts;
}

/// Makes the nodes of a formula from its end on.
class Builder {
public:
    explicit Builder(const std::vector<TemporalToken>& tokens)
        : tokens(tokens), parts(partsOf(tokens)) {}

    TemporalFormula formula() {
        // The ends of the maximal parts without a temporal operator.
        std::vector<bool> leaf(tokens.size());
        std::vector<std::size_t> open = {tokens.size() - 1};
        while (!open.empty()) {
            const std::size_t end = open.back();
            open.pop_back();
            leaf[end] = !parts[end].temporal;
            if (leaf[end]) continue;
            open.push_back(end - 1);
            if (isBinaryAt(end)) open.push_back(parts[end - 1].begin - 1);
        }
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            if (leaf[i]) {
                addCondition(i);
            } else if (parts[i].temporal) {
                addOperator(tokens[i]);
            }
        }
        return std::move(result);
    }

private:
    [[nodiscard]] bool isBinaryAt(std::size_t i) const {
        return tokens[i].kind == TemporalToken::Kind::condition ||
               tokens[i].kind == TemporalToken::Kind::until ||
               tokens[i].kind == TemporalToken::Kind::release;
    }

    void add(Node node) {
        values.push_back(result.nodes.size());
        result.nodes.push_back(std::move(node));
    }

    std::size_t pop() {
        const std::size_t value = values.back();
        values.pop_back();
        return value;
    }

    void addCondition(std::size_t end) {
        Node node{Term::condition};
        for (std::size_t i = parts[end].begin; i <= end; ++i) {
            node.condition.tokens.push_back(tokens[i].condition);
        }
        add(std::move(node));
    }

    void addOperator(const TemporalToken& token) {
        using Kind = TemporalToken::Kind;
        Node node{Term::next, token.universal, 0, 0, {}, token.column};
        node.right = pop();
        switch (token.kind) {
        case Kind::condition:
            node.term = token.condition.term == Condition::Term::conjunction ? Term::conjunction
                                                                             : Term::disjunction;
            node.left = pop();
            break;
        case Kind::next: node.left = node.right; break;
        case Kind::until:
        case Kind::release:
            node.term = token.kind == Kind::until ? Term::until : Term::release;
            node.left = pop();
            break;
        case Kind::finally:
        case Kind::globally:
            const bool finally = token.kind == Kind::finally;
            node.term = finally ? Term::until : Term::release;
            add({Term::condition});
            result.nodes.back().condition.tokens = {
                {finally ? Condition::Term::truth : Condition::Term::falsity}};
            node.left = pop();
        }
        add(std::move(node));
    }

    const std::vector<TemporalToken>& tokens;
    const std::vector<Part> parts;
    TemporalFormula result;
    std::vector<std::size_t> values; // nodes without an operator yet
};

/// By node, whether it or something in it is a temporal operator.
std::vector<bool> temporalNodes(const TemporalFormula& formula) {
    std::vector<bool> temporal;
    for (const Node& node : formula.nodes) {
        temporal.push_back(
            isTemporal(node.term) ||
            (node.term != Term::condition && (temporal[node.left] || temporal[node.right])));
    }
    return temporal;
}

} // namespace

std::vector<TemporalToken> temporalTokens(const EctlForm& form) {
    using Kind = TemporalToken::Kind;
    std::size_t formulas = 0;
    for (const OnpNode& token : form.onp) {
        if (token.op <= OpNegVar) ++formulas;
        if (token.op == OpCon || token.op == OpDis || token.op == OpEU) --formulas;
    }
    if (formulas != 1) {
        error("formula: " + std::to_string(formulas) + " formulas in place of one");
    }
    const std::string text = form.getText(); // of all tokens, as there is one formula
    std::size_t at = 0;                      // where the next operator is looked for
    std::vector<TemporalToken> tokens;
    for (const OnpNode& token : form.onp) {
        const auto addTemporal = [&](Kind kind) {
            while (!beginsTemporal(std::string_view(text).substr(at))) ++at;
            tokens.push_back({kind, {Condition::Term::truth}, false, ++at});
        };
        switch (token.op) {
        case OpEX: addTemporal(Kind::next); break;
        case OpEF: addTemporal(Kind::finally); break;
        case OpEG: addTemporal(Kind::globally); break;
        case OpEU: addTemporal(Kind::until); break;
        case OpEK:
            addTemporal(Kind::next);
            error("formula, column " + std::to_string(tokens.back().column) +
                  ": EK has no meaning for the paths of a network, write EX, EF, EG or EU");
        default:
            for (const Condition::Token& condition : tokensOf(token)) {
                tokens.push_back({Kind::condition, condition});
            }
        }
    }
    return tokens;
}

TemporalFormula temporalFormula(const std::vector<TemporalToken>& tokens) {
    return Builder(tokens).formula();
}

TemporalFormula negated(TemporalFormula formula) {
    for (Node& node : formula.nodes) {
        node.universal = isTemporal(node.term) && !node.universal;
        switch (node.term) {
        case Term::condition: node.condition = negated(node.condition); break;
        case Term::conjunction: node.term = Term::disjunction; break;
        case Term::disjunction: node.term = Term::conjunction; break;
        case Term::next: break;
        case Term::until: node.term = Term::release; break;
        case Term::release: node.term = Term::until; break;
        }
    }
    return formula;
}

bool isClaim(const TemporalFormula& formula) {
    bool universal = false;
    std::vector<std::size_t> open = {formula.nodes.size() - 1};
    while (!open.empty()) {
        const Node& node = formula.nodes[open.back()];
        open.pop_back();
        if (isTemporal(node.term)) {
            if (!node.universal) return false;
            universal = true;
        } else if (node.term != Term::condition) {
            open.insert(open.end(), {node.left, node.right});
        }
    }
    return universal;
}

TemporalFormula sought(const TemporalFormula& formula) {
    return isClaim(formula) ? negated(formula) : formula;
}

bool needsSeveralPaths(const TemporalFormula& formula) {
    const std::vector<bool> temporal = temporalNodes(formula);
    return std::ranges::any_of(formula.nodes, [&](const Node& node) {
        const bool left = temporal[node.left];
        const bool right = temporal[node.right];
        switch (node.term) {
        case Term::conjunction: return left && right;
        case Term::next: return node.universal;
        case Term::until: return node.universal || left;
        case Term::release: return node.universal || right;
        default: return false;
        }
    });
}

std::vector<bool> alongPath(const TemporalFormula& formula) {
    std::vector<bool> along;
    for (const Node& node : formula.nodes) {
        along.push_back(isTemporal(node.term) ? !node.universal
                                              : node.term != Term::condition &&
                                                    (along[node.left] || along[node.right]));
    }
    return along;
}

std::size_t followed(const TemporalFormula& formula, const std::vector<bool>& along,
                     std::size_t node) {
    const Node& n = formula.nodes[node];
    const bool left = n.term == Term::release || (n.term == Term::conjunction && along[n.left]);
    return left ? n.left : n.right;
}

bool isOfState(const Condition& condition) {
    return std::ranges::none_of(condition.tokens, [](const Condition::Token& token) {
        return token.term == Condition::Term::after || token.term == Condition::Term::initial;
    });
}

} // namespace tervoxal
