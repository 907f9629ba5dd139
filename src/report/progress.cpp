#include "report/progress.h"

#include "text/amounts.h"

#include <iostream>
#include <unistd.h>

namespace tervoxal {

Progress::Progress(const Answers::Asked& asked, std::ostream* verdicts)
    : asked(asked), verdicts(verdicts), moving(isatty(STDERR_FILENO) == 1),
      open(asked.questions.size(), true), left(open.size()) {}

void Progress::refuted(const Answers& answers, std::size_t question) {
    const int to = answers.known(question).refuted;
    if (verdicts != nullptr) {
        if (open[question] && answers.settled(question)) settled(answers, question);
    } else if (to > latest) {
        latest = to;
        say("no path" + ofLengths(to) + ", " + shown(Clock::now() - begin));
        if (!moving) end();
    }
}

void Progress::found(const Answers& answers, std::size_t question) {
    if (verdicts == nullptr) {
        end();
        say("a path of " + steps(answers.known(question).path->k) + ", " +
            shown(Clock::now() - begin));
        end();
    } else if (open[question] && answers.settled(question)) {
        settled(answers, question);
    }
}

void Progress::settled(const Answers& answers, std::size_t question) {
    if (open[question]) --left;
    open[question] = false;
    if (verdicts != nullptr) tell(answers.line(question));
}

void Progress::live(const std::function<std::string()>& status) {
    if (!moving || Clock::now() - alive < std::chrono::seconds(1)) return;
    alive = Clock::now();
    std::string text = shown(alive - begin) + ", ";
    if (verdicts != nullptr) {
        text += std::to_string(left) + " of " + std::to_string(asked.questions.size()) +
                " questions open, ";
    } else if (latest >= 0) {
        text += "no path" + ofLengths(latest) + ", ";
    }
    say(text + status());
}

void Progress::tell(const std::string& line) {
    end();
    *verdicts << line << std::endl;
}

void Progress::say(const std::string& text) {
    std::cerr << (lineOpen ? "\r\033[K" : "") << text;
    lineOpen = true;
    if (moving) std::cerr.flush();
}

void Progress::end() {
    if (lineOpen) std::cerr << '\n';
    lineOpen = false;
}

} // namespace tervoxal
