#include "programs/aigerwitness.h"

#include "text/fatal.h"
#include "text/lines.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <string_view>
#include <utility>

namespace tervoxal {

namespace {

using Verdict = SolverAnswer::Verdict;

class WitnessReader {
public:
    WitnessReader(std::istream& in, const std::string& name, const CircuitShape& shape)
        : in(in), name(name), shape(shape) {}

    AigerWitness read() {
        readLines();
        std::size_t at = 0;
        Verdict verdict = Verdict::satisfiable;
        const bool head = lines.size() > 1 && lines[1].text.front() == 'b';
        if (head) {
            verdict = verdictOf(lines[0]);
            if (lines[1].text != "b0") refuse(lines[1], "the circuit has no property but b0");
            at = 2;
        }
        if (verdict != Verdict::satisfiable) {
            if (at < lines.size()) refuse(lines[at], "a witness, but the verdict is not 1");
            return {verdict, {}};
        }
        if (shape.latches > 0 && at < lines.size()) checkStart(lines[at++]);
        std::vector<std::string> steps;
        for (; at < lines.size(); ++at) {
            checkValues(lines[at], shape.inputs, "input", "inputs");
            steps.push_back(std::move(lines[at].text));
        }
        if (shape.inputs > 0 && steps.empty()) error(name + ": no witness; empty or cut off");
        if (head && !ended) error(name + ": cut off before the . at the end");
        if (!steps.empty()) steps.pop_back(); // the inputs at the end choose no step any more
        return {verdict, std::move(steps)};
    }

private:
    struct Line {
        long number;
        std::string text;
    };

    /// The lines that count, up to the end.
    void readLines() {
        Line line{0, ""};
        while (std::getline(in, line.text)) {
            ++line.number;
            const std::size_t mark = line.text.find('#');
            const std::string_view text = trimmed(std::string_view(line.text).substr(0, mark));
            if (text.empty() || text.front() == 'c') {
                ended = ended || mark != std::string::npos;
                continue;
            }
            if (ended) refuse(line, "after the end: '" + excerpt(text) + "'");
            ended = text == "." || mark != std::string::npos;
            if (text != ".") lines.push_back({line.number, std::string(text)});
        }
        refuseUnread(in, name);
    }

    [[nodiscard]] Verdict verdictOf(const Line& line) const {
        if (line.text == "0") return Verdict::unsatisfiable;
        if (line.text == "1") return Verdict::satisfiable;
        if (line.text == "2") return Verdict::unknown;
        refuse(line, "neither 0, 1 nor 2: '" + excerpt(line.text) + "'");
    }

    void checkValues(const Line& line, std::size_t count, const char* one,
                     const char* several) const {
        if (line.text.find_first_not_of("01x") != std::string::npos) {
            refuse(line, "values are 0, 1 or x: '" + excerpt(line.text) + "'");
        }
        if (line.text.size() != count) {
            refuse(line, "the circuit has " + std::to_string(count) + ' ' +
                             (count == 1 ? one : several) + ", not " +
                             std::to_string(line.text.size()));
        }
    }

    void checkStart(const Line& line) const {
        checkValues(line, shape.latches, "latch", "latches");
        const std::size_t set = line.text.find('1');
        if (set == std::string::npos) return;
        refuse(line, "latch " + std::to_string(set) + " is 0 at the start, not 1");
    }

    [[noreturn]] void refuse(const Line& line, const std::string& why) const {
        error(name + ", line " + std::to_string(line.number) + ": " + why);
    }

    std::istream& in;
    const std::string& name;
    const CircuitShape& shape;
    std::vector<Line> lines;
    bool ended = false;
};

} // namespace

AigerWitness readAigerWitness(std::istream& in, const std::string& name,
                              const CircuitShape& shape) {
    return WitnessReader(in, name, shape).read();
}

} // namespace tervoxal
