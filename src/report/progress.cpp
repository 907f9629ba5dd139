#include "report/progress.h"

#include "text/amounts.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <numeric>
#include <unistd.h>

namespace tervoxal {

Progress::Progress(const Answers::Asked& asked, std::ostream* table)
    : asked(asked), table(table), moving(isatty(STDERR_FILENO) == 1), open(asked.questions.size()) {
    std::iota(open.begin(), open.end(), 0U);
}

void Progress::refuted(const Answers& answers) {
    if (open.empty()) return;
    int to = std::numeric_limits<int>::max();
    std::vector<std::size_t> rest;
    for (const std::size_t q : open) {
        to = std::min(to, answers.known(q).refuted);
        if (!answers.settled(q)) {
            rest.push_back(q);
        } else if (table != nullptr) {
            tell(answers.line(q));
        }
    }
    open.swap(rest);
    if (to < 0 || to == latest) return;
    latest = to;
    say("no path" + ofLengths(to) + ", " + shown(Clock::now() - begin));
    if (!moving) end();
}

void Progress::found(const Answers& answers, std::size_t question) {
    if (table == nullptr) {
        end();
        say("a path of " + steps(answers.known(question).path->k) + ", " +
            shown(Clock::now() - begin));
        end();
    } else if (answers.settled(question) && std::erase(open, question) > 0) {
        tell(answers.line(question));
    }
}

/// Told again where all lengths that are asked for were refuted before.
void Progress::unreachable(const Answers& answers, std::size_t question) {
    std::erase(open, question);
    if (table != nullptr) tell(answers.line(question));
}

void Progress::tell(const std::string& line) {
    end();
    *table << line << std::endl;
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
