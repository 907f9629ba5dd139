#include "translation/tectltran.h"

#include "model/step.h"
#include "system/filenames.h"
#include "system/outputfile.h"
#include "translation/evaluation.h"

#include <algorithm>
#include <cassert>
#include <ctime>
#include <iostream>
#include <utility>

using namespace tervoxal;

namespace {

/// The tree under root, right operands before left ones. It makes no difference to con and dis
/// which operand is first.
Condition conditionOf(const Node* root) {
    using Term = Condition::Term;
    // Operators before operands, left before right, and turned around at the end.
    std::vector<Condition::Token> tokens;
    std::vector<const Node*> open = {root};
    while (!open.empty()) {
        const Node* const node = open.back();
        open.pop_back();
        switch (node == nullptr ? OpNone : node->op) {
        case OpTrue: tokens.push_back({Term::truth}); break;
        case OpVar:
        case OpNegVar:
            if (node->op == OpNegVar) tokens.push_back({Term::negation});
            tokens.push_back({Term::prop, static_cast<uint>(node->varNr)});
            break;
        case OpCon:
        case OpDis:
            tokens.push_back({node->op == OpCon ? Term::conjunction : Term::disjunction});
            open.push_back(node->right);
            open.push_back(node->left);
            break;
        default: tokens.push_back({Term::falsity});
        }
    }
    std::reverse(tokens.begin(), tokens.end());
    return {std::move(tokens)};
}

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
    assert(i >= 0 && !states.empty());
    return states[std::min(static_cast<std::size_t>(i), states.size() - 1)];
}

BoolForm EctlTransl::symbPath() {
    assert((k + 1L) * model.totalNrVertBits <= mostVariables);
    const auto positions = static_cast<int>(std::min<long>(k + 1L, mostKept));
    states.reserve(states.size() + static_cast<std::size_t>(positions));
    for (int i = 0; i < positions; ++i) states.push_back(genSymState(i));

    Step step(model);
    BoolForm path = model.properInitState(0, state(0));
    for (int i = 0; i < k; ++i) {
        const std::size_t before = nodes();
        const BoolForm next = step.formula(state(i), state(i + 1));
        path = con(path, next);
        const auto left = static_cast<std::size_t>(k - 1 - i);
        if (model.totalNrVertBits == 0) break; // every step is the same constant
        if (i == 1 && left > 0) BoolForm::reserve(expectedNodes(nodes() - before, left));
    }
    return path;
}

BoolForm EctlTransl::transl(const EctlForm& form) const {
    Evaluation evaluation(model, conditionOf(form));
    BoolForm r(false);
    for (int i = 0; i <= k; ++i) {
        const BoolForm here = evaluation.value(state(i));
        r = dis(r, here);
        if (model.totalNrVertBits == 0) break; // the same constant at every position
    }
    std::cerr << "translation : " << nodes() << '\n';
    return r;
}

BoolForm EctlTransl::transl(const EctlForm& form, int i) const {
    return Evaluation(model, conditionOf(form)).value(state(i));
}

BoolForm EctlTransl::transl(const Node* node, int i) const {
    return Evaluation(model, conditionOf(node)).value(state(i));
}

void EctlTransl::checkEctlFormula(std::string name) {
    refuseVariables("path", (k + 1L) * model.totalNrVertBits);
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
    OutputFile sideFile(name + sideSuffix); // the old one goes first: it is not of these clauses
    showCNF(clauses, name);
    model.showLCK(k, clauses.maxVariable(), sideFile);
    std::cerr << '\n';

    std::cerr.precision(4);
    std::cerr << "Time consumed : " << static_cast<double>(std::clock() - start) / 1000000.0
              << '\n';
}
