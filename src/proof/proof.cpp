#include "proof.h"

#include "amounts.h"
#include "directories.h"

#include <fstream>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

bool hasLine(const fs::path& file, std::string_view part) {
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (line.find(part) != std::string::npos) return true;
    }
    return false;
}

} // namespace

Proof prove(const std::string& tervoxalAiger, const std::string& network,
            const std::string& formula, std::chrono::seconds limit, Children& children,
            const fs::path& directory) {
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    const std::string checker = onPath("berkeley-abc");
    if (checker.empty()) return {false, "the command and package berkeley-abc is missing", 0};
    // The checker splits its commands at blanks, so the name of its file is ours.
    const fs::path question = directory / "question.aig";
    const fs::path answer = directory / "question.proof";
    const fs::path log = directory / "question.log";
    const std::vector<Launch> steps = {
        {{tervoxalAiger, "--", network, formula}, directory, question, log},
        {{checker, "-c", "read_aiger question.aig; pdr"}, directory, answer, log}};
    for (const Launch& step : steps) {
        const pid_t child = children.start(step);
        if (child == 0) return {false, notStarted(step), 0};
        const Event event = children.wait(
            std::chrono::duration_cast<std::chrono::milliseconds>(begin + limit - Clock::now()));
        if (event.child == 0) {
            children.end({child});
            return {false, "no answer in " + std::to_string(limit.count()) + " s", event.signal};
        }
        if (event.status != 0) {
            const std::string name = fs::path(step.words.front()).filename();
            return {false, howEnded(name, event.status, log), 0};
        }
    }
    // It checks the invariant that it has found, and tells that apart from the verdict.
    const bool sound = !hasLine(answer, "erification failed");
    const std::string time = ", " + shown(Clock::now() - begin);
    if (sound && hasLine(answer, "Property proved.")) return {true, "proved" + time, 0};
    if (hasLine(answer, "was asserted in frame")) return {false, "refuted" + time, 0};
    return {false, "berkeley-abc does not tell", 0};
}
