#include "model/ntamodel.h"

#include "model/layout.h"
#include "model/step.h"
#include "system/filenames.h"
#include "system/outputfile.h"
#include "text/lines.h"

#include <bitset>
#include <cassert>

using namespace tervoxal;

void NetTimedModel::readFormula(std::string name) {
    std::ifstream in = openRunInput(name.append(inputSuffix));
    Lines lines(in, name);
    if (!lines.next()) error("formula: end of file before the formula");
    form = std::make_unique<EctlForm>(lines.text);
}

void NetTimedModel::compNrOfBits(int /*k*/) {
    totalNrVertBits = 0;
    nrOfBits.assign(static_cast<std::size_t>(nrOfAutomata) + 1, 0);
    bitShift = nrOfBits;
    for (const auto& [location, vertex] : verts) ++nrOfBits[location.first];
    for (std::size_t a = 1; a < nrOfBits.size(); ++a) {
        nrOfBits[a] = bitsFor(static_cast<std::size_t>(nrOfBits[a]));
        bitShift[a] = nrOfBits[a - 1] + bitShift[a - 1];
        totalNrVertBits += nrOfBits[a];
    }
}

int NetTimedModel::getSymStateLen(int /*pos*/) const { return totalNrVertBits; }

SymState NetTimedModel::genSymState(int start, int pos) const {
    return {totalNrVertBits, start, pos};
}

BoolForm NetTimedModel::bef(int a, int l, const BoolFormVect& loc) const {
    assert(loc.size() == totalNrVertBits);
    const int shift = bitShift[static_cast<std::size_t>(a)];
    BoolForm r(true);
    for (int i = 0; i < nrOfBits[static_cast<std::size_t>(a)]; ++i) {
        const BoolForm b = loc[shift + i];
        r = con(r, (l >> i & 1) != 0 ? b : neg(b));
    }
    return r;
}

BoolFormVect NetTimedModel::bev(int value, int shift) const {
    return {totalNrVertBits, std::bitset<2048>(static_cast<uint>(value)), shift};
}

BoolForm NetTimedModel::actionSucc(int /*step*/, const SymState& s1, const SymState& s2) const {
    if (actionAutomata.empty()) return false;
    for (const SymState* s : {&s2, &s1}) (void)bef(0, 0, s->loc); // true, or its assertion
    return Step(*this).formula(s1, s2);
}

BoolForm NetTimedModel::properInitState(int loc, const SymState& s) const {
    BoolForm r(true);
    for (int a = 1; a <= nrOfAutomata; ++a) r = con(r, bef(a, loc, s.loc));
    return r;
}

BoolForm NetTimedModel::fI(int loc, const SymState& s) const { return properInitState(loc, s); }

BoolForm NetTimedModel::fP(int prop, const SymState& s) const {
    BoolForm r(false);
    for (const auto& [location, carried] : valuation) {
        if (carried != static_cast<uint>(prop)) continue;
        const auto& [a, l] = location;
        r = dis(r, bef(static_cast<int>(a), static_cast<int>(l), s.loc));
    }
    return r;
}

BoolForm NetTimedModel::fT(const SymState& s1, const SymState& s2) const {
    return actionSucc(0, s1, s2);
}

BoolForm NetTimedModel::fH(const SymState& s1, const SymState& s2) const {
    return eq(s1.loc, s2.loc);
}

void NetTimedModel::showLCK(int k, int maxVar, std::string name) const {
    OutputFile file(name.append(sideSuffix));
    showLCK(k, maxVar, file);
}

void NetTimedModel::showLCK(int k, int maxVar, OutputFile& file) const {
    std::string bits;
    for (int a = 1; a <= nrOfAutomata; ++a) {
        bits += std::to_string(nrOfBits[static_cast<std::size_t>(a)]) + ' ';
    }
    file.write(std::to_string(nrOfAutomata) + '\n' + bits + '\n' + std::to_string(k) + '\n' +
               std::to_string(maxVar) + '\n');
    file.close();
}
