#include "replay/sidefile.h"

#include "system/filenames.h"
#include "text/fatal.h"
#include "text/lines.h"
#include "text/scanner.h"

#include <fstream>
#include <vector>

namespace tervoxal {

namespace {

/// The four lines, each as its numbers.
class SideFile {
public:
    explicit SideFile(const std::string& name) : name(name), in(openInput(name)) {}

    std::vector<uint> numbers() {
        std::string line;
        std::vector<uint> all;
        if (!std::getline(in, line) || in.eof()) malformed();
        Scanner scanner(line);
        uint n = 0;
        while (scanner.number(n) == Found::number) all.push_back(n);
        if (!scanner.rest().empty()) malformed();
        return all;
    }
    uint number() {
        const std::vector<uint> one = numbers();
        if (one.size() != 1) malformed();
        return one.front();
    }
    void end() {
        if (in.peek() != std::ifstream::traits_type::eof()) malformed();
    }
    [[noreturn]] void malformed() const {
        refuseUnread(in, name);
        error(name + ": not a side file, or cut off");
    }
    [[noreturn]] void otherThan(const std::string& what, long found, long wanted) const {
        error(name + ": is of another run; " + what + ": " + std::to_string(found) +
              " in place of " + std::to_string(wanted));
    }

private:
    std::string name;
    std::ifstream in;
};

} // namespace

int readSideFile(const NetTimedModel& model, int k, const std::string& name) {
    SideFile file(name + sideSuffix);
    const auto automata = static_cast<long>(file.number());
    const std::vector<uint> bits = file.numbers();
    const auto length = static_cast<long>(file.number());
    const long variables = file.number();
    file.end();

    if (static_cast<long>(bits.size()) != automata) file.malformed();
    if (automata != model.nrOfAutomata) file.otherThan("automata", automata, model.nrOfAutomata);
    for (std::size_t a = 1; a <= bits.size(); ++a) {
        if (static_cast<int>(bits[a - 1]) != model.nrOfBits[a]) {
            file.otherThan("bits of automaton " + std::to_string(a), bits[a - 1],
                           model.nrOfBits[a]);
        }
    }
    if (length != k) file.otherThan("path length", length, k);
    const long most = (k + 1L) * model.totalNrVertBits;
    if (variables > most) {
        error(name + sideSuffix + ": state variable " + std::to_string(variables) + " of " +
              std::to_string(most));
    }
    return static_cast<int>(variables);
}

} // namespace tervoxal
