// What a model checker says, as the search takes it, against the states.

#include "modelchecker/prover.h"

#include "randomquestion.h"
#include "replay/property.h"
#include "search/certificatecheck.h"
#include "translation/reachability.h"

#include <algorithm>
#include <sstream>

namespace tervoxal {

namespace {

bool isIn(const Certificate& certificate, const State& state) {
    return std::ranges::any_of(certificate.sets, [&](const Certificate::Set& set) {
        return std::ranges::all_of(set, [&](const Certificate::Places& places) {
            return places.has(state[places.automaton]);
        });
    });
}

/// The states in which each automaton is where it could come to alone.
std::vector<State> statesOf(const FlatNetwork& tables) {
    std::vector<State> all = {initialState(tables.model)};
    for (const auto& [location, vertex] : tables.model.verts) {
        const auto& [a, l] = location;
        if (l == 0 || !tables.place(a, l).location) continue;
        const std::size_t before = all.size();
        for (std::size_t i = 0; i < before; ++i) {
            if (all[i][a] != 0) continue;
            all.push_back(all[i]);
            all.back()[a] = l;
        }
    }
    return all;
}

bool proves(const FlatNetwork& tables, const Certificate& certificate,
            const RandomQuestion& question) {
    if (isIn(certificate, initialState(tables.model))) return false;
    return std::ranges::all_of(statesOf(tables), [&](const State& state) {
        return isIn(certificate, state) ||
               (!question.holds(state) &&
                std::ranges::none_of(successors(tables.model, state),
                                     [&](const State& next) { return isIn(certificate, next); }));
    });
}

/// The invariant of a question that is never met.
std::string invariantOf(const NetTimedModel& model, const Condition& condition) {
    BoolForm::clear();
    Children children;
    ModelChecker checker(children, reachability(model, condition), std::chrono::seconds(60));
    std::optional<Proof> proof;
    while (!(proof = checker.proof(children.wait(std::chrono::milliseconds(10))))) {
    }
    EXPECT_EQ(proof->kind, Proof::Kind::proved) << proof->text;
    return proof->text;
}

/// A row less, a row more, or another value in a row.
std::vector<Cube> damaged(std::vector<Cube> cubes, std::size_t latches, Random& random) {
    const auto any = [&] { return Cube::Latch{random() % latches, random() % 2 == 0}; };
    if (cubes.empty() || random() % 3 == 0) {
        Cube cube;
        for (auto n = random() % 4; n > 0; --n) cube.latches.push_back(any());
        cubes.push_back(cube);
        return cubes;
    }
    const auto row = cubes.begin() + static_cast<std::ptrdiff_t>(random() % cubes.size());
    if (row->latches.empty() || random() % 2 == 0) {
        cubes.erase(row);
    } else {
        Cube::Latch& latch = row->latches[random() % row->latches.size()];
        latch.value = !latch.value;
    }
    return cubes;
}

} // namespace

TEST(Prover, agreesWithTheStates) {
    if (modelCheckerFile().empty()) GTEST_SKIP() << "no model checker on the path";
    int reached = 0;
    std::array<int, 2> stillProofs = {0, 0};
    for (uint seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const Scratch scratch;
        const std::string network = randomNetwork(random, 1 + random() % 4);
        scratch.write("net.in", network);
        NetTimedModel model;
        read(model, scratch.path / "net");
        Names names = namesOf(model);
        for (const auto& [location, vertex] : model.verts) {
            if (random() % 2 == 0) names.locations[location] = random() % 2 == 0 ? "\\\"\\" : "y";
        }
        const RandomQuestion question = randomQuestion(model, random, 4);
        SCOPED_TRACE(std::to_string(seed) + ' ' + question.text + '\n' + network);
        const Condition condition =
            expressionOf(question.text, vocabularyOf(model, names)).condition;

        const FlatNetwork tables(model);
        Board board(tables, {condition}, {.to = 0});
        Prover prover(board, names, {std::chrono::seconds(60), {}});
        while (prover.working()) {
            prover.wait();
            if (prover.ready()) prover.take({});
        }
        const Board::Entry& entry = board[0];
        const bool met = least(distances(model), question.holds) >= 0;
        reached += met ? 1 : 0;
        EXPECT_EQ(entry.found, met);
        EXPECT_EQ(entry.unreachable, !met);
        if (met) {
            State state = initialState(model);
            const Path path = pathOf(tables, entry.path);
            for (auto change = path.changes.begin(); change != path.changes.end();) {
                const State before = state;
                for (const int p = change->position;
                     change != path.changes.end() && change->position == p; ++change)
                    state[change->change.automaton] = change->change.target;
                EXPECT_FALSE(actionsBetween(model, before, state).empty());
            }
            EXPECT_TRUE(question.holds(state));
            continue;
        }
        // What was written says the same as expressions, and damaged certificates are no proofs.
        const auto latches = static_cast<std::size_t>(model.totalNrVertBits);
        std::istringstream in(invariantOf(model, condition));
        const std::vector<Cube> cubes = readInvariant(in, "invariant", latches);
        EXPECT_EQ(certificateFault(tables, certificateOf(model, cubes), {&condition}), "");
        std::stringstream lines;
        showCertificate(lines, model, names, *entry.certificate);
        std::string line;
        for (const Certificate::Set& set : entry.certificate->sets) {
            EXPECT_TRUE(std::getline(lines, line));
            const Expression expression =
                expressionOf(line.substr(line.find(": ") + 2), vocabularyOf(model, names));
            for (const State& state : statesOf(tables))
                EXPECT_EQ(holds(model, expression.condition, state), isIn({{set}}, state)) << line;
        }
        EXPECT_FALSE(std::getline(lines, line));
        for (int i = 0; i < 10 && latches > 0; ++i) {
            const Certificate certificate = certificateOf(model, damaged(cubes, latches, random));
            const bool proof = proves(tables, certificate, question);
            EXPECT_EQ(certificateFault(tables, certificate, {&condition}).empty(), proof);
            ++stillProofs.at(proof ? 1 : 0);
        }
    }
    EXPECT_NEAR(reached, 100, 50);
    EXPECT_GT(std::min(stillProofs[0], stillProofs[1]), 50);
}

} // namespace tervoxal
