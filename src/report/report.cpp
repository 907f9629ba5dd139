#include "report/report.h"

#include <map>
#include <numeric>
#include <set>

namespace tervoxal {

std::string whereItGoes(const Path& path) {
    if (path.loop) return ", goes on at state " + std::to_string(*path.loop);
    return path.ends ? ", ends: no action is possible" : "";
}

std::vector<uint> shownAutomata(const Report& report) {
    std::set<uint> shown = report.start.named();
    for (Walk walk = report.start; walk.step();) {
        for (const Change& change : walk.changes()) shown.insert(change.automaton);
    }
    if (!report.all && !shown.empty()) return {shown.begin(), shown.end()};
    std::vector<uint> all(static_cast<std::size_t>(report.start.model().nrOfAutomata));
    std::iota(all.begin(), all.end(), 1U);
    return all;
}

Format askedFormat(const CommandLine& line) {
    const std::map<std::string, Show> formats = {{"text", showText},
                                                 {"json", showJson},
                                                 {"vcd", showVcd},
                                                 {"dot", showDot},
                                                 {"html", showPage}};
    const std::string name = line.value("format", "text");
    const auto found = formats.find(name);
    if (found == formats.end()) {
        line.misused("--format needs text, json, vcd, dot or html, not '" + name + "'");
    }
    return {name, found->second};
}

} // namespace tervoxal
