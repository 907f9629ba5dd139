#include "progress.h"

#include "amounts.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <numeric>
#include <unistd.h>

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
    const auto question = static_cast<std::size_t>(&finding - search.findings().data());
    if (table == nullptr) {
        end();
        say("a path of " + steps(finding.length()) + ", " + shown(Clock::now() - begin));
        end();
    } else if (search.settled(finding) && std::erase(open, question) > 0) {
        tell(answers.line(question));
    }
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
