#include "report/overview.h"

#include "model/symstate.h"
#include "report/jsonreport.h"
#include "system/pathlength.h"
#include "text/amounts.h"
#include "text/readable.h"

#include <algorithm>
#include <iomanip>
#include <map>
#include <set>
#include <string_view>
#include <vector>

namespace tervoxal {

namespace {

constexpr std::size_t mostRows = 20;
constexpr std::size_t mostInRow = 5;

/// What one automaton declares.
struct Size {
    uint number;
    std::size_t locations = 0;
    std::size_t transitions = 0;
    std::size_t actions = 0;
    std::size_t own = 0; // actions that no other automaton has
};

std::vector<Size> sizesOf(const NetTimedModel& model) {
    std::vector<Size> sizes;
    for (int a = 1; a <= model.nrOfAutomata; ++a) sizes.push_back({static_cast<uint>(a)});
    for (const auto& [location, vertex] : model.verts) ++sizes[location.first - 1].locations;
    for (const auto& [local, moves] : model.actionEdges) {
        Size& size = sizes[local.first - 1];
        size.transitions += moves.size();
        ++size.actions;
        if (model.actionAutomata.at(local.second).size() == 1) ++size.own;
    }
    return sizes;
}

/// The places that carry each proposition.
std::map<uint, std::vector<NetTimedModel::Location>> carriersOf(const NetTimedModel& model) {
    std::map<uint, std::vector<NetTimedModel::Location>> carriers;
    for (const auto& [location, prop] : model.valuation) carriers[prop].push_back(location);
    return carriers;
}

std::size_t actionsOfOne(const NetTimedModel& model) {
    return static_cast<std::size_t>(std::ranges::count_if(
        model.actionAutomata, [](const auto& action) { return action.second.size() == 1; }));
}

/// The most steps of a path that a run takes, 0 if it takes none.
int longestPath(const NetTimedModel& model) {
    if (model.totalNrVertBits == 0) return greatestPathLength;
    return std::max(0, mostVariables / model.totalNrVertBits - 1);
}

/// `1 lift`, or `1` without a name.
template <class Key>
std::string labelled(uint number, const std::map<Key, std::string>& names, const Key& key) {
    const auto name = names.find(key);
    return std::to_string(number) + (name == names.end() ? "" : ' ' + readable(name->second));
}

std::string counted(std::size_t n, const std::string& one, const std::string& many) {
    return std::to_string(n) + ' ' + (n == 1 ? one : many);
}

class TextOverview {
public:
    TextOverview(std::ostream& out, const Overview& overview)
        : out(out), model(overview.model), names(overview.names), all(overview.all) {}

    void showTotals(const std::string& network);
    void showStates(const StateCount& count);
    void showAutomata();
    void showActions();
    void showProps();

private:
    [[nodiscard]] std::string automaton(uint a) const { return labelled(a, names.automata, a); }

    /// The elements that are shown: all, or the largest ones by `size`.
    template <class Element, class SizeOf>
    void largest(std::vector<Element>& elements, const SizeOf& size) const {
        if (all || elements.size() <= mostRows) return;
        std::ranges::stable_sort(elements, std::ranges::greater(), size);
        elements.resize(mostRows);
    }
    void heading(const std::string& what, std::size_t shown, std::size_t total,
                 const std::string& order, const std::string& about) {
        if (total == 0) return;
        out << '\n' << what;
        if (shown < total) {
            out << ", " << shown << " of " << total << ", " << order << " first (--all shows all)";
        }
        out << about << '\n';
    }
    /// The elements in a row, or the first of them.
    template <class Elements, class TextOf>
    void showRow(const Elements& elements, const TextOf& text) {
        std::string_view before = ": ";
        std::size_t left = elements.size();
        for (const auto& element : elements) {
            if (!all && elements.size() - left == mostInRow && left > 1) {
                out << " and " << left << " others";
                break;
            }
            out << before << text(element);
            before = ", ";
            --left;
        }
        out << '\n';
    }

    std::ostream& out;
    const NetTimedModel& model;
    const Names& names;
    bool all;
};

void TextOverview::showTotals(const std::string& network) {
    const auto automata = static_cast<std::size_t>(model.nrOfAutomata);
    std::set<uint> props;
    for (const auto& [location, prop] : model.valuation) props.insert(prop);
    const std::size_t own = actionsOfOne(model);
    out << readable(network) << ": " << counted(automata, "automaton", "automata") << ", "
        << counted(model.verts.size(), "location", "locations") << ", "
        << counted(model.edges.size(), "transition", "transitions") << ", "
        << counted(model.actionAutomata.size(), "action", "actions")
        << (own == 0 ? "" : " (" + std::to_string(own) + " of one automaton alone)") << ", "
        << counted(props.size(), "proposition", "propositions") << '\n';
    const int longest = longestPath(model);
    out << counted(static_cast<std::size_t>(model.totalNrVertBits), "bit", "bits")
        << " in a state, so a run takes "
        << (longest == 0 ? "no path" : "paths of up to " + steps(longest)) << '\n';
}

void TextOverview::showStates(const StateCount& count) {
    if (!count.complete) {
        out << "more than " << counted(count.states, "reachable state", "reachable states") << '\n';
        return;
    }
    out << counted(count.states, "reachable state", "reachable states") << ", "
        << counted(count.steps, "step", "steps") << " between them, "
        << (count.deadlocks == 0 ? "no deadlock"
                                 : counted(count.deadlocks, "deadlock", "deadlocks"))
        << ", none further than " << steps(count.depth) << " from the initial state\n";
}

void TextOverview::showAutomata() {
    std::vector<Size> sizes = sizesOf(model);
    const std::size_t total = sizes.size();
    largest(sizes, [](const Size& s) { return std::pair(s.locations, s.transitions); });
    heading("automata", sizes.size(), total, "the largest",
            "; own actions are those that no other automaton has");
    if (!sizes.empty()) out << "  locations  transitions  actions  own\n";
    for (const Size& size : sizes) {
        out << std::setw(11) << size.locations << std::setw(13) << size.transitions << std::setw(9)
            << size.actions << std::setw(5) << size.own << "  " << automaton(size.number) << '\n';
    }
}

void TextOverview::showActions() {
    std::vector<std::pair<uint, const std::set<uint>*>> actions;
    for (const auto& [x, automata] : model.actionAutomata) actions.emplace_back(x, &automata);
    const std::size_t total = actions.size();
    largest(actions, [](const auto& action) { return action.second->size(); });
    heading("actions", actions.size(), total, "the most shared",
            "; all automata of an action take it together, * marks those of one alone");
    for (const auto& [x, automata] : actions) {
        out << (automata->size() == 1 ? "* " : "  ") << labelled(x, names.actions, x);
        showRow(*automata, [&](uint a) { return automaton(a); });
    }
}

void TextOverview::showProps() {
    const auto carriers = carriersOf(model);
    std::vector<uint> props;
    props.reserve(carriers.size());
    for (const auto& [p, places] : carriers) props.push_back(p);
    largest(props, [&](uint p) { return carriers.at(p).size(); });
    heading("propositions", props.size(), carriers.size(), "the most carried",
            "; each holds where an automaton is at a location that carries it");
    for (const uint p : props) {
        out << "  " << labelled(p, names.props, p);
        showRow(carriers.at(p), [&](const NetTimedModel::Location& place) {
            return automaton(place.first) + " at " + labelled(place.second, names.locations, place);
        });
    }
}

} // namespace

void showOverview(std::ostream& out, const Overview& overview) {
    TextOverview text(out, overview);
    text.showTotals(overview.network);
    if (overview.states) text.showStates(*overview.states);
    text.showAutomata();
    text.showActions();
    text.showProps();
}

void showJsonOverview(std::ostream& out, const Overview& overview) {
    const NetTimedModel& model = overview.model;
    const Names& names = overview.names;
    out << "{\"network\":" << jsonString(overview.network)
        << ",\n\"locations\":" << model.verts.size() << ",\n\"transitions\":" << model.edges.size()
        << ",\n\"bits\":" << model.totalNrVertBits << ",\n\"greatestK\":" << longestPath(model);
    if (const auto& count = overview.states) {
        out << ",\n\"states\":{\"complete\":" << (count->complete ? "true" : "false")
            << ",\"states\":" << count->states;
        if (count->complete) {
            out << ",\"steps\":" << count->steps << ",\"deadlocks\":" << count->deadlocks
                << ",\"depth\":" << count->depth;
        }
        out << '}';
    }
    out << ",\n\"automata\":[";
    Separator lines(",");
    for (const Size& size : sizesOf(model)) {
        out << lines.next() << "\n{\"number\":" << size.number
            << ",\"name\":" << jsonString(names.automaton(size.number))
            << ",\"locations\":" << size.locations << ",\"transitions\":" << size.transitions
            << ",\"actions\":" << size.actions << ",\"own\":" << size.own << '}';
    }
    out << "],\n\"actions\":[";
    lines = Separator(",");
    for (const auto& [x, automata] : model.actionAutomata) {
        out << lines.next() << "\n{\"number\":" << x << ",\"name\":" << jsonString(names.action(x))
            << ",\"automata\":[";
        Separator commas(",");
        for (const uint a : automata) out << commas.next() << a;
        out << "]}";
    }
    out << "],\n\"propositions\":[";
    lines = Separator(",");
    for (const auto& [p, places] : carriersOf(model)) {
        out << lines.next() << "\n{\"number\":" << p << ",\"name\":" << jsonString(names.prop(p))
            << ",\"carriers\":[";
        Separator commas(",");
        for (const auto& [a, l] : places) out << commas.next() << '[' << a << ',' << l << ']';
        out << "]}";
    }
    out << "]}\n";
}

} // namespace tervoxal
