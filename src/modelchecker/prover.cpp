#include "modelchecker/prover.h"

#include "model/choices.h"
#include "model/layout.h"
#include "programs/aigerwitness.h"
#include "replay/transitions.h"
#include "replay/walk.h"
#include "text/fatal.h"
#include "translation/reachability.h"

#include <cassert>
#include <map>
#include <span>
#include <sstream>
#include <utility>

namespace tervoxal {

namespace {

constexpr std::chrono::milliseconds interval(10);

} // namespace

Certificate certificateOf(const NetTimedModel& model, const std::vector<Cube>& cubes) {
    const std::vector<uint> automatonOf = automataOfBits(model); // of each latch
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

Prover::Prover(Board& board, const Names& names, Setting setting)
    : board(board), model(board.network.model), names(names), setting(std::move(setting)) {
    begin();
}

/// With the question, or the next one that is of interest.
void Prover::begin() {
    while (question < board.size() && !ofInterest()) ++question;
    if (question == board.size()) return;
    BoolForm::clear();
    const Circuit circuit = reachability(model, board[question].condition);
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
    const ChildEvent event = children->wait(time);
    signal = event.signal;
    proof = checker->proof(event);
}

bool Prover::ready() {
    if (!checker) return false;
    if (!proof && signal == 0 && ofInterest() && Clock::now() - latest >= interval) {
        look(std::chrono::milliseconds(0));
    }
    return proof || signal != 0 || !ofInterest();
}

void Prover::wait() {
    assert(checker);
    if (!proof && signal == 0 && ofInterest()) look(interval);
}

void Prover::take(const Board::Listener& listener) {
    const std::optional<Proof> came = std::move(proof);
    const std::string source = checker->name();
    end(); // before all that may end the process
    if (came && ofInterest()) {
        board.tell(&listener);
        switch (came->kind) {
        case Proof::Kind::proved: prove(came->text, source); break;
        case Proof::Kind::refuted: refute(came->text, source); break;
        case Proof::Kind::none: setting.unproved(question, came->text); break;
        }
        board.tell(nullptr);
    }
    ++question;
    begin();
}

void Prover::prove(const std::string& invariant, const std::string& source) {
    std::istringstream in(invariant);
    const Certificate certificate =
        certificateOf(model, readInvariant(in, "the certificate of " + source,
                                           static_cast<std::size_t>(model.totalNrVertBits)));
    const std::string fault = board.exclude(std::span(&question, 1), certificate);
    if (!fault.empty()) error("the certificate of " + source + " proves nothing: " + fault);
}

void Prover::refute(const std::string& witness, const std::string& source) {
    std::istringstream in(witness);
    const CircuitShape shape{Choices(model).bits, static_cast<std::size_t>(model.totalNrVertBits)};
    const Path path =
        decodeChoices(model, readAigerWitness(in, "the witness of " + source, shape).steps);
    const Transitions transitions(model);
    replay(Walk(transitions, path, board[question].condition), names);
    board.offer(runOf(board.network, path));
}

} // namespace tervoxal
