// The command tervoxal: one run from a network, a formula and a path length to the output files.

#include "driver/freemem.h"
#include "system/filenames.h"
#include "system/pathlength.h"
#include "translation/tectltran.h"

#include <csignal>
#include <ctime>
#include <fstream>
#include <iostream>
#include <string>

using namespace tervoxal;

int main(int argc, char* argv[]) {
    // Whoever reads the report may stop reading, and a file may reach a size limit: the write then
    // fails like any other, and the run goes on.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    if (argc < 4) {
        std::cerr << "Usage : tervoxal NetworkFile FormulaFile PathLen\n";
        return 1;
    }
    const std::string networkFile = argv[1];
    const std::string formulaFile = argv[2];
    const std::string pathLen = argv[3];
    const int k = pathLength(pathLen);
    if (k <= 0) {
        std::cerr << "Length of path should be > 0\n";
        return 2;
    }

    const unsigned int freeMemory = getfreemem();
    const std::clock_t start = std::clock();
    std::cout << freeMemory << " bytes memory\n" << std::flush;

    NetTimedModel model;
    model.readNetwork(networkFile);
    model.compNrOfBits(k);
    std::cout << "Nodes: " << model.verts.size() << '\n';
    std::cout << "Edges: " << model.edges.size() << '\n';
    model.readFormula(formulaFile);
    std::cout << "Formula is read\n";

    EctlTransl translator(model, k);
    translator.checkEctlFormula(runName(networkFile, pathLen));

    std::cout << '\n';
    const double seconds = static_cast<double>(std::clock() - start) / 1000000.0;
    std::cout.precision(4);
    std::cout << seconds << '\n';
    const unsigned int memoryUsed = freeMemory - getfreemem();
    std::cout << "Memory used by Tervoxal : " << memoryUsed * 9.5367431640625e-07 << " Mb\n";

    std::ofstream timeFile(timeFileName, std::ios::app);
    if (!timeFile.is_open()) {
        std::cout << "Nie mozna otworzyc pliku " << timeFileName << '\n';
        return 1;
    }
    timeFile.precision(4);
    timeFile << seconds << '\n';
    return 0;
}
