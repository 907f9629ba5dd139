#include "lint/actionnotes.h"

#include "lint/listed.h"
#include "model/flatnetwork.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <span>
#include <tuple>
#include <utility>

namespace tervoxal {

namespace {

template <class Key>
std::string nameIn(const std::map<Key, std::string>& names, const Key& key) {
    const auto named = names.find(key);
    return named == names.end() ? "" : named->second;
}

/// Numbers that a slip makes of another one: the one before or after, two digits swapped.
std::vector<uint> nearTo(uint number) {
    std::vector<uint> near;
    if (number > 0) near.push_back(number - 1);
    near.push_back(number + 1);
    const std::string digits = std::to_string(number);
    for (std::size_t i = 0; i + 1 < digits.size(); ++i) {
        std::string swapped = digits;
        std::swap(swapped[i], swapped[i + 1]);
        uint other = 0;
        const char* const end = swapped.data() + swapped.size();
        const bool fits = std::from_chars(swapped.data(), end, other).ec == std::errc();
        if (fits && other != number && swapped.front() != '0') near.push_back(other);
    }
    return near;
}

class ActionNotes {
public:
    ActionNotes(const NetTimedModel& model, const Names& names, std::vector<ActionUse> all,
                Diagnostics& findings)
        : model(model), names(names), uses(std::move(all)), findings(findings) {
        std::ranges::sort(uses, {},
                          [](const ActionUse& use) { return std::tie(use.action, use.automaton); });
    }

    void noteLooks() const {
        const std::size_t total = model.actionAutomata.size();
        const auto named = static_cast<std::size_t>(
            std::ranges::count_if(model.actionAutomata, [&](const auto& action) {
                return names.actions.contains(action.first);
            }));
        const std::size_t unnamed = total - named;
        const bool namesAreUsual = named >= (unnamed == 1 ? 2 : 3 * unnamed);
        for (const ActionUse& use : uses) {
            if (model.actionAutomata.at(use.action).size() > 1) continue;
            const std::string alone = automaton(use.automaton) + ": action " +
                                      numbered(use.action, nameIn(names.actions, use.action)) +
                                      " is of this automaton alone";
            // An action without a number, which is 0, cannot have a name.
            if (namesAreUsual && use.action != 0 && !names.actions.contains(use.action)) {
                findings.note("unnamed-action", use.line,
                              alone + " and has no name, as " + std::to_string(named) + " of all " +
                                  std::to_string(total) + " actions have");
            }
            if (const auto other = meant(use)) {
                const std::set<uint>& automata = model.actionAutomata.at(*other);
                findings.note(
                    "near-number", use.line,
                    alone + ", is action " + numbered(*other, nameIn(names.actions, *other)) +
                        " meant, which is of " +
                        listed("automaton", "automata", {automata.begin(), automata.end()},
                               [&](uint a) { return nameIn(names.automata, a); }) +
                        '?');
            }
        }
    }

    void noteDead(const std::set<uint>& told) const {
        const FlatNetwork flat(model);
        for (auto use = uses.begin(); use != uses.end();) {
            const uint action = use->action;
            const auto end = std::ranges::find_if(
                use, uses.end(), [&](const ActionUse& other) { return other.action != action; });
            if (!flat.action(action) && !told.contains(action)) noteDead(flat, {use, end});
            use = end;
        }
    }

private:
    /// Tells of the first automaton that keeps a run from the action.
    void noteDead(const FlatNetwork& flat, std::span<const ActionUse> all) const {
        for (const ActionUse& use : all) {
            std::vector<uint> sources;
            for (const auto& [source, target] : model.actionEdges.at({use.automaton, use.action})) {
                const FlatNetwork::Place place = flat.place(use.automaton, source);
                if (place.always || place.location) {
                    sources.clear();
                    break;
                }
                if (sources.empty() || sources.back() != source) sources.push_back(source);
            }
            if (sources.empty()) continue;
            findings.note("dead-action", use.line,
                          "no run can take action " +
                              numbered(use.action, nameIn(names.actions, use.action)) + ": " +
                              automaton(use.automaton) + " does so in " +
                              listed("location", "locations", sources,
                                     [&](uint l) {
                                         return nameIn(names.locations, {use.automaton, l});
                                     }) +
                              " alone, where no run comes");
            return;
        }
    }

    /// The action that an automaton may have been meant to take in place of one that it alone has:
    /// it is shared, not by this automaton, or another automaton's under the same name. An action
    /// that has a name of its own is meant.
    [[nodiscard]] std::optional<uint> meant(const ActionUse& use) const {
        const std::string name = nameIn(names.actions, use.action);
        for (const uint other : nearTo(use.action)) {
            const auto found = model.actionAutomata.find(other);
            if (use.action == 0 || found == model.actionAutomata.end()) continue;
            if (found->second.contains(use.automaton)) continue;
            const bool same = !name.empty() && name == nameIn(names.actions, other);
            if (same || (name.empty() && found->second.size() > 1)) return other;
        }
        return {};
    }

    [[nodiscard]] std::string automaton(uint a) const {
        return "automaton " + numbered(a, nameIn(names.automata, a));
    }

    const NetTimedModel& model;
    const Names& names;
    std::vector<ActionUse> uses; // by action, then automaton
    Diagnostics& findings;
};

} // namespace

void noteActions(const NetTimedModel& model, const Names& names, std::vector<ActionUse> uses,
                 const std::set<uint>& told, Diagnostics& findings) {
    const ActionNotes notes(model, names, std::move(uses), findings);
    notes.noteLooks();
    notes.noteDead(told);
}

} // namespace tervoxal
