// The command tervoxal-solve: the shortest path of a network to a state that is asked for.

#include "answers.h"
#include "certificate.h"
#include "command.h"
#include "fatal.h"
#include "filenames.h"
#include "names.h"
#include "outputfile.h"
#include "pathlength.h"
#include "progress.h"
#include "prover.h"
#include "question.h"
#include "readable.h"
#include "report.h"
#include "search.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

const Command command{
    "tervoxal-solve",
    "NetworkFile [FormulaFile] PathLen",
    "Looks for the shortest path of 0 to PathLen steps on which the formula holds somewhere, and\n"
    "prints it. Both files are named without their \".in\". In place of FormulaFile, one of the\n"
    "options --ask, --deadlock, --questions and --actions tells what is asked.\n"
    "\n"
    "Exit status: 10 a path, replayed on the network; 20 no path of these lengths, or of any; 0 "
    "no\n"
    "answer in time; 1 an error. Of many questions: 10 a path to one; 20 none to any.\n",
    {{"ask", "EXPRESSION", "a question with names, as tervoxal-formula takes it"},
     {"deadlock", "", "the same as --ask=deadlock"},
     {"questions", "FILE", "many at once, NAME: EXPRESSION in each line; prints a table"},
     {"actions", "", "whether each action is ever possible; prints a table"},
     {"paths", "DIRECTORY", "write the paths of a table there"},
     {"any", "", "stop at the first path, which need not be the shortest"},
     {"time", "SECONDS", "end after SECONDS with what is known by then"},
     {"prove", "",
      "go on for a proof that there is no path of any length, with a model checker beside"},
     {"prove-time", "SECONDS", "likewise, for SECONDS at most (60)"},
     {"certificate", "FILE", "likewise, and write what the proof rests on into FILE"},
     {"from", "K", "only paths of K steps or more (0)"},
     {"format", "FORMAT",
      "text, json, vcd or dot, as tervoxal-path writes them (text); json has\n"
      "the whole table"},
     {"all", "", "with dot, draw all automata"}},
    2,
    3};

/// What the call asks for.
struct Call {
    explicit Call(const CommandLine& line);

    bool many;
    bool formulaFile;
    std::string format;
    Show show;
    long seconds;
    bool prove;
    std::chrono::seconds proveSeconds;
    Answers::Asked asked;
};

Call::Call(const CommandLine& line) {
    const std::array<const char*, 4> instead = {"ask", "deadlock", "questions", "actions"};
    const auto ways = std::ranges::count_if(instead, [&](auto option) { return line.has(option); });
    if (ways > 1) line.misused("one of --ask, --deadlock, --questions and --actions at a time");
    formulaFile = ways == 0;
    line.expect(formulaFile ? 3 : 2);
    many = line.has("questions") || line.has("actions");
    Search::Range& range = asked.range;
    range.to =
        static_cast<int>(line.numberIn(line.operands.back(), "PathLen", 0, greatestPathLength));
    range.from = static_cast<int>(line.number("from", 0, range.to, 0));
    range.any = line.has("any");
    seconds = line.number("time", 1, greatestPathLength, 0);
    prove = line.has("prove") || line.has("prove-time") || line.has("certificate");
    proveSeconds = std::chrono::seconds(line.number("prove-time", 1, greatestPathLength, 60));
    if (line.has("certificate") && many) line.misused("--certificate is of one question");
    format = line.value("format", "text");
    show = showOf(format);
    if (show == nullptr) {
        line.misused("--format needs text, json, vcd or dot, not '" + format + "'");
    }
    if (line.has("paths") && !many) line.misused("--paths needs --questions or --actions");
    if (many && (format == "vcd" || format == "dot") && !line.has("paths")) {
        line.misused("--format=" + format + " of many questions needs --paths");
    }
    asked.network = inputName(line.operands[0]);
    asked.all = line.has("all");
}

std::vector<Question> questionsOf(const CommandLine& line, const NetTimedModel& model,
                                  const Names& names) {
    if (line.has("deadlock")) return {expressionQuestion(model, names, "deadlock")};
    if (line.has("actions")) return actionQuestions(model, names);
    if (line.has("questions")) return readQuestions(model, names, line.value("questions", ""));
    return {askedQuestion(model, names, line)};
}

/// Shows the one answer, with what is to say of it on standard error.
void show(const Call& call, const Answers& answers) {
    const Outcome outcome = answers.outcome(0);
    if (outcome.kind != Outcome::Kind::path || !answers.settled(0)) {
        std::cerr << outcome.full() << '\n';
    }
    answers.showPath(std::cout, 0, call.show);
}

void showMany(const CommandLine& line, const Call& call, const Answers& answers) {
    if (call.format == "json") {
        answers.showJson(std::cout);
    } else {
        std::cout << '\n';
        answers.showTable(std::cout);
    }
    if (line.has("paths")) {
        answers.writePaths(line.value("paths", ""), call.format == "text" ? "txt" : call.format,
                           call.show);
    }
}

/// What the proof rests on, if there is one.
void writeCertificate(const std::string& file, const Call& call, const Search& search,
                      const Names& names) {
    const Finding& finding = search.findings()[0];
    if (!finding.certificate) return;
    std::ostringstream text;
    text << "# " << readable(call.asked.network + ": never " + call.asked.questions[0].text)
         << '\n';
    showCertificate(text, search.networkTables().model, names, *finding.certificate);
    OutputFile out(file);
    out.write(text.view());
    if (!out.close()) error("cannot write " + file);
}

void makeDirectory(const std::string& name) {
    std::error_code problem;
    std::filesystem::create_directories(name, problem);
    if (problem) error("cannot make " + name + ": " + problem.message());
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine line(command, argc, argv);
    std::ios::sync_with_stdio(false);
    Call call(line);
    const Clock::time_point begin = Clock::now();

    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, call.asked.network);
    call.asked.questions = questionsOf(line, model, names);
    std::vector<Condition> conditions;
    for (const Question& question : call.asked.questions) conditions.push_back(question.condition);

    if (line.has("paths")) makeDirectory(line.value("paths", ""));
    std::ostream& table = call.format == "json" ? std::cerr : std::cout;
    Progress progress(call.asked, call.many ? &table : nullptr);
    const Answers* known = nullptr;
    const Search* running = nullptr;
    Search::Listener listener;
    listener.refuted = [&] { progress.refuted(*running, *known); };
    listener.found = [&](const Finding& finding) { progress.found(*running, *known, finding); };
    listener.proved = [&](const Finding& finding) { progress.proved(*running, *known, finding); };
    std::optional<Prover> prover;
    const auto late = [&] {
        return call.seconds > 0 && Clock::now() >= begin + std::chrono::seconds(call.seconds);
    };
    if (call.seconds > 0 || call.prove) {
        listener.stop = [&] { return late() || (prover && prover->ready()); };
    }
    if (call.prove) {
        listener.proving = [&] {
            return prover && (prover->working() || Clock::now() < begin + call.proveSeconds);
        };
    }
    Search search(model, std::move(conditions), call.asked.range, listener);
    const Answers answers(call.asked, search, names);
    running = &search;
    known = &answers;
    if (call.prove) {
        const std::vector<Question>& questions = call.asked.questions;
        prover.emplace(
            search, names,
            Prover::Setting{call.proveSeconds, [&](std::size_t question, const std::string& why) {
                                progress.end();
                                std::cerr << "proof: "
                                          << (call.many ? questions[question].name + ": " : "")
                                          << why << '\n';
                            }});
    }
    search.run();
    while (prover && prover->working() && !late()) {
        if (prover->ready()) {
            prover->take();
            search.run();
        } else {
            prover->wait();
        }
    }
    progress.end();
    if (line.has("certificate")) {
        writeCertificate(line.value("certificate", ""), call, search, names);
    }

    if (call.many) {
        showMany(line, call, answers);
    } else {
        show(call, answers);
    }
    return finished(answers.status());
}
