#include "tectltran.h"

#include "outputfile.h"
#include "step.h"

#include <algorithm>
#include <cassert>
#include <ctime>
#include <iostream>
#include <map>

namespace {

constexpr long maxVariables = BoolForm::maxVariable - 1; // 1000000 itself is read as no variable

/// The stack on which a formula is translated at one state.
class Stack {
public:
    Stack(const NetTimedModel& model, const SymState& state) : model(model), state(state) {}

    [[nodiscard]] std::size_t size() const { return values.size(); }
    void push(const BoolForm& f) { values.push_back(f); }
    BoolForm pop() {
        const BoolForm top = values.back();
        values.pop_back();
        return top;
    }
    /// Pushes true, a proposition or its negation.
    void pushLeaf(EctlOper op, int varNr) {
        if (op == OpTrue) {
            push(BoolForm(true));
        } else {
            push(op == OpVar ? prop(varNr) : neg(prop(varNr)));
        }
    }
    void pushCombined(EctlOper op, const BoolForm& left, const BoolForm& right) {
        push(op == OpCon ? con(left, right) : dis(left, right));
    }

private:
    BoolForm prop(int nr) {
        const auto [entry, first] = props.try_emplace(nr, false);
        if (first) entry->second = model.fP(nr, state);
        return entry->second;
    }

    const NetTimedModel& model;
    const SymState& state;
    std::vector<BoolForm> values;
    std::map<int, BoolForm> props; // each built once, however often the formula names it
};

std::size_t nodes() { return BoolForm::tv.size(); }

/// The nodes of the whole run, for the store to make room. From the second step on all create as
/// many, and the formula gets an eighth on top. To grow the store in steps took a tenth more time
/// for the whole run; to make room where no step is left, a tenth more memory.
std::size_t expectedNodes(std::size_t ofOneStep, std::size_t stepsLeft) {
    const std::size_t ofPath = nodes() + stepsLeft * ofOneStep;
    return ofPath + ofPath / 8;
}

} // namespace

int EctlTransl::getStartNr(int i) const { return 1 + i * model.getSymStateLen(i); }

SymState EctlTransl::genSymState(int i) const { return model.genSymState(getStartNr(i), i); }

const SymState& EctlTransl::state(int i) const {
    return states[std::min(static_cast<std::size_t>(i), states.size() - 1)];
}

BoolForm EctlTransl::symbPath() {
    assert((k + 1L) * model.totalNrVertBits <= maxVariables);
    const auto positions = static_cast<int>(std::min<long>(k + 1L, BoolForm::maxVariable));
    states.reserve(static_cast<std::size_t>(positions));
    for (int i = 0; i < positions; ++i) states.push_back(genSymState(i));

    Step step(model);
    BoolForm path = model.properInitState(0, states[0]);
    for (std::size_t i = 0; i + 1 < states.size(); ++i) {
        const std::size_t before = nodes();
        const BoolForm next = step.formula(states[i], states[i + 1]);
        path = con(path, next);
        const std::size_t left = states.size() - 2 - i;
        if (i == 1 && left > 0) BoolForm::reserve(expectedNodes(nodes() - before, left));
        if (model.totalNrVertBits == 0) break; // every step is the same constant
    }
    return path;
}

BoolForm EctlTransl::transl(const EctlForm& form) const {
    BoolForm r(false);
    for (std::size_t i = 0; i < states.size(); ++i) {
        const BoolForm here = transl(form, static_cast<int>(i));
        r = dis(r, here);
        if (model.totalNrVertBits == 0) break; // the same constant at every position
    }
    std::cerr << "translation : " << nodes() << '\n';
    return r;
}

BoolForm EctlTransl::transl(const EctlForm& form, int i) const {
    Stack s(model, state(i));
    for (const OnpNode& token : form.onp) {
        if (token.op <= OpNegVar) {
            s.pushLeaf(token.op, token.varNr);
        } else if (token.op <= OpDis) {
            if (s.size() < 2) error("formula: an operator finds too few operands");
            const BoolForm right = s.pop();
            const BoolForm left = s.pop();
            s.pushCombined(token.op, left, right);
        } else {
            return BoolForm(false);
        }
    }
    if (s.size() != 1) {
        error("formula: " + std::to_string(s.size()) + " formulas in place of one");
    }
    return s.pop();
}

BoolForm EctlTransl::transl(const Node* node, int i) const {
    // Operators before operands, left before right; walked backwards, the right operand is built
    // first and the operator last.
    std::vector<const Node*> order;
    std::vector<const Node*> open = {node};
    while (!open.empty()) {
        const Node* const n = open.back();
        open.pop_back();
        order.push_back(n);
        if (n != nullptr && (n->op == OpCon || n->op == OpDis)) {
            open.push_back(n->right);
            open.push_back(n->left);
        }
    }

    Stack s(model, state(i));
    for (auto n = order.rbegin(); n != order.rend(); ++n) {
        const EctlOper op = *n == nullptr ? OpNone : (*n)->op;
        if (op <= OpNegVar) {
            s.pushLeaf(op, (*n)->varNr);
        } else if (op <= OpDis) {
            const BoolForm left = s.pop();
            const BoolForm right = s.pop();
            s.pushCombined(op, left, right);
        } else {
            s.push(BoolForm(false));
        }
    }
    return s.pop();
}

void EctlTransl::checkEctlFormula(std::string name) {
    const long needed = (k + 1L) * model.totalNrVertBits;
    if (needed > maxVariables) {
        error("path needs " + std::to_string(needed) + " variables, the limit is " +
              std::to_string(maxVariables));
    }

    const EctlForm form = *model.form;
    const std::clock_t start = std::clock();
    std::cerr << "Creating symbolic paths\n";
    const BoolForm path = symbPath();
    std::cerr << "End of symbolic path: " << nodes() << '\n';

    std::cerr << "Translation\n";
    BoolForm f = transl(form);
    std::cerr << "End of translation: " << nodes() << '\n';

    std::cout << "Conjunction: " << std::flush;
    f = con(f, path);
    std::cout << nodes() << '\n';

    std::cerr << "Creating clauses ...";
    std::vector<Clause> clauses = f.clauses();
    std::cerr << clauses.size() << '\n';

    std::cerr << "Writing down clauses ";
    removeOutput(name + ".lck"); // never beside a clause file that it does not go with
    showCNF(clauses, name);
    model.showLCK(k, maxCNFOrgVarNr(clauses), name);
    clauses.clear();
    std::cerr << '\n';

    std::cerr.precision(4);
    std::cerr << "Time consumed : " << static_cast<double>(std::clock() - start) / 1000000.0
              << '\n';
}
