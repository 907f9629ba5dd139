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

/// Evaluates formulas at one state. Keeps what a proposition is there, so each is built once,
/// however often it is named.
class Evaluator {
public:
    Evaluator(const NetTimedModel& model, const SymState& state) : model(model), state(state) {}

    /// Of a program that is not refused.
    BoolForm value(const std::vector<OnpNode>& program) {
        for (const OnpNode& token : program) {
            if (token.op <= OpNegVar) {
                push(leaf(token.op, token.varNr));
            } else if (token.op <= OpDis) {
                const BoolForm right = pop();
                const BoolForm left = pop();
                push(combined(token.op, left, right));
            } else {
                return BoolForm(false);
            }
        }
        return pop();
    }

    BoolForm value(const Node* root) {
        // Operators before operands, left before right; walked backwards, the right operand is
        // built first and the operator last.
        std::vector<const Node*> order;
        std::vector<const Node*> open = {root};
        while (!open.empty()) {
            const Node* const node = open.back();
            open.pop_back();
            order.push_back(node);
            if (node != nullptr && (node->op == OpCon || node->op == OpDis)) {
                open.push_back(node->right);
                open.push_back(node->left);
            }
        }
        for (auto node = order.rbegin(); node != order.rend(); ++node) {
            const EctlOper op = *node == nullptr ? OpNone : (*node)->op;
            if (op <= OpNegVar) {
                push(leaf(op, (*node)->varNr));
            } else if (op <= OpDis) {
                const BoolForm left = pop();
                const BoolForm right = pop();
                push(combined(op, left, right));
            } else {
                push(BoolForm(false));
            }
        }
        return pop();
    }

private:
    void push(const BoolForm& f) { stack.push_back(f); }
    BoolForm pop() {
        const BoolForm top = stack.back();
        stack.pop_back();
        return top;
    }
    BoolForm leaf(EctlOper op, int varNr) {
        if (op == OpTrue) return BoolForm(true);
        const auto [known, first] = props.try_emplace(varNr, false);
        if (first) known->second = model.fP(varNr, state);
        return op == OpVar ? known->second : neg(known->second);
    }
    static BoolForm combined(EctlOper op, const BoolForm& left, const BoolForm& right) {
        return op == OpCon ? con(left, right) : dis(left, right);
    }

    const NetTimedModel& model;
    const SymState& state;
    std::vector<BoolForm> stack;
    std::map<int, BoolForm> props;
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
    refuseWithoutValue(form.onp);
    BoolForm r(false);
    for (const SymState& s : states) {
        const BoolForm here = Evaluator(model, s).value(form.onp);
        r = dis(r, here);
        if (model.totalNrVertBits == 0) break; // the same constant at every position
    }
    std::cerr << "translation : " << nodes() << '\n';
    return r;
}

BoolForm EctlTransl::transl(const EctlForm& form, int i) const {
    refuseWithoutValue(form.onp);
    return Evaluator(model, state(i)).value(form.onp);
}

BoolForm EctlTransl::transl(const Node* node, int i) const {
    return Evaluator(model, state(i)).value(node);
}

void EctlTransl::checkEctlFormula(std::string name) {
    const long needed = (k + 1L) * model.totalNrVertBits;
    if (needed > maxVariables) {
        error("path needs " + std::to_string(needed) + " variables, the limit is " +
              std::to_string(maxVariables));
    }
    refuseWithoutValue(model.form->onp);

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
    const ClauseRange clauses = f.clauses();
    std::cerr << clauses.size() << '\n';

    std::cerr << "Writing down clauses ";
    removeOutput(name + ".lck"); // never beside a clause file that it does not go with
    showCNF(clauses, name);
    model.showLCK(k, clauses.maxVariable(), name);
    std::cerr << '\n';

    std::cerr.precision(4);
    std::cerr << "Time consumed : " << static_cast<double>(std::clock() - start) / 1000000.0
              << '\n';
}
