#include "modelchecker/modelchecker.h"

#include "system/filetext.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tervoxal {

namespace {

namespace fs = std::filesystem;

/// What a file holds, nothing if it is missing.
std::string textOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return wholeText(in);
}

} // namespace

std::string modelCheckerFile() {
    for (const char* const name : {"berkeley-abc", "yosys-abc", "abc"}) {
        if (std::string file = onPath(name); !file.empty()) return file;
    }
    return "";
}

ModelChecker::ModelChecker(Children& children, const Circuit& circuit, std::chrono::seconds limit)
    : children(children), limit(limit), directory(temporaryPlace(), "tervoxal-solve") {
    if (file.empty()) {
        problem = "no model checker on the path: install the package berkeley-abc or yosys-abc";
        return;
    }
    std::ostringstream text;
    showAIGER(text, circuit, false);
    problem = writeFile(directory.path / "question.aig", text.str());
    if (!problem.empty()) return;
    // It splits its commands at blanks, so the names of its files are ours.
    const Launch launch{
        {file, "-c", "read_aiger question.aig; pdr -d -I invariant; write_cex -a witness"},
        directory.path,
        directory.path / "said",
        directory.path / "log"};
    child = children.start(launch);
    if (child == 0) problem = notStarted(launch);
}

ModelChecker::~ModelChecker() {
    if (child != 0) children.end({child});
}

std::string ModelChecker::name() const { return fs::path(file).filename(); }

std::optional<Proof> ModelChecker::proof(const ChildEvent& event) {
    if (!problem.empty()) return Proof{Proof::Kind::none, problem};
    if (event.child == child) {
        child = 0;
        return ended(event.status);
    }
    if (Clock::now() - begin < limit) return {};
    return Proof{Proof::Kind::none, "no answer in " + std::to_string(limit.count()) + " s"};
}

Proof ModelChecker::ended(int status) const {
    if (status != 0) return {Proof::Kind::none, howEnded(name(), status, directory.path / "log")};
    const std::string said = textOf(directory.path / "said");
    // The second is what newer versions tell of a formula that is false for all states.
    if (said.find("Property proved.") != std::string::npos ||
        said.find("All outputs solved") != std::string::npos) {
        return {Proof::Kind::proved, textOf(directory.path / "invariant")};
    }
    if (said.find("was asserted in frame") != std::string::npos) {
        return {Proof::Kind::refuted, textOf(directory.path / "witness")};
    }
    return {Proof::Kind::none, name() + " does not tell"};
}

} // namespace tervoxal
