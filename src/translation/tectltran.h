// The translator of a run: a symbolic path of k steps, the formula along it, and the pipeline from
// both to the output files.
//
// Position i of the path, from 0 to k, owns the variables 1 + i * B to (i + 1) * B, where B is the
// number of bits of a state. So (k + 1) * B is the number of variables of a run, and must stay
// within the variables of the store.

#pragma once

#include "model/ntamodel.h"

#include <string>
#include <vector>

class EctlTransl {
public:
    /// A path of k steps of the model, which must outlive the translator.
    EctlTransl(const NetTimedModel& model, int k) : k(k), model(model) {}

    /// The first variable of position i.
    [[nodiscard]] int getStartNr(int i) const;
    /// The state of position i, not yet in states.
    [[nodiscard]] SymState genSymState(int i) const;

    /// Fills states with k + 1 entries, or with mostKept if that is fewer, and returns the path
    /// formula: the initial state and k steps. Runs once.
    /// Precondition, asserted: (k + 1) * B <= 999999.
    [[nodiscard]] BoolForm symbPath();

    // The translations need the states of symbPath and carry the Boolean layer of a formula only.

    /// The formula at some position, with a line of progress on standard error.
    [[nodiscard]] BoolForm transl(const EctlForm& form) const;
    /// The formula at position i; false as a whole if the postfix program comes to a temporal
    /// operator. A program that does not leave one formula ends the process with status 1 and one
    /// line on standard error.
    [[nodiscard]] BoolForm transl(const EctlForm& form, int i) const;
    /// The tree at position i, right operands first; a temporal operator makes its own subtree
    /// false, and so does a missing operand.
    [[nodiscard]] BoolForm transl(const Node* node, int i) const;

    /// Writes name + ".cnf", satisfiable exactly when a run of k steps meets the model's formula at
    /// some position, and name + ".lck". Progress goes to the standard streams. Runs once. A path
    /// that needs too many variables, or else a formula that transl refuses, ends the process with
    /// status 1 and one line on standard error, before a step is built or any file is touched.
    void checkEctlFormula(std::string name);

    int k; // steps
    const NetTimedModel& model;
    /// One entry for each position, from symbPath on. Only without bits can there be more positions
    /// than mostKept: the variables limit no such path, but memory would, 40 bytes for each entry.
    /// All its states are equal, so the last entry stands for those of all positions after it.
    std::vector<SymState> states;
    static constexpr int mostKept = BoolForm::maxVariable;

private:
    [[nodiscard]] const SymState& state(int i) const;
};
