#include "replay/alone.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_set>

namespace tervoxal {

namespace {

/// What is known of a truth value where not all automata are known.
struct Possible {
    bool may;
    bool must;
};

/// A state of the automata: the location of each, as an index of the network.
class Alone {
public:
    Alone(const FlatNetwork& network, std::span<const uint> automata);

    /// Calls use with each state that a step leads to.
    template <class Use>
    void forEachSuccessor(Use&& use) const;

    /// What holds in the state, as an algebra for conditions.
    static Possible constant(bool value) { return {value, value}; }
    [[nodiscard]] Possible atom(const Condition::Token& token) const;
    static Possible negation(Possible a) { return {!a.must, !a.may}; }
    static Possible conjunction(Possible a, Possible b) {
        return {a.may && b.may, a.must && b.must};
    }
    static Possible disjunction(Possible a, Possible b) {
        return {a.may || b.may, a.must || b.must};
    }

    State state;

private:
    /// The first move of a participant that is among the automata, if it can take part.
    [[nodiscard]] std::optional<uint> firstMove(uint participant, std::size_t slot) const;
    [[nodiscard]] Possible possible(uint action) const;
    [[nodiscard]] Possible at(uint automaton, uint location) const;
    [[nodiscard]] Possible sum(const Condition::Token& token) const;

    const FlatNetwork& network;
    std::vector<std::optional<std::size_t>> slots; // by automaton of the network
    std::vector<uint> actions;                     // that some of the automata take part in
};

Alone::Alone(const FlatNetwork& network, std::span<const uint> automata)
    : network(network), slots(network.automata.size()) {
    for (const uint a : automata) {
        slots[a] = state.size();
        state.push_back(network.locationsBegin(a));
    }
    for (uint x = 0; x < network.actions.size(); ++x) {
        bool among = false;
        for (const uint p : network.participantsOf(x)) {
            among = among || slots[network.participants[p].automaton].has_value();
        }
        if (among) actions.push_back(x);
    }
}

std::optional<uint> Alone::firstMove(uint participant, std::size_t slot) const {
    const auto begin = network.moves.begin() + network.movesBegin(participant);
    const auto end = network.moves.begin() + network.participants[participant].movesEnd;
    const auto move =
        std::ranges::lower_bound(begin, end, state[slot], {}, &FlatNetwork::Move::source);
    if (move == end || move->source != state[slot]) return {};
    return static_cast<uint>(move - network.moves.begin());
}

Possible Alone::possible(uint action) const {
    bool whole = true;
    for (const uint p : network.participantsOf(action)) {
        const auto slot = slots[network.participants[p].automaton];
        if (!slot) {
            whole = false;
        } else if (!firstMove(p, *slot)) {
            return constant(false);
        }
    }
    return {true, whole};
}

template <class Use>
void Alone::forEachSuccessor(Use&& use) const {
    for (const uint x : actions) {
        if (!possible(x).may) continue;
        std::vector<State> next = {state};
        for (const uint p : network.participantsOf(x)) {
            const auto slot = slots[network.participants[p].automaton];
            if (!slot) continue;
            std::vector<State> moved;
            for (uint m = *firstMove(p, *slot); m < network.participants[p].movesEnd; ++m) {
                if (network.moves[m].source != state[*slot]) break;
                for (State& s : next) {
                    s[*slot] = network.moves[m].target;
                    moved.push_back(s);
                }
            }
            next.swap(moved);
        }
        for (const State& s : next) use(s);
    }
}

Possible Alone::at(uint automaton, uint location) const {
    const FlatNetwork::Place place = network.place(automaton, location);
    if (!place.location) return constant(place.always);
    const auto slot = slots[network.locations[*place.location].automaton];
    if (!slot) return {true, false};
    return constant(state[*slot] == *place.location);
}

Possible Alone::sum(const Condition::Token& token) const {
    std::int64_t least = 0;
    std::int64_t most = 0;
    for (const auto& [part, weight] : *token.parts) {
        const Possible holds = atom(part);
        (weight > 0 ? most : least) += holds.may ? weight : 0;
        (weight > 0 ? least : most) += holds.must ? weight : 0;
    }
    return {most >= token.least, least >= token.least};
}

Possible Alone::atom(const Condition::Token& token) const {
    using Term = Condition::Term;
    if (token.term == Term::at) return at(token.number, token.location);
    if (token.term == Term::sum) return sum(token);
    Possible some = constant(false);
    if (token.term == Term::prop) {
        for (const auto& [a, l] : network.carriers(token.number))
            some = disjunction(some, at(a, l));
        return some;
    }
    if (token.term == Term::enabled) {
        const auto x = network.action(token.number);
        return x ? possible(*x) : constant(false);
    }
    for (uint x = 0; x < network.actions.size(); ++x) some = disjunction(some, possible(x));
    return negation(some);
}

/// A state as a key: the location of each automaton, counted from its first one, in as many bytes
/// as that of the most locations needs.
class Keys {
public:
    Keys(const FlatNetwork& network, std::span<const uint> automata) {
        for (const uint a : automata) {
            first.push_back(network.locationsBegin(a));
            while (bytes < 4 && network.locationsOf(a).size() > 1U << 8 * bytes) ++bytes;
        }
    }

    [[nodiscard]] std::string key(const State& state) const {
        std::string key;
        for (std::size_t slot = 0; slot < state.size(); ++slot) {
            for (std::size_t i = 0; i < bytes; ++i) {
                key += static_cast<char>((state[slot] - first[slot]) >> 8 * i & 0xffU);
            }
        }
        return key;
    }
    [[nodiscard]] State state(const std::string& key) const {
        State state = first;
        for (std::size_t i = 0; i < key.size(); ++i) {
            state[i / bytes] += uint{static_cast<unsigned char>(key[i])} << 8 * (i % bytes);
        }
        return state;
    }

private:
    State first;
    std::size_t bytes = 1;
};

} // namespace

bool metAlone(const FlatNetwork& network, std::span<const uint> automata,
              std::span<const Condition* const> conditions) {
    Alone alone(network, automata);
    const Keys keys(network, automata);
    std::unordered_set<std::string> known;
    std::vector<const std::string*> open; // in known, whose elements stay where they are
    const auto find = [&](const State& state) {
        const auto [key, isNew] = known.insert(keys.key(state));
        if (isNew) open.push_back(&*key);
    };
    find(alone.state);
    while (!open.empty()) {
        alone.state = keys.state(*open.back());
        open.pop_back();
        for (const Condition* condition : conditions) {
            if (valueOf(*condition, alone).may) return true;
        }
        alone.forEachSuccessor(find);
    }
    return false;
}

} // namespace tervoxal
