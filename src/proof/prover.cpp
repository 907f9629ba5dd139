#include "prover.h"

#include "choices.h"
#include "fatal.h"
#include "reachability.h"
#include "transitions.h"
#include "walk.h"
#include "witness.h"

#include <cassert>
#include <map>
#include <sstream>
#include <utility>

namespace {

constexpr std::chrono::milliseconds interval(10);

} // namespace

Certificate certificateOf(const NetTimedModel& model, const std::vector<Cube>& cubes) {
    std::vector<uint> automatonOf; // of each latch
    for (uint a = 1; a < model.nrOfBits.size(); ++a) {
        automatonOf.insert(automatonOf.end(), static_cast<std::size_t>(model.nrOfBits[a]), a);
    }
    struct Bits {
        uint mask = 0;
        uint value = 0;
    };
    Certificate certificate;
    for (const Cube& cube : cubes) {
        std::map<uint, Bits> fixed;
        for (const Cube::Latch& latch : cube.latches) {
            const uint a = automatonOf[latch.number];
            const uint bit =
                1U << (static_cast<uint>(latch.number) - static_cast<uint>(model.bitShift[a]));
            fixed[a].mask |= bit;
            if (latch.value) fixed[a].value |= bit;
        }
        Certificate::Set& set = certificate.sets.emplace_back();
        for (const auto& [a, bits] : fixed) {
            Certificate::Places places{a, {}};
            for (auto vert = model.verts.lower_bound({a, 0});
                 vert != model.verts.end() && vert->first.first == a; ++vert) {
                const uint l = vert->first.second;
                if ((l & bits.mask) == bits.value) places.locations.push_back(l);
            }
            set.push_back(std::move(places));
        }
    }
    return certificate;
}

Prover::Prover(Search& search, const Names& names, Setting setting)
    : search(search), model(search.networkTables().model), names(names),
      setting(std::move(setting)) {
    begin();
}

/// With the question, or the next one that is of interest.
void Prover::begin() {
    while (question < search.findings().size() && (finding().found || finding().never)) ++question;
    if (question == search.findings().size()) return;
    BoolForm::clear();
    const Circuit circuit = reachability(model, finding().condition);
    children.emplace();
    checker = std::make_unique<ModelChecker>(*children, circuit, setting.limit);
    BoolForm::clear();
}

void Prover::end() {
    checker.reset();
    children.reset();
    proof.reset();
}

void Prover::look(std::chrono::milliseconds time) {
    latest = Clock::now();
    const Event event = children->wait(time);
    signal = event.signal;
    proof = checker->proof(event);
}

bool Prover::ready() {
    if (!proof && signal == 0 && Clock::now() - latest >= interval && working()) {
        look(std::chrono::milliseconds(0));
    }
    return proof || signal != 0;
}

void Prover::wait() {
    assert(checker);
    if (!proof && signal == 0) look(interval);
}

bool Prover::working() {
    while (checker && signal == 0 && (finding().found || finding().never)) {
        end();
        begin();
    }
    return checker != nullptr;
}

void Prover::take() {
    const Proof came = proof.value_or(Proof{Proof::Kind::none, ""});
    const std::string source = checker->name();
    end(); // ahead of all that may end the process
    if (signal != 0) dieBy(signal);
    switch (came.kind) {
    case Proof::Kind::proved: prove(came.text, source); break;
    case Proof::Kind::refuted: refute(came.text, source); break;
    case Proof::Kind::none: setting.unproved(question, came.text); break;
    }
    ++question;
    begin();
}

void Prover::prove(const std::string& invariant, const std::string& source) {
    std::istringstream in(invariant);
    const Certificate certificate =
        certificateOf(model, readInvariant(in, "the certificate of " + source,
                                           static_cast<std::size_t>(model.totalNrVertBits)));
    const std::string fault = search.exclude({question}, certificate);
    if (!fault.empty()) error("the certificate of " + source + " proves nothing: " + fault);
}

void Prover::refute(const std::string& witness, const std::string& source) {
    std::istringstream in(witness);
    const CircuitShape shape{Choices(model).bits, static_cast<std::size_t>(model.totalNrVertBits)};
    const Path path =
        decodeChoices(model, readWitness(in, "the witness of " + source, shape).steps);
    const Transitions transitions(model);
    replay(Walk(transitions, path, finding().condition), names);
    search.offer(question, runOf(search.networkTables(), path));
}
