// The network file into the tables of a model, and into names.

#include "model/names.h"
#include "model/ntamodel.h"
#include "model/section.h"

#include "system/filenames.h"
#include "text/fatal.h"
#include "text/lines.h"

#include <algorithm>
#include <iostream>
#include <type_traits>

using namespace tervoxal;

namespace {

/// Where the names of a network go, and what it is called with.
struct Naming {
    Names& names;
    const std::string& network;
};

/// Enters the sections of a file into a model, and ends the process at the first fault.
class NetworkReader {
public:
    /// Without naming it does what a run does, which tells how it goes on.
    NetworkReader(const Lines& lines, NetTimedModel& model, const Naming* naming)
        : lines(lines), model(model), names(naming == nullptr ? nullptr : &naming->names),
          naming(naming) {}

    void heading() {}
    void title(int number) {
        section = Section();
        automaton = static_cast<uint>(number);
        if (names != nullptr) name(names->automata, automaton, trimmed(lines.text));
    }
    void body() {
        if (names == nullptr) std::cout << "wczytywanie automatu\n";
        ++model.nrOfAutomata;
    }
    void location(uint l, const Scanner& after) {
        section.addLocation(l);
        if (names != nullptr) name(names->locations, {automaton, l}, after.rest());
    }
    void transition(const Transition& t, bool named, const Scanner& after) {
        section.addTransition(t, lines.number);
        if (names != nullptr && named) name(names->actions, t.action, after.rest());
    }
    void valuation() const {
        if (names == nullptr) std::cout << "wczytywanie wartosciowania\n";
    }
    void value(uint l) { section.addValue(l, lines.number); }
    void prop(uint l, uint p) { section.addProp(l, p); }
    void afterValue(uint /*l*/, const std::optional<uint>& p, const Scanner& after) {
        if (names != nullptr && p) name(names->props, *p, after.rest());
    }
    void ignored() {}
    void closed();
    void end() {}

    [[noreturn]] bool refused(const NetworkFault& fault) const {
        if (naming == nullptr) error(refusal(fault));
        error(naming->network + inputSuffix + ':' + std::to_string(fault.line) +
              ": error: " + text(fault) + "; tervoxal-lint " + naming->network + " tells all");
    }

private:
    /// The first name wins.
    template <class Key>
    static void name(std::map<Key, std::string>& of, const std::type_identity_t<Key>& key,
                     std::string_view text) {
        if (!text.empty()) of.try_emplace(key, text);
    }

    const Lines& lines;
    NetTimedModel& model;
    Names* names;
    const Naming* naming;
    Section section;
    uint automaton = 0;
};

/// Sorted once, so that each entry of the model's tables goes to their end.
void NetworkReader::closed() {
    section.sort();
    const auto fault = section.fault(static_cast<int>(automaton), lines.number);
    if (fault) refused(*fault);
    for (const uint l : section.locations) {
        model.verts.emplace_hint(model.verts.end(), std::pair(automaton, l), Vertex());
    }
    std::set<NetTimedModel::Move>* moves = nullptr;
    uint latest = 0;
    for (const auto& [action, source, target] : section.transitions) {
        const NetTimedModel::LocalAction local(automaton, action);
        const NetTimedModel::Move move(source, target);
        if (moves == nullptr || action != latest) {
            std::set<uint>& automata = model.actionAutomata[action];
            automata.insert(automata.end(), automaton);
            moves = &model.actionEdges.try_emplace(model.actionEdges.end(), local)->second;
            latest = action;
        }
        model.edges.emplace_hint(model.edges.end(), std::pair(local, move), Edge());
        moves->insert(moves->end(), move);
    }
    for (const std::uint64_t value : section.values) {
        model.valuation.emplace_hint(model.valuation.end(),
                                     std::pair(automaton, static_cast<uint>(value >> 32U)),
                                     static_cast<uint>(value));
    }
}

void read(NetTimedModel& model, const Naming* naming, std::istream& in, const std::string& file) {
    Lines lines(in, file);
    NetworkReader reader(lines, model, naming);
    NetworkParser(lines, reader, model.nrOfAutomata).network();
}

} // namespace

void NetTimedModel::readNetwork(std::string name) {
    std::ifstream in = openRunInput(name.append(inputSuffix));
    read(*this, nullptr, in, name);
}

bool NetTimedModel::readAutomaton(std::ifstream& in) {
    Lines lines(in);
    NetworkReader reader(lines, *this, nullptr);
    return NetworkParser(lines, reader, nrOfAutomata).section();
}

void tervoxal::readNamedNetwork(NetTimedModel& model, Names& names, const std::string& name) {
    std::ifstream in = openInput(name + inputSuffix);
    readNamedNetwork(model, names, in, name);
}

void tervoxal::readNamedNetwork(NetTimedModel& model, Names& names, std::istream& in,
                                const std::string& name) {
    const Naming naming{names, name};
    read(model, &naming, in, name + inputSuffix);
    model.compNrOfBits(0);
}
