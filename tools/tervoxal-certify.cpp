// The command tervoxal-certify: what a certificate claims, as files of clauses for any solver.

#include "boolean/dimacs.h"
#include "certification/claims.h"
#include "certification/counterexample.h"
#include "model/names.h"
#include "programs/directories.h"
#include "programs/solveranswer.h"
#include "programs/solverrun.h"
#include "query/expressiontext.h"
#include "query/grammar.h"
#include "query/question.h"
#include "system/command.h"
#include "system/filenames.h"
#include "text/fatal.h"
#include "text/lines.h"
#include "text/readable.h"

#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

using namespace tervoxal;

namespace {

namespace fs = std::filesystem;

const Command command{
    "tervoxal-certify",
    "NetworkFile [FormulaFile] Certificate",
    "Writes what a certificate of tervoxal-solve claims as three files of clauses (DIMACS):\n"
    "\n"
    "  PREFIX.initial.cnf    the initial state is not where the certificate has all states\n"
    "  PREFIX.step.cnf       a step leads out of there\n"
    "  PREFIX.question.cnf   a state there meets what the certificate says is never met\n"
    "\n"
    "If none of them can be satisfied, the certificate proves it. They are written with the\n"
    "formulas of a run, and nothing of the search is needed. With --solver they are solved as\n"
    "well; the last line on standard output tells what comes out, and above it stands a state or\n"
    "a step that shows which claim fails.\n"
    "\n"
    "Exit status: 20 proved; 10 a claim fails; 0 the files are written, or a solver gave no\n"
    "answer; 1 an error.\n",
    {{"solver", "COMMAND",
      "solve them, as tervoxal-sweep runs a solver; as often as there are solvers, which\n"
      "have to agree; drat-trim checks the proofs of CaDiCaL where it is on the path"},
     {"output", "PREFIX",
      "where the files go (Certificate); without it, --solver makes them temporary"},
     {"ask", "EXPRESSION",
      "what has to be never met, in place of what the certificate says or of FormulaFile"},
     {"all", "", "show all automata of a state, also those that the failure does not speak of"}},
    2,
    3,
    "EXPRESSION:\n" + grammarHelp(Grammar::whole)};

constexpr std::size_t mostStatesAlone = 1000000;

/// The clauses of a claim in a file, and what solvers made of it.
struct Solved {
    int maxVar = 0; // the largest variable of a state that occurs
    std::vector<SolverRun> runs;
    std::string problem{}; // why there is no file
};

Solved solved(Claims& claims, Claim claim, const std::string& prefix,
              const std::vector<std::string>& solvers) {
    std::optional<TemporaryDirectory> directory;
    if (!solvers.empty()) directory.emplace(temporaryPlace(), command.name);
    const std::string name =
        prefix.empty() ? (directory->path / nameOf(claim)).string() : prefix + '.' + nameOf(claim);
    BoolForm::clear();
    const ClauseRange clauses = claims.violation(claim).clauses();
    showCNF(clauses, name);
    Solved result{clauses.maxVariable(), {}};
    std::error_code ignored;
    if (!fs::exists(name + clauseSuffix, ignored)) {
        result.problem = "cannot write " + name + clauseSuffix;
        return result;
    }
    if (solvers.empty()) return result;
    Children children;
    for (const std::string& solver : solvers) {
        result.runs.push_back(runSolver(children, solver, name + clauseSuffix, directory->path));
        if (result.runs.back().signal != 0 || !result.runs.back().problem.empty()) break;
    }
    return result;
}

void show(const Counterexample& shown, const NetTimedModel& model, const Names& names, bool all) {
    std::cout << "    " << readable(shown.what) << '\n';
    std::string before = "    action ";
    for (const uint x : shown.actions) {
        const auto name = names.actions.find(x);
        std::cout << before << x
                  << (name == names.actions.end() ? "" : ' ' + readable(name->second)) << '\n';
        before = "        or ";
    }
    std::vector<uint> automata = shown.automata;
    if (all || automata.empty()) {
        automata.clear();
        for (uint a = 1; a < model.nrOfBits.size(); ++a) automata.push_back(a);
    }
    for (const uint a : automata) {
        std::cout << "      " << readable(names.automaton(a)) << ": "
                  << readable(names.location(a, shown.states.front()[a]));
        if (shown.states.back()[a] != shown.states.front()[a]) {
            std::cout << " -> " << readable(names.location(a, shown.states.back()[a]));
        }
        std::cout << '\n';
    }
    const std::size_t left = model.nrOfBits.size() - 1 - automata.size();
    if (left > 0) {
        std::cout << "      left out: " << left << " of " << model.nrOfBits.size() - 1
                  << " automata; --all shows them\n";
    }
}

/// What the solvers say of a claim, told on standard output. Unsatisfiable if all do so.
SolverAnswer::Verdict verdictOf(const Certified& certified, const Names& names, Claim claim,
                                const Solved& solved, bool all) {
    using Verdict = SolverAnswer::Verdict;
    std::optional<Verdict> agreed;
    std::optional<Counterexample> found;
    for (const SolverRun& run : solved.runs) {
        const std::string who = nameOf(claim) + ": " + run.command + ": ";
        if (!run.problem.empty()) error(nameOf(claim) + ": " + run.problem);
        std::istringstream in(run.answer);
        const SolverAnswer answer = readAnswer(in, nameOf(claim) + ": " + run.command);
        const int status = answer.verdict == Verdict::satisfiable     ? 10
                           : answer.verdict == Verdict::unsatisfiable ? 20
                                                                      : 0;
        if (run.status != 0 && run.status != status) {
            error(who + "it ended with status " + std::to_string(run.status) +
                  ", but its output says otherwise");
        }
        const char* const verdict = status == 10   ? "satisfiable"
                                    : status == 20 ? "unsatisfiable"
                                                   : "no answer";
        std::cout << readable(who) << verdict << (run.checked ? ", checked by drat-trim" : "")
                  << '\n';
        if (status == 0) {
            if (!agreed) agreed = answer.verdict;
            continue;
        }
        if (agreed && *agreed != Verdict::unknown && *agreed != answer.verdict) {
            error(nameOf(claim) + ": the solvers do not agree");
        }
        agreed = answer.verdict;
        if (status == 20 || found) continue;
        const Transitions transitions(certified.network.model);
        found = counterexample(certified, transitions, claim, solved.maxVar, answer.literals);
        if (!found->what.empty()) continue;
        if (!answer.literals.empty()) error(who + "its model is none of the claim");
        found.reset(); // it tells none
    }
    if (found) show(*found, certified.network.model, names, all);
    return *agreed;
}

Condition neverOf(const CommandLine& line, const NetTimedModel& model, const Names& names,
                  const WrittenCertificate& certificate, const std::string& file) {
    if (line.has("ask") || line.operands.size() == 3) {
        return askedStateQuestion(model, names, line).condition;
    }
    if (!certificate.never) {
        error(file + ": error: it does not say what is never met; FormulaFile or --ask tells it");
    }
    return *certificate.never;
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine line(command, argc, argv);
    std::ios::sync_with_stdio(false);
    if (line.all("ask").size() > 1) line.misused("one --ask at a time");
    if (line.has("ask")) line.expect(2);
    const std::vector<std::string> solvers = line.all("solver");
    const std::string file = line.operands.back();
    const std::string prefix = line.value("output", solvers.empty() ? file : "");

    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, inputName(line.operands[0]));
    refuseVariables("a step", 2L * model.totalNrVertBits);
    std::ifstream in = openInput(file);
    const WrittenCertificate certificate = readCertificate(in, file, model, names);
    const Condition never = neverOf(line, model, names, certificate, file);
    const FlatNetwork network(model);
    std::optional<AloneSet> alone;
    if (certificate.alone) {
        alone = AloneSet::of(network, *certificate.alone, mostStatesAlone);
        if (!alone) {
            error(file + ": error: the automata that it lists have more than " +
                  std::to_string(mostStatesAlone) + " states, too many for clauses");
        }
    }
    const Certified certified{network, never, certificate, alone ? &*alone : nullptr};
    Claims claims(certified);

    using Verdict = SolverAnswer::Verdict;
    Verdict all = Verdict::unsatisfiable;
    for (const Claim claim : allClaims) {
        const Solved result = solved(claims, claim, prefix, solvers);
        if (!result.problem.empty()) error(result.problem);
        if (solvers.empty()) {
            std::cout << prefix << '.' << nameOf(claim) << clauseSuffix << '\n';
            continue;
        }
        const SolverRun& last = result.runs.back();
        if (last.signal != 0) dieBy(last.signal);
        const Verdict verdict = verdictOf(certified, names, claim, result, line.has("all"));
        if (verdict == Verdict::satisfiable || all == Verdict::unsatisfiable) all = verdict;
    }
    if (solvers.empty()) return finished(0);
    const std::string asked = readable("never " + ExpressionText(model, names).of(never));
    switch (all) {
    case Verdict::unsatisfiable: std::cout << asked << ": proved\n"; return finished(20);
    case Verdict::satisfiable: std::cout << asked << ": not proved\n"; return finished(10);
    case Verdict::unknown: break;
    }
    std::cout << asked << ": open\n";
    return finished(0);
}
