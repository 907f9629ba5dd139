// In which states of a state space conditions hold, 64 states at a time: a bit for each.
//
// An atom that names an automaton which is not among those of the state space, or the actions of
// such ones, is open in part: a state stands for all states of the network that differ from it in
// these automata only. So there are two answers, whether a condition may hold in a state and
// whether it must; with all automata they are the same.

#pragma once

#include "query/condition.h"
#include "statespace/statespace.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tervoxal {

class Labelling {
public:
    using Word = std::uint64_t;
    struct Label {
        Word may;
        Word must; // a subset
    };

    /// The state space must outlive it, and may grow.
    explicit Labelling(const StateSpace& space);

    /// Of the states from 64 * word on, the lowest bit first; of those that are not found yet, 0.
    /// Linear in the condition and the atoms that it shares with none that was asked of the same
    /// states just before. Precondition: the state 64 * word is found.
    [[nodiscard]] Label label(const Condition& condition, std::size_t word);

    /// Labels are an algebra for conditions and their atoms.
    [[nodiscard]] static Label constant(bool value) { return {Word(0) - value, Word(0) - value}; }
    [[nodiscard]] Label atom(const Condition::Token& token);
    [[nodiscard]] static Label negation(Label a) { return {~a.must, ~a.may}; }
    [[nodiscard]] static Label conjunction(Label a, Label b) {
        return {a.may & b.may, a.must & b.must};
    }
    [[nodiscard]] static Label disjunction(Label a, Label b) {
        return {a.may | b.may, a.must | b.must};
    }
    [[nodiscard]] Label located(uint location);
    [[nodiscard]] Label possible(uint action);
    [[nodiscard]] Label deadlock();
    [[nodiscard]] Label sum(const Condition::Token& token);
    template <class Value>
    [[nodiscard]] static Label some(std::size_t count, Value&& value) {
        Label label = constant(false);
        for (std::size_t i = 0; i < count && label.must != ~Word(0); ++i) {
            label = disjunction(label, value(i));
        }
        return label;
    }

private:
    /// What is known of the states at hand, if it was found for them.
    template <class Value>
    struct Cached {
        std::size_t round = 0;
        Value value{};
    };

    [[nodiscard]] Word column(uint slot, uint location);

    const StateSpace& space;
    std::size_t word = 0;
    std::size_t known = 0;              // states of the word that are found
    std::size_t round = 0;              // another one where the states at hand change
    std::vector<Cached<Word>> columns;  // by location of the state space
    std::vector<Cached<Label>> actions; // by action of the network, whether it is possible
    Cached<Label> stuck;
};

} // namespace tervoxal
