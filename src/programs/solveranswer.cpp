#include "programs/solveranswer.h"

#include "text/fatal.h"
#include "text/lines.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace tervoxal {

namespace {

using Verdict = SolverAnswer::Verdict;

std::optional<Verdict> verdictOf(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, Verdict>, 9> verdicts = {{
        {"s SATISFIABLE", Verdict::satisfiable},
        {"s UNSATISFIABLE", Verdict::unsatisfiable},
        {"s UNKNOWN", Verdict::unknown},
        {"SAT", Verdict::satisfiable},
        {"UNSAT", Verdict::unsatisfiable},
        {"INDET", Verdict::unknown},
        {"SATISFIABLE", Verdict::satisfiable},
        {"UNSATISFIABLE", Verdict::unsatisfiable},
        {"INDETERMINATE", Verdict::unknown},
    }};
    for (const auto& [form, verdict] : verdicts) {
        if (text == form) return verdict;
    }
    return std::nullopt;
}

class AnswerReader {
public:
    AnswerReader(std::istream& in, const std::string& name) : in(in), name(name) {}

    SolverAnswer read() {
        for (std::string line; std::getline(in, line);) {
            ++number;
            take(line);
        }
        refuseUnread(in, name);
        if (!verdict && gaveUp && !model) verdict = Verdict::unknown;
        if (!verdict && !model) error(name + ": no answer of a solver; empty or cut off");
        if (verdict.value_or(Verdict::satisfiable) != Verdict::satisfiable) {
            if (model) error(name + ": literals, but the verdict is not SATISFIABLE");
            return {*verdict, {}};
        }
        if (!model) error(name + ": SATISFIABLE, but no literals");
        if (!closed && (verdict || marked))
            error(name + ": cut off before the 0 after the literals");
        sortLiterals();
        return {Verdict::satisfiable, std::move(literals)};
    }

private:
    void take(std::string_view line) {
        std::string_view rest = line;
        const std::string_view first = takeWord(rest);
        if (first.empty()) return;
        if (first == "c") {
            gaveUp = gaveUp || takeWord(rest) == "UNKNOWN";
        } else if (first == "v") {
            marked = true;
            takeLiterals(rest);
        } else if (first.front() == '-' || (first.front() >= '0' && first.front() <= '9')) {
            takeLiterals(line);
        } else {
            takeVerdict(trimmed(line));
        }
    }

    void takeVerdict(std::string_view text) {
        const std::optional<Verdict> told = verdictOf(text);
        if (text == "b0") refuse("the witness of a model checker, which --witness takes");
        if (text.starts_with("WARNING: for repeatability") || text.starts_with("====")) {
            refuse("what MiniSat prints; its answer is in its result file, the second operand of "
                   "minisat");
        }
        if (!told) refuse("neither a verdict nor literals: '" + excerpt(text) + "'");
        if (verdict) refuse("a second verdict");
        verdict = told;
    }

    void takeLiterals(std::string_view text) {
        model = true;
        for (std::string_view word; !(word = takeWord(text)).empty();) {
            int literal = 0;
            if (wholeNumber(word, literal) != Found::number ||
                literal == std::numeric_limits<int>::min()) {
                refuse("not a literal: '" + excerpt(word) + "'");
            }
            if (closed) refuse("literals after the 0 that ends them");
            if (literal == 0) {
                closed = true;
            } else {
                literals.push_back(literal);
            }
        }
    }

    void sortLiterals() {
        const auto byVariable = [](int x, int y) {
            return std::abs(x) != std::abs(y) ? std::abs(x) < std::abs(y) : x < y;
        };
        if (!std::is_sorted(literals.begin(), literals.end(), byVariable)) {
            std::sort(literals.begin(), literals.end(), byVariable);
        }
        literals.erase(std::unique(literals.begin(), literals.end()), literals.end());
        const auto clash = std::adjacent_find(literals.begin(), literals.end(),
                                              [](int x, int y) { return x == -y; });
        if (clash != literals.end()) {
            error(name + ": both " + std::to_string(-*clash) + " and " + std::to_string(*clash));
        }
    }

    [[noreturn]] void refuse(const std::string& why) const {
        error(name + ", line " + std::to_string(number) + ": " + why);
    }

    std::istream& in;
    const std::string& name;
    long number = 0;
    std::optional<Verdict> verdict;
    bool model = false;  // literals, or the 0 at their end
    bool closed = false; // the 0 at their end
    bool marked = false; // a line that begins with "v"
    bool gaveUp = false; // a comment says so
    std::vector<int> literals;
};

} // namespace

SolverAnswer readAnswer(std::istream& in, const std::string& name) {
    return AnswerReader(in, name).read();
}

} // namespace tervoxal
