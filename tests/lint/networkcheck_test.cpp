// Networks with mistakes in known lines, one in an automaton: the check tells of each of them, in
// one go, and of nothing else.

#include "lint/networkcheck.h"

#include "network.h"

#include <regex>

namespace tervoxal {

namespace {

struct Mistake {
    std::string place; // of a line, as placesOf has it
    std::string text;  // what takes the place of the line
    std::string kind;
};

const std::string stuck = "the network makes no step";
/// The kinds that the tests of single automata leave out.
const std::set<std::string> ofActions = {"dead-action", "dead-end", "near-number",
                                         "unnamed-action"};

/// What is told of a network, with its name, lines and the kinds of notes.
std::string told(const Scratch& dir, const std::set<std::string>& without) {
    Diagnostics findings(without);
    const bool sound = checkNetwork(dir.path / "net.in", findings).taken;
    EXPECT_EQ(sound, !findings.refused());
    std::ostringstream out;
    findings.show(out, "");
    EXPECT_EQ(findings.empty(), out.str().empty());
    return out.str();
}

/// The same without the kinds.
std::string withoutKinds(const std::string& text) {
    return std::regex_replace(text, std::regex(R"( \[[a-z-]+\]( \(and .*)?\n)"), "$1\n");
}

std::vector<Mistake> mistakes() {
    std::ifstream in(TEST_DATA "/mistakes.tsv");
    std::vector<Mistake> all;
    std::string row;
    for (std::getline(in, row); std::getline(in, row);) {
        Mistake& m = all.emplace_back();
        std::istringstream fields(row);
        std::getline(std::getline(std::getline(fields, m.place, '\t'), m.text, '\t'), m.kind);
    }
    return all;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

/// What each line of a network is for.
std::vector<std::string> placesOf(const std::vector<std::string>& lines) {
    std::vector<std::string> places;
    std::string open; // what an "end" closes
    for (const std::string& line : lines) {
        const std::string word = line.substr(0, line.find(' '));
        if (line.empty() || line.front() == '#') {
            places.emplace_back();
        } else if (line == "end") {
            places.push_back(open + " end");
            open = open == "valuation" ? "automaton" : "";
        } else {
            places.push_back(open == "valuation" ? "value" : word);
            open = open == "valuation" ? open : word;
        }
    }
    return places;
}

/// The line with the mistake: $1, $2 stand for its numbers, and $* for all of them.
std::string with(const std::string& mistake, const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> numbers;
    for (std::string word; in >> word;) {
        if (std::isdigit(static_cast<unsigned char>(word.front())) != 0) numbers.push_back(word);
    }
    std::string text;
    for (std::size_t i = 0; i < mistake.size(); ++i) {
        if (mistake[i] != '$') {
            text += mistake[i];
        } else if (mistake[++i] == '*') {
            for (const std::string& n : numbers) text += (&n == &numbers.front() ? "" : " ") + n;
        } else {
            text += numbers.at(static_cast<std::size_t>(mistake[i] - '1'));
        }
    }
    return text;
}

} // namespace

TEST(NetworkCheck, tellsOfEachMistakeInItsLine) {
    const Scratch dir;
    const std::vector<Mistake> all = mistakes();
    ASSERT_GT(all.size(), 20U);
    std::vector<int> made(all.size(), 0);
    for (uint seed = 1; seed <= 800; ++seed) {
        Random random(seed);
        std::vector<std::string> lines = linesOf(randomNetwork(random, 1 + random() % 3));
        const auto check = [&] {
            std::string text;
            for (const std::string& line : lines) text += line + '\n';
            dir.write("net.in", text);
            return withoutKinds(told(dir, ofActions));
        };
        const std::vector<std::string> places = placesOf(lines);
        std::istringstream old(check()); // of locations that cannot be reached
        std::set<std::string> before;
        for (std::string line; std::getline(old, line);) before.insert(line);
        std::map<std::size_t, std::string> due;
        std::set<std::ptrdiff_t> damaged; // automata
        const auto automatonOf = [&](std::size_t line) {
            return std::count(places.begin(),
                              places.begin() + static_cast<std::ptrdiff_t>(line) + 1, "automaton");
        };
        for (int attempt = 0; attempt < 100; ++attempt) {
            const std::size_t at = random() % lines.size();
            const std::size_t which = random() % all.size();
            const Mistake& mistake = all[which];
            if (places[at] != mistake.place || !damaged.insert(automatonOf(at)).second) continue;
            lines[at] = with(mistake.text, lines[at]);
            due[at] = mistake.kind;
            ++made[which];
        }
        const std::string after = check();
        std::string text;
        for (const std::string& line : lines) text += line + '\n';
        SCOPED_TRACE(std::to_string(seed) + '\n' + text + after);
        std::istringstream findings(after);
        std::set<std::size_t> told;
        for (std::string line; std::getline(findings, line);) {
            const std::size_t at = std::stoul(line.substr(1)) - 1;
            const auto mistake = due.find(at);
            if (mistake == due.end()) {
                // Others may become unreachable where a transition is lost or has another action.
                EXPECT_TRUE(before.contains(line) || line.ends_with("cannot be reached") ||
                            line.ends_with("cannot be reached from location 0") ||
                            line.ends_with(stuck))
                    << line;
            } else if (line.find(": " + mistake->second + ": ") != std::string::npos) {
                told.insert(at);
            }
        }
        for (const std::string& line : before) {
            EXPECT_TRUE(damaged.contains(automatonOf(std::stoul(line.substr(1)) - 1)) ||
                        line.ends_with(stuck) || after.find(line + '\n') != std::string::npos)
                << line;
        }
        for (const auto& [at, kind] : due) EXPECT_TRUE(told.contains(at)) << "line " << at + 1;
    }
    for (std::size_t i = 0; i < all.size(); ++i) EXPECT_GT(made[i], 3) << all[i].text;
}

TEST(NetworkCheck, tellsWhatCannotBeReached) {
    const Scratch dir;
    std::size_t seen = 0;
    for (uint seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        const std::string network = randomNetwork(random, 1 + random() % 3);
        dir.write("net.in", network);
        NetTimedModel model;
        read(model, dir.path / "net");
        // The numbers in the warnings, as automaton, then locations, or automaton and action.
        std::multiset<std::vector<uint>> due;
        std::set<NetTimedModel::Location> reached;
        for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
            reached.insert({a, 0});
            for (std::size_t i = 0; i < model.edges.size(); ++i) {
                for (const auto& [edge, nothing] : model.edges) {
                    if (edge.first.first == a && reached.contains({a, edge.second.first}))
                        reached.insert({a, edge.second.second});
                }
            }
            std::vector<uint> lost = {a};
            for (uint l = 0; model.verts.contains({a, l}); ++l) {
                if (!reached.contains({a, l})) lost.push_back(l);
            }
            if (lost.size() > 1) due.insert(lost);
        }
        for (const auto& [local, moves] : model.actionEdges) {
            if (std::ranges::none_of(moves, [&, a = local.first](const auto& move) {
                    return reached.contains({a, move.first});
                })) {
                due.insert({local.first, local.second});
            }
        }
        const std::string text = withoutKinds(told(dir, ofActions));
        EXPECT_EQ(text.find(stuck) != std::string::npos,
                  std::ranges::none_of(model.actionAutomata, [&](const auto& action) {
                      return std::ranges::all_of(action.second, [&](uint a) {
                          return model.actionEdges.at({a, action.first}).begin()->first == 0;
                      });
                  }));
        std::istringstream lines(text);
        std::multiset<std::vector<uint>> found;
        for (std::string line; std::getline(lines, line);) {
            const std::size_t never = line.find(": it does so"); // or none, then the whole line
            if (line.ends_with(stuck)) continue;
            std::istringstream words(line.substr(0, never));
            std::vector<uint> numbers;
            bool quoted = false; // the automaton's name
            for (std::string word; words >> word;) {
                if (word.front() == '"') quoted = true;
                if (!quoted && std::isdigit(static_cast<unsigned char>(word.front())) != 0)
                    numbers.push_back(static_cast<uint>(std::stoul(word)));
                if (word.find_last_of('"') > 0 && word.find('"', 1) != std::string::npos)
                    quoted = false;
            }
            if (!line.ends_with("alone, which cannot be reached")) numbers.pop_back();
            found.insert(numbers);
        }
        EXPECT_EQ(found, due) << network << text;
        seen += due.size();
    }
    EXPECT_GT(seen, 100U);
}

TEST(NetworkCheck, tellsWhatNoRunTakesAndWhereAutomataEnd) {
    const Scratch dir;
    std::size_t dead = 0;
    std::size_t ends = 0;
    for (uint seed = 1; seed <= 400; ++seed) {
        Random random(seed);
        const std::string network = randomNetwork(random, 2 + random() % 3);
        dir.write("net.in", network);
        NetTimedModel model;
        read(model, dir.path / "net");
        // The rounds of actions whose automata all have come to a source, until none adds any.
        std::set<NetTimedModel::Location> reached;
        for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) reached.insert({a, 0});
        const auto ready = [&](uint a, uint x) {
            return std::ranges::any_of(model.actionEdges.at({a, x}), [&](const auto& move) {
                return reached.contains({a, move.first});
            });
        };
        const auto possible = [&](const auto& action) {
            return std::ranges::all_of(action.second,
                                       [&](uint a) { return ready(a, action.first); });
        };
        for (std::size_t size = 0; size != reached.size();) {
            size = reached.size();
            for (const auto& action : model.actionAutomata) {
                if (!possible(action)) continue;
                for (const uint a : action.second) {
                    for (const auto& [source, target] : model.actionEdges.at({a, action.first})) {
                        if (reached.contains({a, source})) reached.insert({a, target});
                    }
                }
            }
        }
        const std::string text = told(dir, {});
        SCOPED_TRACE(network + text);
        const bool makesSteps = text.find(stuck) == std::string::npos;
        for (const auto& action : model.actionAutomata) {
            const std::string number = std::to_string(action.first);
            const bool noted = std::regex_search(
                text, std::regex("(no run can take|can never take) action " + number + "\\b"));
            EXPECT_EQ(noted, !possible(action) && (noted || makesSteps)) << number;
            dead += noted ? 1 : 0;
        }
        for (uint a = 1; a <= static_cast<uint>(model.nrOfAutomata); ++a) {
            std::set<uint> sources;
            std::set<uint> targets = {0};
            for (const auto& [edge, nothing] : model.edges) {
                if (edge.first.first != a) continue;
                sources.insert(edge.second.first);
                targets.insert(edge.second.second);
            }
            const bool leads = std::ranges::includes(sources, targets);
            const std::string note = "automaton " + std::to_string(a) + "\\b.*no transition leaves";
            const bool noted = std::regex_search(text, std::regex(note));
            // A target may be one that cannot be reached.
            const bool allReached = text.find("reached from") == std::string::npos;
            EXPECT_FALSE(noted && (leads || sources.empty()));
            EXPECT_TRUE(noted || leads || sources.empty() || !allReached);
            ends += noted ? 1 : 0;
        }
    }
    EXPECT_GT(dead, 30U);
    EXPECT_GT(ends, 30U);
}

} // namespace tervoxal
