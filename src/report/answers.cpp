#include "report/answers.h"

#include "query/expressiontext.h"
#include "replay/allstates.h"
#include "replay/temporalreplay.h"
#include "replay/walk.h"
#include "report/jsonreport.h"
#include "system/outputfile.h"
#include "text/fatal.h"
#include "text/readable.h"

#include <algorithm>
#include <cassert>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

namespace tervoxal {

namespace {

/// Names of files, each once.
class FileNames {
public:
    std::string next(const std::string& question, std::size_t number) {
        constexpr std::size_t longest = 200;
        std::string name = question.substr(0, longest);
        std::replace_if(
            name.begin(), name.end(),
            [](char c) { return c == '/' || static_cast<unsigned char>(c) < ' ' || c == '\x7f'; },
            '_');
        if (name.front() == '.') name.front() = '_';
        while (!taken.insert(name).second) name += '_' + std::to_string(number);
        return name;
    }

private:
    std::set<std::string> taken;
};

std::string_view word(const Outcome& outcome) {
    switch (outcome.kind) {
    case Outcome::Kind::path: return outcome.claim ? "fails" : "path";
    case Outcome::Kind::never: return outcome.claim ? "holds" : "never";
    case Outcome::Kind::none: return "none";
    case Outcome::Kind::open: break;
    }
    return "open";
}

void showJsonVerdict(std::ostream& out, const Outcome& outcome) {
    out << R"("answer":")" << word(outcome) << R"(","verdict":)" << jsonString(outcome.brief());
}

} // namespace

Answers::Answers(const NetTimedModel& model, const Asked& asked, const Names& names)
    : asked(asked), names(names), transitions(model), all(asked.questions.size()) {
    for (std::size_t q = 0; q < all.size(); ++q) {
        all[q].claim = asked.questions[q].claim;
        all[q].open = asked.questions[q].unasked;
    }
}

Outcome Answers::outcome(std::size_t question) const {
    return outcomeOf(all[question], asked.lengths);
}

std::string Answers::line(std::size_t question) const {
    const Question& its = asked.questions[question];
    const Outcome outcome = this->outcome(question);
    if (!asked.contest) return its.name + ": " + outcome.brief();
    const std::string line = "FORMULA " + its.name;
    const bool path = outcome.kind == Outcome::Kind::path;
    if (!path && outcome.kind != Outcome::Kind::never) return line + " CANNOT_COMPUTE";
    return line + (path != outcome.claim ? " TRUE" : " FALSE") + " TECHNIQUES EXPLICIT" +
           (its.temporal && !all[question].observed ? "" : " SAT_SMT TOPOLOGICAL");
}

int Answers::status() const {
    bool open = false;
    for (std::size_t q = 0; q < asked.questions.size(); ++q) {
        const Outcome::Kind kind = outcome(q).kind;
        if (kind == Outcome::Kind::path) return 10;
        open = open || kind == Outcome::Kind::open;
    }
    return open ? 0 : 20;
}

/// Calls use with a walk along the path, where the verdict is one.
template <class Use>
void Answers::withPath(std::size_t question, Use&& use) const {
    if (outcome(question).kind != Outcome::Kind::path) return;
    const Path& path = *all[question].path;
    if (const auto& temporal = asked.questions[question].temporal) {
        const TemporalFormula formula = sought(*temporal);
        const Course course = courseOf(question, formula);
        use(Walk(transitions, path, course));
        return;
    }
    const Walk walk(transitions, path, asked.questions[question].condition);
    replay(walk, names);
    use(walk);
}

/// What the path shows that is the answer to a question about paths; replays it.
Course Answers::courseOf(std::size_t question, const TemporalFormula& formula) const {
    const Question& its = asked.questions[question];
    std::optional<AllStates> states;
    if (needsSeveralPaths(formula)) states.emplace(transitions.model, formula, its.fairness);
    const std::vector<MetPart> parts =
        replay(transitions, *all[question].path, names, formula, its.fairness,
               isClaim(*its.temporal), states ? &*states : nullptr);
    Course course{{}, namedAutomata(transitions.model, formula)};
    const ExpressionText text(transitions.model, names);
    for (const auto& [position, node] : parts) {
        course.parts[position].push_back(text.of(formula, node));
    }
    return course;
}

std::string Answers::shownFormula(std::size_t question) const {
    const Question& its = asked.questions[question];
    return its.temporal && isClaim(*its.temporal) ? "!(" + its.text + ')' : its.text;
}

void Answers::showTable(std::ostream& out) const {
    for (std::size_t q = 0; q < asked.questions.size(); ++q) out << line(q) << '\n';
}

void Answers::showJson(std::ostream& out) const {
    out << "{\"network\":" << jsonString(asked.network) << ",\n";
    showJsonNetwork(out, transitions.model, names);
    out << ",\n\"questions\":[";
    for (std::size_t q = 0; q < asked.questions.size(); ++q) {
        const Question& question = asked.questions[q];
        out << (q == 0 ? "" : ",") << "\n{\"name\":" << jsonString(question.name)
            << R"(,"expression":)" << jsonString(question.text) << ',';
        showJsonVerdict(out, outcome(q));
        withPath(q, [&](const Walk& walk) {
            out << ",\"k\":" << walk.length() << ',';
            showJsonEnd(out, walk);
            showJsonPositions(out, walk);
        });
        out << '}';
    }
    out << "]}\n";
}

void Answers::showJsonAnswer(std::ostream& out, std::size_t question) const {
    out << "{\"network\":" << jsonString(asked.network)
        << ",\n\"formula\":" << jsonString(asked.questions[question].text) << ",\n";
    showJsonVerdict(out, outcome(question));
    if (outcome(question).kind == Outcome::Kind::path) {
        out << ",\n\"k\":" << all[question].path->k;
    }
    out << ",\n";
    showJsonNetwork(out, transitions.model, names);
    withPath(question, [&](const Walk& walk) {
        out << ",\n";
        showJsonEnd(out, walk);
        showJsonPositions(out, walk);
    });
    out << "}\n";
}

void Answers::showPath(std::ostream& out, std::size_t question, Show show) const {
    withPath(question, [&](const Walk& walk) {
        const Question& of = asked.questions[question];
        show(out, {walk, of.condition, names, asked.network, shownFormula(question), asked.all});
    });
}

/// A file for each question of which show writes something into a stream.
template <class Show>
void Answers::writeFiles(const std::string& directory, const std::string& suffix,
                         Show&& show) const {
    FileNames fileNames;
    for (std::size_t q = 0; q < asked.questions.size(); ++q) {
        std::string file = directory;
        file += '/';
        file += fileNames.next(asked.questions[q].name, q + 1);
        file += '.';
        file += suffix;
        OutputFile out(file); // which removes that of an earlier call
        std::ostringstream text;
        show(text, q);
        if (text.view().empty()) continue;
        out.write(text.view());
        if (!out.close()) error("cannot write " + file);
    }
}

void Answers::writePaths(const std::string& directory, const std::string& suffix, Show show) const {
    writeFiles(directory, suffix,
               [&](std::ostream& out, std::size_t question) { showPath(out, question, show); });
}

void Answers::showCertificate(std::ostream& out, std::size_t question) const {
    assert(all[question].certificate);
    const Question& of = asked.questions[question];
    const bool claim = of.temporal && isClaim(*of.temporal);
    const ObservedNetwork* const observed = all[question].observed.get();
    out << "# network: " << readable(asked.network) << '\n'
        << (observed != nullptr ? std::string(observedHead) + '\n' : "")
        << (claim ? "# always: " : "# never: ")
        << (of.temporal ? readable(of.text)
                        : ExpressionText(transitions.model, names).of(of.condition))
        << '\n';
    tervoxal::showCertificate(out, observed != nullptr ? observed->model : transitions.model,
                              observed != nullptr ? observed->names : names,
                              *all[question].certificate);
}

void Answers::writeCertificates(const std::string& directory) const {
    writeFiles(directory, "proof", [&](std::ostream& out, std::size_t question) {
        if (all[question].certificate) showCertificate(out, question);
    });
}

} // namespace tervoxal
