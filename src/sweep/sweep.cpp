#include "sweep/sweep.h"

#include "programs/solverrun.h"
#include "system/filenames.h"
#include "system/filetext.h"
#include "text/amounts.h"

#include <array>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <sys/types.h>
#include <system_error>
#include <utility>

namespace tervoxal {

namespace {

namespace fs = std::filesystem;

// The files of one length, named as those of a run: what is kept, and what is not.
constexpr const char* answerSuffix = ".answer"; // what tervoxal-path reads
constexpr const char* logSuffix = ".log";       // what else the solver prints
constexpr std::array<const char*, 4> kept = {clauseSuffix, sideSuffix, answerSuffix, logSuffix};
constexpr const char* progressSuffix = ".progress"; // of tervoxal
constexpr const char* pathSuffix = ".path";
constexpr const char* refusalSuffix = ".refusal"; // what else tervoxal-path prints
constexpr std::array<const char*, 3> working = {progressSuffix, pathSuffix, refusalSuffix};

bool isThere(const fs::path& file) {
    std::error_code ignored;
    return fs::exists(file, ignored);
}

/// The run of one length.
struct Length {
    enum class Stage { translation, solver, path };

    long k;
    Stage stage;
    int solverStatus;
    std::chrono::steady_clock::time_point begin;
};

class Sweep {
public:
    Sweep(const Task& task, Children& children, const fs::path& directory)
        : task(task), children(children), directory(directory), next(task.from), last(task.to),
          unreported(task.from) {}

    [[nodiscard]] Result run();

private:
    [[nodiscard]] std::string name(long k, const char* suffix) const {
        return runName(task.network, std::to_string(k)) + suffix;
    }
    [[nodiscard]] fs::path file(long k, const char* suffix) const {
        return directory / name(k, suffix);
    }
    void startStage(const Length& length);
    [[nodiscard]] Launch launch(const Length& length) const;
    void endStage(Length length, int status);
    void settle(const Length& length, LengthVerdict verdict, const std::string& text);
    [[nodiscard]] std::string putAway(long k) const;
    void report();

    const Task& task;
    Children& children;
    const fs::path& directory;
    std::map<pid_t, Length> running;
    std::map<long, Result> results; // of the lengths from unreported on
    long next;
    long last;
    long unreported;
    std::set<std::string> warned;
};

Result Sweep::run() {
    while (next <= last || !running.empty()) {
        if (next <= last && running.size() < task.jobs) {
            startStage({next++, Length::Stage::translation, 0, std::chrono::steady_clock::now()});
            continue;
        }
        const ChildEvent event = children.wait();
        if (event.signal != 0) {
            std::set<pid_t> all;
            for (const auto& [child, length] : running) all.insert(child);
            children.end(all);
            return {LengthVerdict::none, {}, "", event.signal, {}};
        }
        const Length length = running.at(event.child);
        running.erase(event.child);
        endStage(length, event.status);
        report();
    }
    if (results.contains(last)) return results.at(last);
    return {LengthVerdict::none,
            {},
            "no path of " + (task.from < last ? std::to_string(task.from) + " to " : "") +
                steps(last) + "; this says nothing of longer ones",
            0,
            {}};
}

Launch Sweep::launch(const Length& length) const {
    const long k = length.k;
    switch (length.stage) {
    case Length::Stage::translation:
        return {{task.tervoxal, task.network, task.formula, std::to_string(k)},
                directory,
                "/dev/null",
                file(k, progressSuffix)};
    case Length::Stage::solver:
        return solverLaunch(task.solver, file(k, clauseSuffix), file(k, answerSuffix),
                            file(k, logSuffix));
    case Length::Stage::path: break;
    }
    return {{task.tervoxalPath, "--format=" + task.format, "--", task.network, task.formula,
             std::to_string(k), name(k, answerSuffix)},
            directory,
            file(k, pathSuffix),
            file(k, refusalSuffix)};
}

void Sweep::startStage(const Length& length) {
    const Launch child = launch(length);
    if (const pid_t pid = children.start(child); pid != 0) {
        running.emplace(pid, length);
    } else {
        settle(length, LengthVerdict::refused, notStarted(child));
    }
}

void Sweep::endStage(Length length, int status) {
    const long k = length.k;
    const auto noVerdict = [&](const std::string& why) {
        settle(length, LengthVerdict::refused, "k = " + std::to_string(k) + ": " + why);
    };

    switch (length.stage) {
    case Length::Stage::translation:
        if (const std::string line = lastMessage(file(k, progressSuffix));
            status == 1 && !line.empty()) {
            settle(length, LengthVerdict::refused, line);
        } else if (status != 0) {
            noVerdict(howEnded("tervoxal", status, file(k, progressSuffix)));
        } else if (!isThere(file(k, clauseSuffix)) || !isThere(file(k, sideSuffix))) {
            noVerdict("the clauses cannot be written in " + directory.parent_path().string());
        } else {
            length.stage = Length::Stage::solver;
            startStage(length);
        }
        return;
    case Length::Stage::solver:
        if (status != 0 && status != 10 && status != 20) {
            noVerdict(howEnded("the solver", status, file(k, logSuffix)));
        } else {
            length.solverStatus = status;
            length.stage = Length::Stage::path;
            startStage(length);
        }
        return;
    case Length::Stage::path: break;
    }
    if (status == 0) {
        noVerdict("the solver gives no answer");
    } else if (status == 1) {
        noVerdict("the solver's answer is refused: " + lastMessage(file(k, refusalSuffix)));
    } else if (status != 10 && status != 20) {
        noVerdict(howEnded("tervoxal-path", status, file(k, refusalSuffix)));
    } else if (length.solverStatus != 0 && length.solverStatus != status) {
        noVerdict("the solver ended with status " + std::to_string(length.solverStatus) +
                  ", but its output says otherwise");
    } else if (status == 20) {
        settle(length, LengthVerdict::none, "");
    } else {
        std::ifstream path(file(k, pathSuffix), std::ios::binary);
        settle(length, LengthVerdict::path, wholeText(path));
    }
}

void Sweep::settle(const Length& length, LengthVerdict verdict, const std::string& text) {
    Result& result = results[length.k];
    result = {verdict, std::chrono::steady_clock::now() - length.begin, text, 0, {}};
    for (const char* suffix : {progressSuffix, refusalSuffix}) {
        for (std::string& line : warnings(file(length.k, suffix))) {
            result.warnings.push_back(std::move(line));
        }
    }
    if (const std::string problem = putAway(length.k); !problem.empty()) {
        result.verdict = LengthVerdict::refused;
        result.text = problem;
    }
    if (result.verdict == LengthVerdict::none) return;
    last = length.k;
    std::set<pid_t> cancelled;
    for (const auto& [child, other] : running) {
        if (other.k > last) cancelled.insert(child);
    }
    children.end(cancelled);
    for (const pid_t child : cancelled) running.erase(child);
}

/// Keeps or removes the files of a length. Gives what went wrong, or an empty text.
std::string Sweep::putAway(long k) const {
    for (const char* suffix : kept) {
        if (task.keep.empty()) break;
        std::error_code problem;
        if (fs::exists(file(k, suffix), problem)) {
            fs::rename(file(k, suffix), task.keep / name(k, suffix), problem);
        }
        if (problem) {
            return "cannot keep " + (task.keep / name(k, suffix)).string() + ": " +
                   problem.message();
        }
    }
    std::error_code ignored;
    for (const char* suffix : kept) fs::remove(file(k, suffix), ignored);
    for (const char* suffix : working) fs::remove(file(k, suffix), ignored);
    return "";
}

/// Tells of the lengths below which none is open.
void Sweep::report() {
    for (; results.contains(unreported) && unreported <= last; ++unreported) {
        const Result& result = results.at(unreported);
        for (const std::string& warning : result.warnings) {
            if (warned.insert(warning).second) std::cerr << warning + '\n';
        }
        if (result.verdict == LengthVerdict::refused) return;
        const char* const verdict =
            result.verdict == LengthVerdict::path ? "SATISFIABLE, " : "UNSATISFIABLE, ";
        std::cerr << "k = " + std::to_string(unreported) + ": " + verdict + shown(result.time) +
                         '\n';
        if (result.verdict == LengthVerdict::path) return;
        results.erase(unreported);
    }
}

} // namespace

Result sweep(const Task& task, Children& children, const fs::path& directory) {
    return Sweep(task, children, directory).run();
}

} // namespace tervoxal
