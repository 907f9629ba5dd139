#include "ntamodel.h"

#include "lines.h"
#include "outputfile.h"

#include <algorithm>
#include <bitset>
#include <cassert>
#include <limits>
#include <numeric>

void NetTimedModel::readFormula(std::string name) {
    std::ifstream in = openInput(name.append(".in"));
    Lines lines(in);
    if (!lines.next()) error("formula: end of file before the formula");
    form = std::make_unique<EctlForm>(lines.text);

    carriers.clear();
    for (const OnpNode& token : form->onp) {
        if (token.op != OpVar && token.op != OpNegVar) continue;
        carriers.try_emplace(static_cast<uint>(token.varNr));
    }
    for (const auto& [location, prop] : valuation) {
        const auto named = carriers.find(prop);
        if (named != carriers.end()) named->second.push_back(location);
    }
}

void NetTimedModel::compNrOfBits(int /*k*/) {
    totalNrVertBits = 0;
    nrOfBits.assign(static_cast<std::size_t>(nrOfAutomata) + 1, 0);
    bitShift = nrOfBits;
    for (const auto& [location, vertex] : verts) ++nrOfBits[location.first];
    for (std::size_t a = 1; a < nrOfBits.size(); ++a) {
        int count = 0;
        for (long power = 1; power < nrOfBits[a]; power *= 2) ++count;
        nrOfBits[a] = count;
        bitShift[a] = nrOfBits[a - 1] + bitShift[a - 1];
        totalNrVertBits += count;
    }
    steps.reset();
}

NetTimedModel::Steps NetTimedModel::layOutSteps() const {
    Steps steps;
    steps.locations.push_back({0, 0});
    std::vector<uint> partOf(nrOfBits.size());
    for (std::size_t a = 1; a < nrOfBits.size(); ++a) {
        if (nrOfBits[a] == 0) continue;
        partOf[a] = static_cast<uint>(steps.parts.size());
        steps.parts.push_back({bitShift[a], nrOfBits[a]});
    }

    // The links of an automaton's location numbers by their lowest bits: those of i bits stand from
    // index 2 to the power i upward. 0 is none.
    std::vector<std::vector<uint>> linksOf(nrOfBits.size());
    const auto linkOf = [&](uint a, uint l) {
        std::vector<uint>& links = linksOf[a];
        if (links.empty()) links.resize(std::size_t(2) << static_cast<uint>(nrOfBits[a]));
        uint link = 0;
        for (int i = 0; i < nrOfBits[a]; ++i) {
            const uint below = (2U << static_cast<uint>(i)) - 1;
            uint& next = links[below + 1 + (l & below)];
            if (next == 0) {
                next = static_cast<uint>(steps.locations.size());
                const auto bit = static_cast<uint>(bitShift[a] + i);
                steps.locations.push_back({link, 2 * bit + (l >> static_cast<uint>(i) & 1U)});
            }
            link = next;
        }
        return link;
    };
    std::vector<std::vector<uint>> owners; // of each action: its parts
    for (const auto& [action, automata] : actionAutomata) {
        std::vector<uint> parts;
        for (const uint a : automata) {
            if (nrOfBits[a] == 0) continue;
            for (const auto& [source, target] : actionEdges.at({a, action})) {
                const uint from = linkOf(a, source);
                steps.moves.emplace_back(from, linkOf(a, target));
            }
            steps.shares.push_back(static_cast<uint>(steps.moves.size()));
            parts.push_back(partOf[a]);
        }
        // Actions without a share are alike. At the head of the disjunction they fold into one.
        if (steps.shares.empty() && !steps.actions.empty()) continue;
        steps.actions.push_back({static_cast<uint>(steps.shares.size()), 0});
        owners.push_back(std::move(parts));
    }
    layOutStays(steps, owners);
    return steps;
}

void NetTimedModel::layOutStays(Steps& steps, const std::vector<std::vector<uint>>& owners) {
    // In the order of their owners, each condition shares its longest common beginning with the one
    // before it. An end mark behind the last part keeps that true where one list begins another.
    const auto count = static_cast<uint>(steps.parts.size());
    std::vector<std::size_t> order(owners.size());
    std::iota(order.begin(), order.end(), 0);
    const auto owner = [&](std::size_t action, std::size_t i) {
        return i < owners[action].size() ? owners[action][i] : count;
    };
    const auto firstDifference = [&](std::size_t x, std::size_t y) {
        std::size_t i = 0;
        while (owner(x, i) == owner(y, i) && owner(x, i) != count) ++i;
        return i;
    };
    std::sort(order.begin(), order.end(), [&](std::size_t x, std::size_t y) {
        const std::size_t i = firstDifference(x, y);
        return owner(x, i) < owner(y, i);
    });

    steps.stays.push_back({0, 0});
    std::vector<uint> after(count + 1U); // the condition over the parts below an index
    std::size_t before = owners.size();
    for (const std::size_t action : order) {
        std::size_t i = 0;
        uint part = 0;
        if (before != owners.size()) {
            i = firstDifference(before, action);
            part = owner(before, i);
        }
        for (; part < count; ++part) {
            after[part + 1] = after[part];
            if (owner(action, i) == part) {
                ++i;
            } else {
                assert(steps.stays.size() <= std::numeric_limits<uint>::max());
                after[part + 1] = static_cast<uint>(steps.stays.size());
                steps.stays.push_back({after[part], part});
            }
        }
        steps.actions[action].stay = after[count];
        before = action;
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

namespace {

/// The formulas of links, each built once. Item gives the formula of an item.
template <class Link, class Item>
class Conjunctions {
public:
    Conjunctions(const std::vector<Link>& links, Item item)
        : links(links), item(std::move(item)), built(links.size(), unknown) {
        built[0] = BoolForm(true);
    }

    BoolForm operator[](uint link) {
        for (uint l = link; built[l] == unknown; l = links[l].parent) missing.push_back(l);
        for (; !missing.empty(); missing.pop_back()) {
            const Link& next = links[missing.back()];
            const BoolForm last = item(next.item);
            built[missing.back()] = con(built[next.parent], last);
        }
        return built[link];
    }

private:
    // Stands for none: no location and no equality of distinct variables is false.
    inline static const BoolForm unknown{false};
    const std::vector<Link>& links;
    Item item;
    std::vector<BoolForm> built;
    std::vector<uint> missing;
};

} // namespace

BoolForm NetTimedModel::actionSucc(int /*step*/, const SymState& s1, const SymState& s2) const {
    assert(s1.loc.size() == totalNrVertBits && s2.loc.size() == totalNrVertBits);
    if (!steps) steps = layOutSteps();
    const auto bitOf = [](const SymState& s) {
        return [&s](uint item) {
            const BoolForm bit = s.loc[static_cast<int>(item / 2)];
            return item % 2 != 0 ? bit : neg(bit);
        };
    };
    std::vector<BoolForm> equals(steps->parts.size(), BoolForm(false)); // false: not built yet
    const auto equality = [&](uint part) {
        if (equals[part] == BoolForm(false)) {
            equals[part] = eq(s1.loc, s2.loc, steps->parts[part].shift, steps->parts[part].bits);
        }
        return equals[part];
    };
    Conjunctions sources(steps->locations, bitOf(s1));
    Conjunctions targets(steps->locations, bitOf(s2));
    Conjunctions stays(steps->stays, equality);

    BoolForm result(false);
    uint share = 0;
    uint m = 0;
    for (const Steps::Action& action : steps->actions) {
        BoolForm move(true);
        for (; share < action.sharesEnd; ++share) {
            BoolForm any(false);
            for (; m < steps->shares[share]; ++m) {
                const BoolForm target = targets[steps->moves[m].second];
                const BoolForm source = sources[steps->moves[m].first];
                any = dis(any, con(source, target));
            }
            move = con(move, any);
        }
        move = con(move, stays[action.stay]);
        result = dis(result, move);
    }
    return result;
}

BoolForm NetTimedModel::properInitState(int loc, const SymState& s) const {
    BoolForm r(true);
    for (int a = 1; a <= nrOfAutomata; ++a) r = con(r, bef(a, loc, s.loc));
    return r;
}

BoolForm NetTimedModel::fI(int loc, const SymState& s) const { return properInitState(loc, s); }

BoolForm NetTimedModel::fP(int prop, const SymState& s) const {
    BoolForm r(false);
    const auto add = [&](const Location& location) {
        const auto& [a, l] = location;
        r = dis(r, bef(static_cast<int>(a), static_cast<int>(l), s.loc));
    };
    const auto named = carriers.find(static_cast<uint>(prop));
    if (named != carriers.end()) {
        for (const Location& location : named->second) add(location);
    } else {
        for (const auto& [location, carried] : valuation) {
            if (carried == static_cast<uint>(prop)) add(location);
        }
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
    std::string bits;
    for (int a = 1; a <= nrOfAutomata; ++a) {
        bits += std::to_string(nrOfBits[static_cast<std::size_t>(a)]) + ' ';
    }
    OutputFile out(name.append(".lck"));
    out.write(std::to_string(nrOfAutomata) + '\n' + bits + '\n' + std::to_string(k) + '\n' +
              std::to_string(maxVar) + '\n');
    out.close();
}
