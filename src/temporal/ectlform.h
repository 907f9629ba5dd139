// Formulas of existential CTL in postfix notation, their parser, tree and measures.
//
// Tokens follow each other without separators, each operator after its operands:
//
//     T           true
//     p12  p-12   the proposition 12, its negation; no digits mean the number 0
//     &  +        conjunction, disjunction; C and D are read as & and +
//     EU          until, of two operands
//     EG EX EF EK temporal operators of one operand
//
// An "E" that starts no operator is dropped. Proposition numbers are in 0 to 2147483647.
//
// A formula is held as its root with the texts of the operands, and once more as the list of its
// tokens, which is its postfix program. A tree is built on demand and owned by the caller. No
// operation recurses: formulas of millions of operators are nested as deep as they are long.

#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// The operators, 0 to 10: first the leaves, then the Boolean operators, then the temporal ones.
enum EctlOper : int { OpTrue, OpVar, OpNegVar, OpCon, OpDis, OpEG, OpEX, OpEU, OpEF, OpEK, OpNone };

/// One entry of the postfix program. varNr is the number of a proposition, else 0.
struct OnpNode {
    EctlOper op;
    int varNr;
};

/// One node of a formula tree. A leaf has no operands, a one-operand operator only the left one.
struct Node {
    EctlOper op;
    int varNr;
    Node* left;
    Node* right;
};

namespace tervoxal {

/// Why a text is no formula, and the column of that, counted in bytes from 1.
struct FormulaFault {
    std::size_t column;
    std::string text;
};

} // namespace tervoxal

/// A formula. Copying it copies all four fields.
///
/// Invariant: onp is the postfix program of getText() wherever the text was one formula. A text
/// that left several formulas gives the last one, with the entries of all of them in onp; a
/// text without any token gives OpNone and empty fields.
class EctlForm {
public:
    /// Parses the text in one pass, linear in its length. A character that starts no token, an
    /// operator with too few operands and a number above 2147483647 end the process with status 1
    /// and one line on standard error that tells the column, counted from 1.
    EctlForm(const std::string& text);
    /// Parses likewise, but tells the leftmost fault in place of ending the process. The formula
    /// then is what stands before it.
    EctlForm(const std::string& text, std::optional<tervoxal::FormulaFault>& fault);

    [[nodiscard]] EctlOper getOp() const { return op; }
    /// The first operand, parsed anew; of a leaf the leaf itself.
    [[nodiscard]] EctlForm getLeft() const { return left; }
    /// The second operand, parsed anew; the empty formula where there is none.
    [[nodiscard]] EctlForm getRight() const { return right; }
    /// The number of a proposition or its negation, else 0.
    [[nodiscard]] int getVarNr() const;
    /// The formula in postfix notation.
    [[nodiscard]] std::string getText() const;

    /// The tree, owned by the caller; null for OpNone.
    [[nodiscard]] Node* buildTree() const;
    /// Frees the tree under root, which may be null: left operands, then right ones, then the node.
    void destroyTree(Node* root) const;
    /// Prints the tree under root, which may be null, in prefix notation on standard output.
    void preOrder(const Node* root) const;
    /// preOrder of the formula's own tree.
    void showPreOrder() const;
    /// The measure of the tree under root, which may be null, for the bound k, in 32-bit arithmetic
    /// that wraps around.
    [[nodiscard]] int specLen(int k, const Node* root) const;
    /// specLen of the formula's own tree.
    [[nodiscard]] int getSpecLen(int k) const;

    /// The number of operators.
    [[nodiscard]] int length() const;
    /// The number of temporal operators.
    [[nodiscard]] int temporalLength() const;
    /// Replaces the contents of numbers with the numbers of the propositions.
    void createVarNumbers(std::set<int>& numbers) const;
    /// Prints the text and an empty line on standard output.
    void show() const;
    /// Turns this formula into the disjunction of itself and other.
    void dis(const EctlForm& other);

    EctlOper op = OpNone;
    /// The text of a leaf, else that of the first operand.
    std::string left;
    /// The text of the second operand, empty where there is none.
    std::string right;
    std::vector<OnpNode> onp;

private:
    std::optional<tervoxal::FormulaFault> split(const std::string& text);
};

/// The disjunction of two formulas.
[[nodiscard]] EctlForm dis(const EctlForm& a, const EctlForm& b);
/// The same root and operand texts, character by character.
[[nodiscard]] bool operator==(const EctlForm& a, const EctlForm& b);

namespace tervoxal {

/// Whether the text begins with a temporal operator, which has two characters.
[[nodiscard]] bool beginsTemporal(std::string_view text);

/// Why a postfix program has no value, empty where it has one: a program with a temporal operator
/// is false, and any other has to leave exactly one formula.
[[nodiscard]] std::string valueFault(const std::vector<OnpNode>& program);
/// Ends the process with status 1 and the valueFault on standard error if there is one.
void refuseWithoutValue(const std::vector<OnpNode>& program);

} // namespace tervoxal
