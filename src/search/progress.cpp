#include "progress.h"

#include "amounts.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <numeric>
#include <unistd.h>

namespace {

std::size_t indexOf(const Search& search, const Finding& finding) {
    return static_cast<std::size_t>(&finding - search.findings().data());
}

} // namespace

Progress::Progress(const Answers::Asked& asked, std::ostream* table)
    : asked(asked), table(table), moving(isatty(STDERR_FILENO) == 1), open(asked.questions.size()) {
    std::iota(open.begin(), open.end(), 0U);
}

void Progress::refuted(const Search& search, const Answers& answers) {
    if (open.empty()) return;
    int to = std::numeric_limits<int>::max();
    std::vector<std::size_t> rest;
    for (const std::size_t q : open) {
        const Finding& finding = search.findings()[q];
        to = std::min(to, finding.refuted);
        if (!search.settled(finding)) {
            rest.push_back(q);
        } else if (table != nullptr) {
            tell(answers.line(q));
        }
    }
    open.swap(rest);
    if (to < asked.range.from || to == latest) return;
    latest = to;
    say("no path" + ofLengths(asked.range.from, to) + ", " + shown(Clock::now() - begin));
    if (!moving) end();
}

void Progress::found(const Search& search, const Answers& answers, const Finding& finding) {
    const std::size_t question = indexOf(search, finding);
    if (table == nullptr) {
        end();
        say("a path of " + steps(finding.length()) + ", " + shown(Clock::now() - begin));
        end();
    } else if (search.settled(finding) && std::erase(open, question) > 0) {
        tell(answers.line(question));
    }
}

/// Told again where all lengths of the range were refuted before.
void Progress::proved(const Search& search, const Answers& answers, const Finding& finding) {
    const std::size_t question = indexOf(search, finding);
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
