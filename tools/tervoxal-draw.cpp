// The command tervoxal-draw: a network as a picture.

#include "model/names.h"
#include "replay/path.h"
#include "replay/transitions.h"
#include "replay/walk.h"
#include "report/picture.h"
#include "report/report.h"
#include "system/command.h"
#include "system/filenames.h"

#include <iostream>
#include <string>

using namespace tervoxal;

namespace {

/// A page that begins in the initial state.
void drawPage(std::ostream& out, const NetTimedModel& model, const Names& names,
              const std::string& network) {
    const Transitions transitions(model);
    const Path path{0, initialState(model), {}};
    const Condition nothing{{{Condition::Term::falsity}}};
    showPage(out, {Walk(transitions, path, nothing), nothing, names, network, "", true});
}

} // namespace

int main(int argc, char* argv[]) {
    const Command command{
        "tervoxal-draw",
        "NetworkFile",
        "Writes the network NetworkFile.in as a DOT graph, which Graphviz draws:\n"
        "'tervoxal-draw net | dot -Tsvg >net.svg'; or as a page for a browser, in which steps are\n"
        "taken by hand: 'tervoxal-draw --format=html net >net.html'.\n",
        {{"format", "FORMAT", "dot or html (dot)"}},
        1,
        1};
    const CommandLine line(command, argc, argv);
    const std::string format = line.value("format", "dot");
    if (format != "dot" && format != "html") {
        line.misused("--format needs dot or html, not '" + format + "'");
    }
    std::ios::sync_with_stdio(false);
    NetTimedModel model;
    Names names;
    const std::string network = inputName(line.operands[0]);
    readNamedNetwork(model, names, network);
    if (format == "html")
        drawPage(std::cout, model, names, network);
    else
        drawNetwork(std::cout, model, names, network);
    return finished(0);
}
