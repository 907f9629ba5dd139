// The command tervoxal-draw: a network as a picture.

#include "model/names.h"
#include "report/picture.h"
#include "system/command.h"
#include "system/filenames.h"

#include <iostream>
#include <string>

using namespace tervoxal;

int main(int argc, char* argv[]) {
    const Command command{
        "tervoxal-draw",
        "NetworkFile",
        "Writes the network NetworkFile.in as a DOT graph, which Graphviz draws:\n"
        "'tervoxal-draw net | dot -Tsvg >net.svg'.\n",
        {},
        1,
        1};
    const CommandLine line(command, argc, argv);
    std::ios::sync_with_stdio(false);
    NetTimedModel model;
    Names names;
    const std::string network = inputName(line.operands[0]);
    readNamedNetwork(model, names, network);
    drawNetwork(std::cout, model, names, network);
    return finished(0);
}
