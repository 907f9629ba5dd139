// What a search tells as it goes: lines on standard error about lengths and paths, and the verdicts
// on many questions as they are known. On a terminal the lines about what is refuted are one line
// that changes, and once a second it tells what is being done.

#pragma once

#include "report/answers.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace tervoxal {

class Progress {
public:
    /// The time begins. The verdicts on many questions go to `verdicts`; of one question, for which
    /// it is null, the lengths of the paths are told.
    Progress(const Answers::Asked& asked, std::ostream* verdicts);

    /// What is known of a question has changed: a longer length is refuted, a path or a shorter one
    /// is known, or it is settled. A settled question is told once, and once more where it was
    /// settled by its lengths and is now known to be met by no path at all.
    void refuted(const Answers& answers, std::size_t question);
    void found(const Answers& answers, std::size_t question);
    void settled(const Answers& answers, std::size_t question);
    /// A sign of life. Asked often; on a terminal, `status` is called once a second for what is
    /// being done.
    void live(const std::function<std::string()>& status);
    /// Whether the verdict on a question was told as it was known.
    [[nodiscard]] bool told(std::size_t question) const { return !open[question]; }
    /// Closes the line that changes.
    void end();

private:
    using Clock = std::chrono::steady_clock;

    void say(const std::string& text);
    void tell(const std::string& line);

    const Answers::Asked& asked;
    std::ostream* verdicts;
    Clock::time_point begin = Clock::now();
    bool moving;
    Clock::time_point alive = begin;
    bool lineOpen = false;
    int latest = -1;        // the greatest length that was told as refuted
    std::vector<bool> open; // by question, whether its verdict is still to be told
    std::size_t left;       // open ones
};

} // namespace tervoxal
