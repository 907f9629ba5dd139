#include "certificate/certificate.h"

#include "query/vocabulary.h"
#include "text/escapes.h"

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
        const std::string place = "at(" + automaton(a) + ", ";
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
    if (!certificate.alone) return;
    out << "# not met in any state of these automata alone, whatever the others do:\n";
    for (const uint a : *certificate.alone) out << "#     " << writer.automaton(a) << '\n';
}

} // namespace tervoxal
