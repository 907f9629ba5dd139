// The command tervoxal-solve: the shortest path of a network on which a formula holds.

#include "command.h"
#include "names.h"
#include "report.h"
#include "search.h"
#include "transitions.h"
#include "walk.h"

#include <chrono>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int greatestLength = 2147483647;

const Command command{
    "tervoxal-solve",
    "NetworkFile FormulaFile PathLen",
    "Looks for the shortest path of 0 to PathLen steps on which the formula holds somewhere, and\n"
    "prints it. Both files are named without their \".in\".\n"
    "\n"
    "Exit status: 10 a path, replayed on the network; 20 no path of these lengths, or of any; 0 no\n"
    "answer in time; 1 an error.\n",
    {{"any", "", "stop at the first path, which need not be the shortest"},
     {"time", "SECONDS", "end after SECONDS with what is known by then"},
     {"from", "K", "only paths of K steps or more (0)"},
     {"format", "FORMAT", "text, json, vcd or dot, as tervoxal-path writes them (text)"}},
    3,
    3};

std::string steps(int k) { return std::to_string(k) + (k == 1 ? " step" : " steps"); }

/// "no path of 0 to 17 steps".
std::string noneOf(int from, int to) {
    return "no path of " + (from < to ? std::to_string(from) + " to " : "") + steps(to);
}

/// Lines of progress on standard error. On a terminal those about what is refuted are one line that
/// changes.
class Progress {
public:
    void refuted(int from, int to) {
        if (to < from || to == told) return;
        told = to;
        say(noneOf(from, to) + ", " + seconds());
        if (!moving) end();
    }
    void found(int length) {
        end();
        say("a path of " + steps(length) + ", " + seconds());
        std::cerr << '\n';
        open = false;
    }
    /// Closes the line that changes.
    void end() {
        if (open) std::cerr << '\n';
        open = false;
    }

private:
    void say(const std::string& text) {
        std::cerr << (open ? "\r\033[K" : "") << text;
        open = true;
        if (moving) std::cerr.flush();
    }
    [[nodiscard]] std::string seconds() const {
        std::ostringstream text;
        text << std::fixed << std::setprecision(2)
             << std::chrono::duration<double>(Clock::now() - begin).count() << " s";
        return text.str();
    }

    Clock::time_point begin = Clock::now();
    bool moving = isatty(STDERR_FILENO) == 1;
    bool open = false;
    int told = -1;
};

/// The last word, and the status.
int verdict(const Search& search, const Search::Range& range) {
    const Finding& finding = search.findings()[0];
    if (finding.never) {
        std::cerr << "never, at any length: no path has more than " + steps(search.longest()) + '\n';
        return 20;
    }
    if (finding.found && finding.length() <= range.to) {
        if (!finding.least() && !range.any) {
            std::cerr << "a path of " + steps(finding.length()) +
                             ", not known to be the shortest\n";
        }
        return 10;
    }
    if (finding.refuted < range.to) {
        std::cerr << (finding.refuted < range.from
                          ? std::string("no length is decided")
                          : noneOf(range.from, finding.refuted) + ", longer ones not looked at") +
                         '\n';
        return 0;
    }
    std::cerr << noneOf(range.from, range.to) +
                     (finding.found ? "; there is one of " + steps(finding.length())
                                    : "; this says nothing of longer ones") +
                     '\n';
    return 20;
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine call(command, argc, argv);
    std::ios::sync_with_stdio(false);
    Search::Range range;
    range.to = static_cast<int>(call.numberIn(call.operands[2], "PathLen", 0, greatestLength));
    range.from = static_cast<int>(call.number("from", 0, range.to, 0));
    range.any = call.has("any");
    const long time = call.number("time", 1, greatestLength, 0);
    const std::string format = call.value("format", "text");
    const Show show = showOf(format);
    if (show == nullptr) {
        call.misused("--format needs text, json, vcd or dot, not '" + format + "'");
    }
    const std::string& network = call.operands[0];
    const std::string& formula = call.operands[1];
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(time);

    NetTimedModel model;
    Names names;
    readNamedNetwork(model, names, network);
    model.readFormula(formula);
    const Condition condition = conditionOf(*model.form);

    Progress progress;
    Search* running = nullptr;
    Search::Listener listener;
    listener.refuted = [&] { progress.refuted(range.from, running->findings()[0].refuted); };
    listener.found = [&](const Finding& finding) { progress.found(finding.length()); };
    if (time > 0) listener.stop = [&] { return Clock::now() >= deadline; };
    Search search(model, {condition}, range, listener);
    running = &search;
    search.run();
    progress.end();

    const int status = verdict(search, range);
    if (status == 10) {
        const Path path = pathOf(search.networkTables(), search.findings()[0].path);
        const Transitions transitions(model);
        const Walk walk(transitions, path, condition);
        replay(walk, names);
        show(std::cout, {walk, names, network, formula});
    }
    return finished(status);
}
