// What a model checker answers by itself, without the search, which would mostly be faster:
// checkalone SECONDS NETWORK FORMULA PATHLEN [CERTIFICATE]. Tells it as tervoxal-solve does.

#include "certificate/certificate.h"
#include "modelchecker/prover.h"
#include "query/askedformula.h"
#include "report/outcome.h"

#include <fstream>
#include <iostream>

using namespace tervoxal;

int main(int argc, char* argv[]) {
    if (argc < 5) return 2;
    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, argv[2]);
    const FlatNetwork network(model);
    Board board(network, {readAskedFormula(model, argv[3]).condition}, {std::atoi(argv[4])});
    Prover prover(
        board, names,
        {std::chrono::seconds(std::atoi(argv[1])),
         [](std::size_t, const std::string& why) { std::cerr << "proof: " << why << '\n'; }});
    while (prover.working()) {
        prover.wait();
        if (prover.ready()) prover.take({});
    }
    const Board::Entry& entry = board[0];
    Known known{entry.refuted, {}, entry.unreachable, entry.certificate};
    if (entry.found) known.path = pathOf(network, entry.path);
    std::cerr << outcomeOf(known, {std::atoi(argv[4])}).full() << '\n';
    if (argc > 5 && entry.certificate) {
        std::ofstream out(argv[5]);
        showCertificate(out, model, names, *entry.certificate);
    }
    return 0;
}
