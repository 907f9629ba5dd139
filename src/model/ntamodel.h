// A network of automata, its reader, the layout of a state in bits and the encoding of initial
// state, steps and propositions as formulas.
//
// Automata are numbered from 1, and index 0 of every array over them is a placeholder. Locations
// are numbered from 0 within their automaton; location 0 is the initial one. Action and proposition
// numbers are any numbers from 0 to 2147483647. Equal action numbers in several automata are one
// action, which all of them take together.
//
// A state has totalNrVertBits bits: automaton a owns nrOfBits[a] of them from bitShift[a] upward
// and holds its location number there in binary, least significant bit first.
//
// All tables are walked in ascending order, pairs first component first. That order decides which
// node of the store is created when, and with it the numbers in the output files.

#pragma once

#include "boolean/boolformvect.h"
#include "model/symstate.h"
#include "temporal/ectlform.h"
#include "text/fatal.h"
#include "text/uint.h"

#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tervoxal {
class OutputFile;
} // namespace tervoxal

/// A declared location. Its key in the table says all there is to say.
struct Vertex {};
/// A transition. Its key in the table says all there is to say.
struct Edge {};

/// The one network of a run. Filled by readNetwork, compNrOfBits and readFormula, in this order,
/// and constant from then on.
class NetTimedModel {
public:
    NetTimedModel() = default;
    NetTimedModel(const NetTimedModel&) = delete;
    NetTimedModel& operator=(const NetTimedModel&) = delete;

    /// Reads name + ".in". Progress goes to standard output. A file that is missing or malformed
    /// ends the process with status 1 and one line on standard error.
    void readNetwork(std::string name);
    /// Reads one automaton, false at the closing line of the network. Ends the process like
    /// readNetwork; lines are counted from here.
    bool readAutomaton(std::ifstream& in);
    /// Reads the first significant line of name + ".in" into form. Ends the process like
    /// readNetwork, and where the line does not parse.
    void readFormula(std::string name);

    /// Computes the layout of a state. The argument has no effect.
    void compNrOfBits(int k);
    /// The bits of a state, the same at every position.
    [[nodiscard]] int getSymStateLen(int pos) const;
    /// The state on the variables from start upward.
    [[nodiscard]] SymState genSymState(int start, int pos) const;

    /// Automaton a, from 1 to nrOfAutomata, is in location l in the state of bits loc. The
    /// placeholder 0 has no bits and is in all locations.
    /// Precondition, asserted: loc has totalNrVertBits bits.
    [[nodiscard]] BoolForm bef(int a, int l, const BoolFormVect& loc) const;
    /// A state of constant bits that hold value from index shift, 0 or more, upward. Precondition,
    /// asserted: the number fits into totalNrVertBits.
    [[nodiscard]] BoolFormVect bev(int value, int shift) const;

    /// s2 follows s1 by one step of the network: one action, all its automata together, every other
    /// automaton stays. False without any transition. The number of the step has no effect.
    /// Precondition, asserted by bef where there is a transition: both states have totalNrVertBits
    /// bits. Lays out a Step of its own, so a path takes one for all its steps.
    [[nodiscard]] BoolForm actionSucc(int step, const SymState& s1, const SymState& s2) const;
    /// Every automaton is in location loc in s.
    [[nodiscard]] BoolForm properInitState(int loc, const SymState& s) const;
    /// The same as properInitState.
    [[nodiscard]] BoolForm fI(int loc, const SymState& s) const;
    /// Some automaton is in a location that carries proposition prop in s. Walks the whole
    /// valuation, so a path lays it out once for all its positions (evaluation.h).
    [[nodiscard]] BoolForm fP(int prop, const SymState& s) const;
    /// The same as actionSucc.
    [[nodiscard]] BoolForm fT(const SymState& s1, const SymState& s2) const;
    /// s1 and s2 are the same state.
    [[nodiscard]] BoolForm fH(const SymState& s1, const SymState& s2) const;

    /// Writes name + ".lck", which tells how variables map to automata and positions. A file that
    /// cannot be written is not reported.
    void showLCK(int k, int maxVar, std::string name) const;
    /// Writes and finishes the same file where it has been begun.
    void showLCK(int k, int maxVar, tervoxal::OutputFile& file) const;

    using Location = std::pair<uint, uint>;    // (automaton, location)
    using Move = std::pair<uint, uint>;        // (source, target)
    using LocalAction = std::pair<uint, uint>; // (automaton, action)

    int nrOfAutomata = 0;
    int totalNrVertBits = 0;
    std::vector<int> nrOfBits; // empty until compNrOfBits
    std::vector<int> bitShift; // empty until compNrOfBits
    std::map<Location, Vertex> verts;
    std::map<std::pair<LocalAction, Move>, Edge> edges;
    std::map<uint, std::set<uint>> actionAutomata;
    std::map<LocalAction, std::set<Move>> actionEdges;
    std::unique_ptr<EctlForm> form; // null until readFormula
    std::set<std::pair<Location, uint>> valuation;
};
