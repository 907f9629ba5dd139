// The command tervoxal-solve: the shortest path of a network that shows what is asked for.

#include "certificate/certificate.h"
#ifdef TERVOXAL_HAS_EXPAT
#include "contest/propertyfile.h"
#endif
#include "model/names.h"
#include "modelchecker/prover.h"
#include "paths/pathsearch.h"
#include "query/grammar.h"
#include "query/question.h"
#include "report/answers.h"
#include "report/progress.h"
#include "report/report.h"
#include "search/board.h"
#include "search/portfolio.h"
#include "system/command.h"
#include "system/filenames.h"
#include "system/interrupt.h"
#include "system/outputfile.h"
#include "system/pathlength.h"
#include "text/fatal.h"
#include "text/readable.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

using namespace tervoxal;

namespace {

using Clock = std::chrono::steady_clock;

const Command command{
    "tervoxal-solve",
    "NetworkFile [FormulaFile] [PathLen]",
    "Looks for the shortest path of 0 to PathLen steps, or of any length, on which the formula\n"
    "holds somewhere, and prints it. Both files are named without their \".in\". In place of\n"
    "FormulaFile, one of the options --ask, --deadlock, --questions and --actions tells what is\n"
    "asked. Once there is a path, it spends a few seconds on shorter ones. Ctrl-C (SIGINT) and\n"
    "SIGTERM end it with what is known by then, a second one at once.\n"
    "\n"
    "A question with temporal operators is about paths. If it speaks of all of them it is a claim\n"
    "about the initial state, and the path is one on which it fails.\n"
    "\n"
    "Exit status: 10 a path, replayed on the network; 20 no path of these lengths, or of any; 0 "
    "no\n"
    "answer in time; 1 an error. Of many questions: 10 a path to one; 20 none to any.\n",
    {{"ask", "EXPRESSION", "a question with names; as often as there are questions"},
     {"deadlock", "", "the same as --ask=deadlock"},
     {"questions", "FILE",
      "many at once, NAME: EXPRESSION in each line, or properties of a net (.xml);\n- is "
      "standard input; prints a table, as for several --ask"},
     {"contest", "", "with a table, print each verdict as the Model Checking Contest has it"},
     {"actions", "", "whether each action is ever possible; prints a table"},
     {"paths", "DIRECTORY", "write the paths of a table there"},
     {"any", "", "stop at the first path, which need not be the shortest"},
     {"least", "", "go on until the path is known to be the shortest"},
     {"follow", "", "with a table, print each verdict on standard output as it is known"},
     {"fair", "EXPRESSION",
      "an infinite path counts only if this holds again and again; as often as needed"},
     {"weakly-fair", "",
      "an infinite path counts only if no action stays possible and is never taken"},
     {"states", "NUMBER", "how many states are searched for a temporal question (10000000)"},
     {"time", "SECONDS", "end after SECONDS with what is known by then"},
     {"prove", "",
      "go on for a proof that there is no path of any length, with a model checker beside"},
     {"prove-time", "SECONDS", "likewise, for SECONDS at most (60)"},
     {"certificate", "FILE", "likewise, and write what the proof rests on into FILE"},
     {"certificates", "DIRECTORY", "the same of several questions, a file for each there"},
     {"format", "FORMAT",
      "text, json, vcd, dot or html, as tervoxal-path writes them (text);\n"
      "json has the whole table"},
     {"all", "", "show all automata, also those that stay"}},
    1,
    3,
    "EXPRESSION:\n" + grammarHelp(Grammar::ofPaths)};

/// What the call asks for.
struct Call {
    explicit Call(const CommandLine& line);

    bool many;
    bool formulaFile;
    Format format;
    long seconds;
    bool prove;
    bool follow;
    std::chrono::seconds proveSeconds;
    std::size_t states;
    Answers::Asked asked;
};

Call::Call(const CommandLine& line) {
    const std::array<const char*, 4> instead = {"ask", "deadlock", "questions", "actions"};
    const auto ways = std::ranges::count_if(instead, [&](auto option) { return line.has(option); });
    if (ways > 1) line.misused("one of --ask, --deadlock, --questions and --actions at a time");
    formulaFile = ways == 0;
    const bool length = line.operands.back().find_first_not_of("0123456789") == std::string::npos;
    if (formulaFile && line.operands.size() == 2 && length) {
        line.misused("the question is missing: FormulaFile, --ask, --deadlock, --questions or "
                     "--actions");
    }
    line.expect(formulaFile ? 2 : 1, true);
    many = line.has("questions") || line.has("actions") || line.all("ask").size() > 1;
    if (line.operands.size() == (formulaFile ? 3U : 2U)) {
        asked.lengths.to =
            static_cast<int>(line.numberIn(line.operands.back(), "PathLen", 0, greatestPathLength));
    }
    asked.lengths.any = line.has("any");
    if (line.has("any") && line.has("least")) line.misused("--any or --least");
    seconds = line.number("time", 1, greatestPathLength, 0);
    prove = line.has("prove") || line.has("prove-time") || line.has("certificate") ||
            line.has("certificates");
    proveSeconds = std::chrono::seconds(line.number("prove-time", 1, greatestPathLength, 60));
    states = static_cast<std::size_t>(line.number("states", 1, greatestPathLength, 10'000'000));
    if (line.has("certificate") && many) line.misused("--certificate is of one question");
    if (line.has("certificates") && !many) line.misused("--certificates needs several questions");
    format = askedFormat(line);
    follow = line.has("follow");
    if (follow && (!many || format.name == "json")) {
        line.misused("--follow needs several questions, and their table");
    }
    if (line.has("paths") && !many) line.misused("--paths needs several questions");
    if (many && format.name != "text" && format.name != "json" && !line.has("paths")) {
        line.misused("--format=" + format.name + " of many questions needs --paths");
    }
    asked.network = inputName(line.operands[0]);
    asked.all = line.has("all");
    asked.contest = line.has("contest");
    if (asked.contest && (!many || format.name == "json" || line.has("least"))) {
        line.misused("--contest needs several questions, and their table without --least");
    }
    if (asked.contest) follow = asked.lengths.any = true;
}

std::vector<Question> questionsOf(const CommandLine& line, const NetTimedModel& model,
                                  const Names& names) {
    if (line.has("deadlock")) return {expressionQuestion(model, names, "deadlock")};
    if (line.has("actions")) return actionQuestions(model, names);
    if (line.has("questions")) {
        const std::string file = line.value("questions", "");
        if (!file.ends_with(".xml")) return readQuestions(model, names, file);
#ifdef TERVOXAL_HAS_EXPAT
        return readProperties(model, names, inputName(line.operands[0]), file);
#else
        error(file + ": this " + command.name + " was built without expat, which reads XML");
#endif
    }
    if (line.has("ask")) return expressionQuestions(model, names, line.all("ask"));
    return {askedQuestion(model, names, line)};
}

/// Shows the one answer, with what is to say of it on standard error.
void show(const Call& call, const Answers& answers) {
    const Outcome outcome = answers.outcome(0);
    const bool asAsked = call.asked.lengths.any || answers.known(0).least();
    if (outcome.kind != Outcome::Kind::path || outcome.claim || !asAsked) {
        std::cerr << outcome.full() << '\n';
    }
    if (call.format.name == "json") {
        answers.showJsonAnswer(std::cout, 0);
    } else {
        answers.showPath(std::cout, 0, call.format.show);
    }
}

void showMany(const CommandLine& line, const Call& call, const Answers& answers,
              const Progress& progress) {
    if (call.format.name == "json") {
        answers.showJson(std::cout);
    } else {
        for (std::size_t q = 0; q < call.asked.questions.size(); ++q) {
            if (!call.follow || !progress.told(q)) std::cout << answers.line(q) << '\n';
        }
    }
    if (line.has("paths")) {
        answers.writePaths(line.value("paths", ""),
                           call.format.name == "text" ? "txt" : call.format.name, call.format.show);
    }
}

/// The file that takes what a proof rests on. An older one of that name is gone from the start, so
/// that none is taken for that of this call, and a file that cannot be written is told before the
/// search.
void beginCertificate(std::optional<OutputFile>& file, const std::string& name) {
    file.emplace(name);
    if (!file->writable()) error("cannot write " + name);
}

void writeCertificate(OutputFile& file, const std::string& name, const Answers& answers) {
    std::ostringstream text;
    answers.showCertificate(text, 0);
    file.write(text.view());
    if (!file.close()) error("cannot write " + name);
}

void makeDirectory(const std::string& name) {
    std::error_code problem;
    std::filesystem::create_directories(name, problem);
    if (problem) error("cannot make " + name + ": " + problem.message());
}

/// Every fairness that the call asks for is of all its questions.
void addFairness(std::vector<Question>& questions, const Fairness& fairness) {
    for (Question& question : questions) {
        std::vector<Condition>& own = question.fairness.conditions;
        own.insert(own.begin(), fairness.conditions.begin(), fairness.conditions.end());
        question.fairness.weak = fairness.weak;
    }
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
    addFairness(call.asked.questions, askedFairness(model, names, line));
    std::vector<Condition> conditions;
    std::vector<std::size_t> asked; // the questions that the conditions ask
    for (std::size_t q = 0; q < call.asked.questions.size(); ++q) {
        const Question& question = call.asked.questions[q];
        if (question.temporal || !question.unasked.empty()) continue;
        conditions.push_back(question.condition);
        asked.push_back(q);
    }

    for (const char* const option : {"paths", "certificates"}) {
        if (line.has(option)) makeDirectory(line.value(option, ""));
    }
    std::optional<OutputFile> certificate;
    if (line.has("certificate")) beginCertificate(certificate, line.value("certificate", ""));
    const FlatNetwork network(model);
    Board board(network, std::move(conditions),
                {call.asked.lengths.to, call.asked.lengths.any, line.has("least")});
    Answers answers(model, call.asked, names);
    Portfolio portfolio(board);
    std::ostream& verdicts = call.follow ? std::cout : std::cerr;
    Progress progress(call.asked, call.many ? &verdicts : nullptr);
    Interrupt interrupt;
    std::optional<Prover> prover;
    if (call.prove) {
        prover.emplace(board, names,
                       Prover::Setting{
                           call.proveSeconds, [&](std::size_t question, const std::string& why) {
                               progress.end();
                               std::cerr
                                   << "proof: "
                                   << (call.many ? call.asked.questions[asked[question]].name + ": "
                                                 : "")
                                   << why << '\n';
                           }});
    }
    const auto late = [&] {
        const bool over =
            call.seconds > 0 && Clock::now() >= begin + std::chrono::seconds(call.seconds);
        return over || interrupt.came() || (prover && prover->interrupted());
    };
    const auto learn = [&](std::size_t q) {
        Known& known = answers.known(asked[q]);
        known.refuted = board[q].refuted;
        known.settled = board.settled(q);
        known.unreachable = board[q].unreachable;
        known.certificate = board[q].certificate;
    };
    Board::Listener listener;
    listener.refuted = [&](std::span<const std::size_t> questions) {
        for (const std::size_t q : questions) {
            learn(q);
            progress.refuted(answers, asked[q]);
        }
    };
    listener.found = [&](std::size_t q) {
        learn(q);
        answers.known(asked[q]).path = pathOf(network, board[q].path);
        progress.found(answers, asked[q]);
    };
    listener.unreachable = [&](std::size_t q) {
        learn(q);
        progress.settled(answers, asked[q]);
    };
    listener.closed = listener.unreachable;
    bool ended = false;
    Clock::time_point looked = begin;
    // Asked so often that a look each time would cost a tenth of short queries.
    const auto over = [&](const auto& searching) {
        const Clock::time_point now = Clock::now();
        if (ended || now - looked < std::chrono::milliseconds(1)) return ended;
        looked = now;
        progress.live([&] { return searching.status(); });
        return ended = late();
    };
    Clock::time_point turnsEnd = Clock::time_point::max();
    listener.stop = [&] {
        return over(portfolio) || looked >= turnsEnd || (prover && prover->ready());
    };
    if (call.prove) {
        listener.proving = [&] {
            return prover->working() || Clock::now() < begin + call.proveSeconds;
        };
    }
    PathSearch paths(network, names, call.asked, answers, progress,
                     {call.states, line.has("least"), listener.proving});
    while (paths.open() && !late()) { // in turns, so that easy questions need not wait for others
        const auto share = paths.share();
        paths.turn([&] { return over(paths); });
        turnsEnd = Clock::now() + share;
        if (paths.open()) portfolio.run(listener);
    }
    paths.giveUp();
    turnsEnd = Clock::time_point::max();
    portfolio.run(listener);
    while (prover && prover->working() && !late()) {
        if (prover->ready()) {
            prover->take(listener);
            portfolio.run(listener);
        } else {
            prover->wait();
        }
    }
    progress.end();
    if (certificate && answers.known(0).certificate) {
        writeCertificate(*certificate, line.value("certificate", ""), answers);
    }
    if (line.has("certificates")) answers.writeCertificates(line.value("certificates", ""));

    if (call.many) {
        showMany(line, call, answers, progress);
    } else {
        show(call, answers);
    }
    return finished(answers.status());
}
