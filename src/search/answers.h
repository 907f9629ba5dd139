// The answers that a search has found to some questions about a network: a table of verdicts, and
// the paths, each replayed on the network before anything of it is shown.

#pragma once

#include "names.h"
#include "outcome.h"
#include "question.h"
#include "report.h"
#include "search.h"
#include "transitions.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

class Answers {
public:
    /// What was asked, and by which call.
    struct Asked {
        std::vector<Question> questions; // those of the search, in its order
        Search::Range range;
        std::string network;
        bool all = false; // pictures show all automata
    };

    /// All have to outlive the answers. The search may still go on.
    Answers(const Asked& asked, const Search& search, const Names& names);

    /// "NAME: path of 4 steps".
    [[nodiscard]] std::string line(std::size_t question) const;
    [[nodiscard]] Outcome outcome(std::size_t question) const;
    /// Whether nothing is left to find out about the question.
    [[nodiscard]] bool settled(std::size_t question) const {
        return search.settled(search.findings()[question]);
    }
    /// 10 if there is a path to some question, 20 if there is none to any, 0 if that is open.
    [[nodiscard]] int status() const;

    /// The lines of all questions.
    void showTable(std::ostream& out) const;
    /// One JSON object (RFC 8259) with all verdicts and paths.
    void showJson(std::ostream& out) const;
    /// The path that is the answer to a question. Ends the process like replay.
    void showPath(std::ostream& out, std::size_t question, Show show) const;
    /// Writes each path into the directory, as a file with the name of its question. A slash, a
    /// control character and a dot at the front become "_", and a name that another file has gets
    /// the number of the question. Ends the process with status 1 and one line on standard error
    /// where a file cannot be written, and like replay.
    void writePaths(const std::string& directory, const std::string& suffix, Show show) const;

private:
    template <class Use>
    void withPath(std::size_t question, Use&& use) const;

    const Asked& asked;
    const Search& search;
    const Names& names;
    const Transitions transitions;
};
