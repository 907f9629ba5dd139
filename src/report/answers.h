// The answers to some questions about a network: a table of verdicts, and the paths, each replayed
// on the network before anything of it is shown.

#pragma once

#include "model/names.h"
#include "query/question.h"
#include "replay/transitions.h"
#include "replay/walk.h"
#include "report/outcome.h"
#include "report/report.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace tervoxal {

class Answers {
public:
    /// What was asked, and by which call.
    struct Asked {
        std::vector<Question> questions;
        Lengths lengths;
        std::string network;
        bool all = false;     // pictures show all automata
        bool contest = false; // lines are those of the Model Checking Contest
    };

    /// All have to outlive the answers. Nothing is known yet.
    Answers(const NetTimedModel& model, const Asked& asked, const Names& names);

    /// "NAME: path of 4 steps"; in the contest "FORMULA NAME TRUE TECHNIQUES ...".
    [[nodiscard]] std::string line(std::size_t question) const;
    [[nodiscard]] Outcome outcome(std::size_t question) const;
    /// What is known by now of a question, for who finds it out.
    [[nodiscard]] Known& known(std::size_t question) { return all[question]; }
    [[nodiscard]] const Known& known(std::size_t question) const { return all[question]; }
    /// Whether nothing is left to find out about the question.
    [[nodiscard]] bool settled(std::size_t question) const { return all[question].settled; }
    /// 10 if there is a path to some question, 20 if there is none to any, 0 if that is open.
    [[nodiscard]] int status() const;

    /// The lines of all questions.
    void showTable(std::ostream& out) const;
    /// One JSON object (RFC 8259) with all verdicts and paths.
    void showJson(std::ostream& out) const;
    /// One such object for one question, whatever its answer is.
    void showJsonAnswer(std::ostream& out, std::size_t question) const;
    /// The path that is the answer to a question. Ends the process like replay.
    void showPath(std::ostream& out, std::size_t question, Show show) const;
    /// Writes each path into the directory, as a file with the name of its question. A slash, a
    /// control character and a dot at the front become "_", and a name that another file has gets
    /// the number of the question. Ends the process with status 1 and one line on standard error
    /// where a file cannot be written, and like replay.
    void writePaths(const std::string& directory, const std::string& suffix, Show show) const;
    /// What the proof of an answer rests on, after the network and the question. Precondition,
    /// asserted: the question has a certificate.
    void showCertificate(std::ostream& out, std::size_t question) const;
    /// Writes each certificate into the directory, likewise with the ending .proof.
    void writeCertificates(const std::string& directory) const;

private:
    template <class Use>
    void withPath(std::size_t question, Use&& use) const;
    template <class Show>
    void writeFiles(const std::string& directory, const std::string& suffix, Show&& show) const;

    [[nodiscard]] Course courseOf(std::size_t question, const TemporalFormula& formula) const;
    [[nodiscard]] std::string shownFormula(std::size_t question) const;

    const Asked& asked;
    const Names& names;
    const Transitions transitions;
    std::vector<Known> all;
};

} // namespace tervoxal
