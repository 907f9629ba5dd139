#include "certificate/certificate.h"

#include "query/vocabulary.h"
#include "text/escapes.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <utility>

namespace tervoxal {

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

    [[nodiscard]] std::string automaton(uint a) const {
        const auto found = names.automata.find(a);
        return name(vocabulary.automata.named, found, names.automata.end(), a);
    }

    /// The weights as a sum, those of an automaton that are equal together, and what it is where
    /// all automata are in location 0.
    [[nodiscard]] std::string sum(const std::vector<Certificate::Weight>& weights) const {
        std::map<std::pair<uint, uint>, Certificate::Places> terms;
        std::uint64_t initially = 0;
        for (const auto& [automaton, location, weight] : weights) {
            if (location == 0) initially += weight;
            Certificate::Places& places = terms[{automaton, weight}];
            places.automaton = automaton;
            places.locations.push_back(location);
        }
        std::string text;
        for (const auto& [key, places] : terms) {
            text += (text.empty() ? "" : " + ") +
                    (key.second == 1 ? "" : std::to_string(key.second) + ' ') + expression(places);
        }
        return (text.empty() ? "0" : text) + " never increases, " + std::to_string(initially) +
               " at the start";
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
        std::string text;
        for (const uint l : locations) text += (text.empty() ? "" : " | ") + at(a, l);
        return text;
    }

    [[nodiscard]] std::string at(uint a, uint l) const {
        const auto found = names.locations.find({a, l});
        return "at(" + automaton(a) + ", " +
               name(vocabulary.locations.at(a).named, found, names.locations.end(), l) + ')';
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

std::vector<Certificate::Weighed> merged(std::vector<Certificate::Weighed> weighed) {
    std::ranges::stable_sort(weighed, {}, &Certificate::Weighed::weights);
    std::vector<Certificate::Weighed> all;
    for (Certificate::Weighed& next : weighed) {
        if (all.empty() || all.back().weights != next.weights) {
            all.push_back(std::move(next));
        } else {
            std::ranges::move(next.sets, std::back_inserter(all.back().sets));
        }
    }
    for (Certificate::Weighed& some : all) {
        std::ranges::sort(some.sets);
        some.sets.erase(std::unique(some.sets.begin(), some.sets.end()), some.sets.end());
    }
    return all;
}

void showCertificate(std::ostream& out, const NetTimedModel& model, const Names& names,
                     const Certificate& certificate) {
    const Writer writer(model, names);
    int number = 0;
    const auto show = [&](const std::vector<Certificate::Set>& sets) {
        for (const Certificate::Set& set : sets) {
            out << ++number << ": " << writer.expression(set) << '\n';
        }
    };
    for (const auto& [weights, sets] : certificate.weighed) {
        out << "# sum of weights: " << writer.sum(weights) << '\n';
        show(sets);
    }
    if (!certificate.weighed.empty() && !certificate.sets.empty()) {
        out << "# inductive relative to these:\n";
    }
    show(certificate.sets);
    if (certificate.states) {
        out << "# all states of the network were searched, twice: " << *certificate.states << '\n';
    }
    if (!certificate.alone) return;
    out << "# not met in any state of these automata alone, whatever the others do:\n";
    for (const uint a : *certificate.alone) out << "#     " << writer.automaton(a) << '\n';
}

} // namespace tervoxal
