#include "report/picture.h"

#include "report/report.h"
#include "text/amounts.h"
#include "text/readable.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace tervoxal {

namespace {

/// The steps that take a transition; of many the first ones.
struct Steps {
    static constexpr std::size_t most = 8;

    void add(int step) {
        latest = step;
        if (!numbers.empty() && numbers.back() == step) return;
        if (numbers.size() <= most) numbers.push_back(step);
    }
    [[nodiscard]] std::string text() const {
        std::string all = numbers.size() == 1 ? "step " : "steps ";
        for (std::size_t i = 0; i < std::min(most, numbers.size()); ++i) {
            all += (i > 0 ? ", " : "") + std::to_string(numbers[i]);
        }
        return all + (numbers.size() > most ? ", ..." : "");
    }

    std::vector<int> numbers; // ascending, one more than shown if there are more
    int latest = 0;           // of all
};

/// What a path leaves on the picture.
struct Trace {
    std::set<NetTimedModel::Location> visited;
    std::map<std::pair<uint, NetTimedModel::Move>, Steps> taken; // by automaton
    int loop = -1; // the position to which the path goes back, if it does

    /// Whether one of the steps is in the loop.
    [[nodiscard]] bool recurs(const Steps& steps) const { return loop >= 0 && steps.latest > loop; }
};

Trace traceOf(Walk walk) {
    Trace trace;
    trace.loop = walk.whole().loop.value_or(-1);
    const NetTimedModel& model = walk.model();
    for (uint a = 1; a < walk.state().size(); ++a) trace.visited.emplace(a, walk.state()[a]);
    std::map<uint, Steps> steps; // of each action
    while (walk.step()) {
        const uint action = walk.actions().front();
        steps[action].add(walk.position());
        auto change = walk.changes().begin();
        const Owners& owners = walk.transitions().owners;
        for (const Owners::Owner& owner : owners[owners.index(action)]) {
            const uint a = owner.automaton;
            const uint l = walk.state()[a];
            NetTimedModel::Move move(l, l);
            if (change != walk.changes().end() && change->automaton == a) {
                move.first = change->source;
                trace.visited.emplace(a, l);
                ++change;
            }
            trace.taken[{a, move}].add(walk.position());
        }
    }
    // The automata of one location, which take part without being owners.
    for (const auto& [action, numbers] : steps) {
        for (const uint a : model.actionAutomata.at(action)) {
            if (model.nrOfBits[a] != 0) continue;
            Steps& taken = trace.taken[{a, {0, 0}}];
            taken.latest = std::max(taken.latest, numbers.latest);
            std::vector<int>& all = taken.numbers;
            all.insert(all.end(), numbers.numbers.begin(), numbers.numbers.end());
            std::sort(all.begin(), all.end());
            all.resize(std::min(all.size(), Steps::most + 1));
        }
    }
    return trace;
}

/// A string of DOT that shows the lines as they are.
std::string label(const std::vector<std::string>& lines) {
    std::string literal = "\"";
    for (const std::string& line : lines) {
        if (&line != &lines.front()) literal += "\\n";
        for (const char c : readable(line)) {
            if (c == '"' || c == '\\') literal += '\\';
            literal += c;
            if (c == '&') literal += "amp;"; // Graphviz reads entities
        }
    }
    return literal + '"';
}

// Each machine has one of these fonts. Letters are equally wide in the first two.
constexpr std::string_view font = R"(fontname="Helvetica,Arial,sans-serif")";

/// Writes the graph, automaton by automaton. The trace is empty where there is no path.
class Picture {
public:
    Picture(std::ostream& out, const NetTimedModel& model, const Names& names, const Trace& trace)
        : out(out), model(model), names(names), trace(trace) {}

    void show(const std::string& title, const std::vector<uint>& automata) {
        std::vector<std::string> heading = {title};
        const auto leftOut = static_cast<std::size_t>(model.nrOfAutomata) - automata.size();
        if (leftOut > 0) {
            heading.push_back("left out: " + std::to_string(leftOut) + " of " +
                              std::to_string(model.nrOfAutomata) + " automata");
        }
        // From left to right, labels stay within the cluster of their arrow.
        out << "digraph " << label({title}) << " {\n"
            << "  graph [label=" << label(heading) << ", labelloc=t, rankdir=LR, nodesep=0.4, "
            << font << "]\n"
            << "  node [shape=box, style=rounded, fontsize=12, " << font << "]\n"
            << "  edge [fontsize=10, " << font << "]\n";
        // Graphviz stacks the clusters upward.
        for (auto a = automata.rbegin(); a != automata.rend(); ++a) showAutomaton(*a);
        out << "}\n";
    }

private:
    void showAutomaton(uint a) {
        out << "  subgraph cluster_" << a << " {\n"
            << "    label=" << label({names.automaton(a)}) << "; labeljust=l; margin=14;\n"
            << "    a" << a << " [shape=point, width=0.1];\n"
            << "    a" << a << " -> a" << a << "_0;\n";
        auto value = model.valuation.lower_bound({{a, 0}, 0});
        for (auto vertex = model.verts.lower_bound({a, 0});
             vertex != model.verts.end() && vertex->first.first == a; ++vertex) {
            std::vector<std::string> props;
            for (; value != model.valuation.end() && value->first == vertex->first; ++value) {
                props.push_back(shownProp(value->second));
            }
            showLocation(vertex->first, props);
        }
        std::map<NetTimedModel::Move, std::vector<std::string>> arrows;
        for (auto edge = model.edges.lower_bound({{a, 0}, {0, 0}});
             edge != model.edges.end() && edge->first.first.first == a; ++edge) {
            arrows[edge->first.second].push_back(names.action(edge->first.first.second));
        }
        for (auto& [move, lines] : arrows) showArrow(a, move, lines);
        out << "  }\n";
    }
    /// A number alone would be taken for that of the location.
    [[nodiscard]] std::string shownProp(uint p) const {
        return names.props.contains(p) ? names.prop(p) : 'p' + std::to_string(p);
    }
    void showLocation(const NetTimedModel::Location& location,
                      const std::vector<std::string>& props) {
        const auto& [a, l] = location;
        std::vector<std::string> lines = {names.location(a, l)};
        for (const std::string& prop : props) lines.push_back('{' + prop + '}');
        out << "    a" << a << '_' << l << " [label=" << label(lines);
        if (trace.visited.contains(location)) {
            out << R"(, style="rounded,filled", fillcolor="#cfe3f7")";
        }
        out << "];\n";
    }
    void showArrow(uint a, const NetTimedModel::Move& move, std::vector<std::string>& lines) {
        const auto taken = trace.taken.find({a, move});
        const bool recurs = taken != trace.taken.end() && trace.recurs(taken->second);
        if (taken != trace.taken.end()) {
            lines.push_back(taken->second.text() + (recurs ? ", again and again" : ""));
        }
        for (std::string& line : lines) line.insert(0, 1, ' ').append(1, ' '); // off the arrow
        if (move.first == move.second) lines.emplace_back(" ");                // above the loop
        out << "    a" << a << '_' << move.first << " -> a" << a << '_' << move.second
            << " [label=" << label(lines);
        if (taken != trace.taken.end()) {
            out << ", style=bold, color=" << (recurs ? R"("#b3541e")" : R"("#1f5fa8")");
        }
        out << "];\n";
    }

    std::ostream& out;
    const NetTimedModel& model;
    const Names& names;
    const Trace& trace;
};

} // namespace

namespace {

std::vector<uint> allAutomata(const NetTimedModel& model) {
    std::vector<uint> all(static_cast<std::size_t>(model.nrOfAutomata));
    std::iota(all.begin(), all.end(), 1U);
    return all;
}

/// Those that take part in a step or that the condition speaks of.
std::vector<uint> touchedAutomata(const Walk& walk, const Trace& trace) {
    std::set<uint> touched = walk.named();
    for (const auto& [taken, steps] : trace.taken) touched.insert(taken.first);
    return {touched.begin(), touched.end()};
}

} // namespace

void drawNetwork(std::ostream& out, const NetTimedModel& model, const Names& names,
                 const std::string& title) {
    Picture(out, model, names, {}).show(title, allAutomata(model));
}

void showDot(std::ostream& out, const Report& report) {
    const int length = report.start.length();
    const std::string title =
        report.network + ", path of " + steps(length) + whereItGoes(report.start.whole());
    const NetTimedModel& model = report.start.model();
    const Trace trace = traceOf(report.start);
    Picture(out, model, report.names, trace)
        .show(title, report.all ? allAutomata(model) : touchedAutomata(report.start, trace));
}

} // namespace tervoxal
