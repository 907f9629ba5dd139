#include "temporal/ectlform.h"

#include "text/fatal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <string_view>
#include <utility>

using namespace tervoxal;

namespace {

constexpr std::array<std::string_view, 11> operStrs = {"T",  "p",  "p-", "&",  "+", "EG",
                                                       "EX", "EU", "EF", "EK", "$"};

/// The text of an operator, "$" for OpNone and for a value that is no operator.
std::string_view operStr(EctlOper op) {
    return operStrs.at(static_cast<std::size_t>(op >= OpTrue && op <= OpNone ? op : OpNone));
}

/// The operator that the text begins with, OpNone if none.
EctlOper oper(std::string_view text) {
    const auto at = [&](std::size_t i) { return i < text.size() ? text[i] : '\0'; };
    switch (at(0)) {
    case 'T': return OpTrue;
    case 'p': return at(1) == '-' ? OpNegVar : OpVar;
    case '&':
    case 'C': return OpCon;
    case '+':
    case 'D': return OpDis;
    case 'E': break;
    default: return OpNone;
    }
    switch (at(1)) {
    case 'G': return OpEG;
    case 'X': return OpEX;
    case 'U': return OpEU;
    case 'F': return OpEF;
    case 'K': return OpEK;
    default: return OpNone;
    }
}

bool isVar(EctlOper op) { return op == OpVar || op == OpNegVar; }
bool isTemporal(EctlOper op) { return op >= OpEG && op <= OpEK; }

int operands(EctlOper op) {
    if (op <= OpNegVar) return 0;
    return op == OpCon || op == OpDis || op == OpEU ? 2 : 1;
}

/// One token of a text. OpNone stands for one character that starts no token.
struct Token {
    EctlOper op;
    int varNr;
    bool inRange; // whether the number fits
    std::string_view text;
};

Token tokenAt(std::string_view text, std::size_t position) {
    const std::string_view rest = text.substr(position);
    Token token{oper(rest), 0, true, {}};
    std::size_t length = 1;
    if (token.op != OpNone && token.op != OpCon && token.op != OpDis) {
        length = operStr(token.op).size();
    }
    if (isVar(token.op)) {
        const std::size_t digits = length;
        length = std::min(rest.find_first_not_of("0123456789", digits), rest.size());
        const auto parsed =
            std::from_chars(rest.data() + digits, rest.data() + length, token.varNr);
        token.inRange = parsed.ec != std::errc::result_out_of_range;
    }
    token.text = rest.substr(0, length);
    return token;
}

/// Calls use for each token of a formula's own text.
template <class Use>
void forEachToken(const std::string& text, Use&& use) {
    for (std::size_t position = 0; position < text.size();) {
        const Token token = tokenAt(text, position);
        if (token.op != OpNone) use(token);
        position += token.text.size();
    }
}

std::string quoted(char c) {
    if (c > ' ' && c <= '~') return {'"', c, '"'};
    constexpr std::string_view digits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    return {'0', 'x', digits[byte / 16U], digits[byte % 16U]};
}

/// The nodes of a tree in prefix order, so every operand stands after its operator. Walked
/// backwards, the operands of an operator come right before left and both before it.
std::vector<const Node*> prefixOrder(const Node* root) {
    std::vector<const Node*> order;
    std::vector<const Node*> open;
    if (root != nullptr) open.push_back(root);
    while (!open.empty()) {
        const Node* const node = open.back();
        open.pop_back();
        order.push_back(node);
        if (node->right != nullptr) open.push_back(node->right);
        if (node->left != nullptr) open.push_back(node->left);
    }
    return order;
}

} // namespace

EctlForm::EctlForm(const std::string& text) {
    if (const auto fault = split(text)) {
        error("formula, column " + std::to_string(fault->column) + ": " + fault->text);
    }
}

EctlForm::EctlForm(const std::string& text, std::optional<FormulaFault>& fault) {
    fault = split(text);
}

std::optional<FormulaFault> EctlForm::split(const std::string& text) {
    // The tokens read so far stand in done, and each formula on the stack is a stretch of it that
    // ends where the next one begins: so no text is joined twice.
    std::string done;
    std::vector<std::size_t> begins;
    std::size_t leftBegin = 0;
    std::size_t rightBegin = 0;
    std::size_t rootEnd = 0;
    std::optional<FormulaFault> fault;
    for (std::size_t position = 0; position < text.size();) {
        const Token token = tokenAt(text, position);
        if (token.op == OpNone && text[position] == 'E') {
            ++position;
            continue;
        }
        const auto arity = static_cast<std::size_t>(operands(token.op));
        if (token.op == OpNone) {
            fault = {position + 1, quoted(text[position]) + " starts no token"};
        } else if (!token.inRange) {
            fault = {position + 1, "proposition number above 2147483647"};
        } else if (begins.size() < arity) {
            fault = {position + 1, '"' + std::string(token.text) + "\" finds too few operands"};
        }
        if (fault) break;
        op = token.op;
        onp.push_back({token.op, token.varNr});
        rightBegin = done.size();
        if (arity == 2) {
            rightBegin = begins.back();
            begins.pop_back();
        }
        if (arity == 0) begins.push_back(done.size());
        leftBegin = begins.back();
        rootEnd = done.size();
        done += arity == 0 ? token.text : operStr(token.op);
        position += token.text.size();
    }
    if (op == OpNone) return fault;
    if (operands(op) == 0) {
        left = done.substr(leftBegin);
    } else {
        left = done.substr(leftBegin, rightBegin - leftBegin);
        right = done.substr(rightBegin, rootEnd - rightBegin);
    }
    return fault;
}

int EctlForm::getVarNr() const { return isVar(op) ? tokenAt(left, 0).varNr : 0; }

std::string EctlForm::getText() const {
    if (op == OpTrue || isVar(op)) return left;
    return (left + right).append(operStr(op));
}

Node* EctlForm::buildTree() const {
    std::vector<Node*> stack;
    const auto pop = [&stack]() -> Node* {
        if (stack.empty()) return nullptr;
        Node* const top = stack.back();
        stack.pop_back();
        return top;
    };
    forEachToken(getText(), [&](const Token& token) {
        const int arity = operands(token.op);
        Node* const second = arity == 2 ? pop() : nullptr;
        Node* const first = arity >= 1 ? pop() : nullptr;
        stack.push_back(new Node{token.op, token.varNr, first, second});
    });
    return pop();
}

void EctlForm::destroyTree(Node* root) const {
    std::vector<Node*> open;
    if (root != nullptr) open.push_back(root);
    while (!open.empty()) {
        Node* const node = open.back();
        Node*& operand = node->left != nullptr ? node->left : node->right;
        if (operand != nullptr) {
            open.push_back(std::exchange(operand, nullptr));
        } else {
            open.pop_back();
            delete node;
        }
    }
}

void EctlForm::preOrder(const Node* root) const {
    for (const Node* node : prefixOrder(root)) {
        std::cout << operStr(node->op);
        if (isVar(node->op)) std::cout << node->varNr;
    }
}

void EctlForm::showPreOrder() const {
    Node* const root = buildTree();
    preOrder(root);
    destroyTree(root);
}

int EctlForm::specLen(int k, const Node* root) const {
    const auto bound = static_cast<std::uint32_t>(k);
    std::vector<std::uint32_t> lengths;
    const auto pop = [&lengths](const Node* operand) -> std::uint32_t {
        if (operand == nullptr) return 0;
        const std::uint32_t top = lengths.back();
        lengths.pop_back();
        return top;
    };
    const std::vector<const Node*> order = prefixOrder(root);
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        const std::uint32_t l = pop((*node)->left);
        const std::uint32_t r = pop((*node)->right);
        std::uint32_t length = 0;
        switch ((*node)->op) {
        case OpCon: length = l + r; break;
        case OpDis:
            length = static_cast<std::int32_t>(l) < static_cast<std::int32_t>(r) ? r : l;
            break;
        case OpEX: length = l + 1; break;
        case OpEG:
        case OpEF:
        case OpEK: length = (bound + 1) * l + 1; break;
        case OpEU: length = bound * l + r + 1; break;
        default: break;
        }
        lengths.push_back(length);
    }
    return lengths.empty() ? 0 : static_cast<int>(lengths.back());
}

int EctlForm::getSpecLen(int k) const {
    Node* const root = buildTree();
    const int length = specLen(k, root);
    destroyTree(root);
    return length;
}

int EctlForm::length() const {
    int count = 0;
    forEachToken(getText(), [&](const Token& token) { count += operands(token.op) > 0 ? 1 : 0; });
    return count;
}

int EctlForm::temporalLength() const {
    int count = 0;
    forEachToken(getText(), [&](const Token& token) { count += isTemporal(token.op) ? 1 : 0; });
    return count;
}

void EctlForm::createVarNumbers(std::set<int>& numbers) const {
    numbers.clear();
    forEachToken(getText(), [&](const Token& token) {
        if (isVar(token.op)) numbers.insert(token.varNr);
    });
}

void EctlForm::show() const { std::cout << getText() << "\n\n"; }

void EctlForm::dis(const EctlForm& other) {
    std::string first = getText();
    std::string second = other.getText();
    const std::vector<OnpNode> entries = other.onp; // other may be this very formula
    left = std::move(first);
    right = std::move(second);
    op = OpDis;
    onp.insert(onp.end(), entries.begin(), entries.end());
    onp.push_back({OpDis, 0});
}

EctlForm dis(const EctlForm& a, const EctlForm& b) {
    EctlForm r = a;
    r.dis(b);
    return r;
}

bool operator==(const EctlForm& a, const EctlForm& b) {
    return a.op == b.op && a.left == b.left && a.right == b.right;
}

bool tervoxal::beginsTemporal(std::string_view text) { return isTemporal(oper(text)); }

std::string tervoxal::valueFault(const std::vector<OnpNode>& program) {
    std::size_t formulas = 0;
    for (const OnpNode& token : program) {
        if (token.op > OpDis) return {};
        if (token.op <= OpNegVar) {
            ++formulas;
        } else {
            if (formulas < 2) return "formula: an operator finds too few operands";
            --formulas;
        }
    }
    if (formulas == 1) return {};
    return "formula: " + std::to_string(formulas) + " formulas in place of one";
}

void tervoxal::refuseWithoutValue(const std::vector<OnpNode>& program) {
    const std::string fault = valueFault(program);
    if (!fault.empty()) error(fault);
}
