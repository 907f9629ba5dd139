// What has to be true so that a certificate proves that a condition is never met, as three formulas
// that nothing may satisfy. They are written with the initial state, the steps and the propositions
// of a run, and share nothing with a search.
//
// A state is inside if each automaton is where some run may come to (flatnetwork.h), no set of the
// certificate has it, and the automata that were searched alone are in one of their states.
//
//     initial     the initial state is not inside, or a sum of weights is greater in it than is
//     said step        a step leads from inside to a state that is not, but for what the sums
//     exclude;
//                 or it increases a sum
//     question    a state inside meets the condition; or a state of a set that a sum excludes has a
//                 sum that is not greater than at the start
//
// If nothing satisfies them, then all states of a run are inside and no sum is ever greater than
// said: by induction over the steps, where the third keeps the run out of the sets that sums
// exclude. So none meets the condition.
//
// State 0 owns the variables 1 to B, the bits of a state, and state 1 owns B + 1 to 2 B.

#pragma once

#include "certificate/writtencertificate.h"
#include "certification/aloneset.h"
#include "model/flatnetwork.h"
#include "translation/evaluation.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tervoxal {

enum class Claim { initial, step, question };

inline constexpr std::array<Claim, 3> allClaims = {Claim::initial, Claim::step, Claim::question};

/// "initial", "step", "question".
[[nodiscard]] std::string nameOf(Claim claim);

/// What a certificate is to prove, all of which must outlive it.
struct Certified {
    const FlatNetwork& network;
    const Condition& never;
    const WrittenCertificate& certificate;
    const AloneSet* alone; // the states of the automata that it lists, null if it lists none
};

class Claims {
public:
    /// Precondition, asserted: the bits of two states are variables of the store.
    explicit Claims(const Certified& certified);

    /// What satisfies it shows that the claim does not hold. Linear in the network and in the
    /// certificate, but for the bits of sums, of which it is quadratic.
    [[nodiscard]] BoolForm violation(Claim claim);

private:
    [[nodiscard]] BoolForm initial();
    [[nodiscard]] BoolForm step();
    [[nodiscard]] BoolForm question();
    [[nodiscard]] BoolForm possible(const SymState& state) const;
    [[nodiscard]] BoolForm aloneHolds(const SymState& state) const;
    [[nodiscard]] BoolForm inside(const SymState& state);
    [[nodiscard]] BoolForm inWeighed(const SymState& state);
    [[nodiscard]] BoolForm moved(const std::vector<uint>& automata) const;
    [[nodiscard]] BoolForm isGreater(const SymState& state, std::size_t sum);
    [[nodiscard]] BoolForm increases(std::size_t sum);

    const FlatNetwork& network;
    const NetTimedModel& model;
    const WrittenCertificate& certificate;
    const AloneSet* const alone;
    const std::array<SymState, 2> states;
    Evaluation never;
    Evaluation sets;
    std::vector<Evaluation> weighed;            // the sets of each sum
    std::vector<std::vector<Evaluation>> terms; // of each sum
};

} // namespace tervoxal
