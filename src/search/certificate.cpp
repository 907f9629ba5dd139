#include "certificate.h"

#include "conditionliterals.h"
#include "escapes.h"
#include "solver.h"
#include "unrolling.h"
#include "vocabulary.h"

#include <map>
#include <utility>

namespace {

/// A certificate in an unrolling.
class Checked {
public:
    /// From the initial state, or else from any.
    Checked(const Tables& tables, const Certificate& certificate, bool initial)
        : tables(tables), certificate(certificate),
          unrolling(tables, solver, Scope{Steps::serial, initial}), literals(unrolling, solver) {}

    void leaveSets() {
        for (const int set : setsAt(0)) solver.add({-set});
    }
    [[nodiscard]] bool meetsSet() { return possible(literals.some(setsAt(unrolling.depth()))); }
    [[nodiscard]] bool meets(const Condition& condition) {
        return possible(literals.literal(condition, 0));
    }
    void step() { unrolling.step(); }

private:
    [[nodiscard]] bool possible(int literal) {
        solver.assume(literal);
        return solver.solve(-1) == Solver::Verdict::satisfiable;
    }

    /// A literal for each set at the position.
    std::vector<int> setsAt(int position) {
        std::map<Certificate::Places, int> known;
        std::vector<int> sets;
        for (const Certificate::Set& set : certificate.sets) {
            std::vector<int> outside;
            for (const Certificate::Places& places : set) {
                const auto [literal, first] = known.try_emplace(places, 0);
                if (first) literal->second = placesAt(places, position);
                outside.push_back(-literal->second);
            }
            sets.push_back(-literals.some(std::move(outside)));
        }
        return sets;
    }

    [[nodiscard]] int placesAt(const Certificate::Places& places, int position) {
        std::vector<int> in;
        for (const uint location : places.locations) {
            const Tables::Place place = tables.place(places.automaton, location);
            if (place.always) in.push_back(unrolling.truth());
            if (place.location) in.push_back(unrolling.location(position, *place.location));
        }
        return literals.some(std::move(in));
    }

    const Tables& tables;
    const Certificate& certificate;
    Solver solver;
    Unrolling unrolling;
    ConditionLiterals literals;
};

} // namespace

std::string certificateFault(const Tables& tables, const Certificate& certificate,
                             const std::vector<const Condition*>& conditions) {
    Checked first(tables, certificate, true);
    if (first.meetsSet()) return "the initial state is in a set of states that it excludes";
    Checked any(tables, certificate, false);
    any.leaveSets();
    for (const Condition* condition : conditions) {
        if (any.meets(*condition)) return "what is asked holds in a state that it does not exclude";
    }
    any.step();
    if (any.meetsSet()) return "a step leads into a set of states that it excludes";
    return "";
}

namespace {

/// Expressions about where automata are.
class Writer {
public:
    Writer(const NetTimedModel& model, const Names& names)
        : vocabulary(vocabularyOf(model, names)), names(names) {}

    [[nodiscard]] std::string expression(const Certificate::Set& set) const {
        std::string text;
        for (const Certificate::Places& places : set) {
            text += (text.empty() ? "" : " & ") + expression(places);
        }
        return text.empty() ? "true" : text;
    }

private:
    /// The shorter of where it is and where it is not.
    [[nodiscard]] std::string expression(const Certificate::Places& places) const {
        std::vector<uint> in;
        std::vector<uint> out;
        for (const uint l : vocabulary.locations.at(places.automaton).numbers) {
            (places.has(l) ? in : out).push_back(l);
        }
        if (out.empty()) return "true";
        if (in.size() > out.size()) return "!(" + some(places.automaton, out) + ')';
        return in.size() == 1 ? some(places.automaton, in) : '(' + some(places.automaton, in) + ')';
    }

    [[nodiscard]] std::string some(uint a, const std::vector<uint>& locations) const {
        if (locations.empty()) return "false";
        const auto automaton = names.automata.find(a);
        const std::string place =
            "at(" + name(vocabulary.automata.named, automaton, names.automata.end(), a) + ", ";
        std::string text;
        for (const uint l : locations) {
            const auto location = names.locations.find({a, l});
            text += (text.empty() ? "" : " | ") + place +
                    name(vocabulary.locations.at(a).named, location, names.locations.end(), l) +
                    ')';
        }
        return text;
    }

    /// The name if it is given and no other one's, else the number.
    template <class Found>
    static std::string name(const Vocabulary::Named& named, Found found, Found end, uint number) {
        if (found == end || named.at(found->second).size() > 1) return std::to_string(number);
        return quoted(found->second);
    }

    const Vocabulary vocabulary;
    const Names& names;
};

} // namespace

void showCertificate(std::ostream& out, const NetTimedModel& model, const Names& names,
                     const Certificate& certificate) {
    const Writer writer(model, names);
    for (std::size_t i = 0; i < certificate.sets.size(); ++i) {
        out << i + 1 << ": " << writer.expression(certificate.sets[i]) << '\n';
    }
}
