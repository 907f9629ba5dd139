// The command tervoxal-draw: a network as a picture.

#include "command.h"

int main(int argc, char* argv[]) {
    const Command command{
        "tervoxal-draw",
        "NetworkFile",
        "Writes the network NetworkFile.in as a DOT graph, which Graphviz draws.\n",
        {},
        1,
        1};
    const CommandLine line(command, argc, argv);
    return finished(0);
}
