// What a search tells as it goes: lines on standard error about lengths and paths, and the verdicts
// of a table as they are known. On a terminal the lines about what is refuted are one line that
// changes.

#pragma once

#include "report/answers.h"

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace tervoxal {

class Progress {
public:
    /// The time begins. The verdicts on many questions go to the table; of one question, for which
    /// it is null, the lengths of the paths are told.
    Progress(const Answers::Asked& asked, std::ostream* table);

    /// Longer lengths are refuted of some question.
    void refuted(const Answers& answers);
    /// Of a question a path, or a shorter one, is known.
    void found(const Answers& answers, std::size_t question);
    /// A question is known to be met by no path.
    void unreachable(const Answers& answers, std::size_t question);
    /// Closes the line that changes.
    void end();

private:
    using Clock = std::chrono::steady_clock;

    void say(const std::string& text);
    void tell(const std::string& line);

    const Answers::Asked& asked;
    std::ostream* table;
    Clock::time_point begin = Clock::now();
    bool moving;
    bool lineOpen = false;
    int latest = -1;               // the greatest length that was told as refuted
    std::vector<std::size_t> open; // questions whose verdict is not known yet
};

} // namespace tervoxal
