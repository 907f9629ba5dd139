#include "support.h"

#include <regex>

namespace {

/// Stands for the numbers that differ from run to run.
std::string masked(const std::string& text) {
    std::string r = std::regex_replace(text, std::regex("[0-9]+ bytes memory"), "@ bytes memory");
    r = std::regex_replace(r, std::regex("Time consumed : [-+.e0-9]+"), "Time consumed : @");
    r = std::regex_replace(r, std::regex("\n\n[-+.e0-9]+\n"), "\n\n@\n");
    return std::regex_replace(r, std::regex("Tervoxal : [-+.e0-9]+ Mb"), "Tervoxal : @ Mb");
}

TEST(Run, writesTheExpectedFilesAndReports) {
    std::ifstream rows(std::string(TEST_DATA) + "/expected.tsv");
    std::string line;
    std::getline(rows, line);
    int count = 0;
    for (; std::getline(rows, line); ++count) {
        SCOPED_TRACE(line);
        std::istringstream fields(line);
        std::string f[8];
        for (std::string& field : f) std::getline(fields, field, '\t');
        const Scratch dir;
        const Outcome run = dir.run("$N " + f[0] + " net && $T net net-formula " + f[1]);
        EXPECT_EQ(run.status, 0);
        const std::string path = f[2].substr(0, f[2].find(','));
        const std::string conjunction = f[2].substr(f[2].rfind(',') + 1);
        const std::string translation =
            f[2].substr(path.size() + 1, f[2].size() - path.size() - conjunction.size() - 2);
        EXPECT_EQ(masked(run.err), "Creating symbolic paths\nEnd of symbolic path: " + path +
                                       "\nTranslation\ntranslation : " + translation +
                                       "\nEnd of translation: " + translation +
                                       "\nCreating clauses ..." + f[3] +
                                       "\nWriting down clauses \nTime consumed : @\n");
        EXPECT_NE(run.out.find("Formula is read\nConjunction: " + conjunction + "\n\n"),
                  std::string::npos);
        const Outcome sums = dir.run("cat netk*.cnf | sha256sum; cat netk*.lck | sha256sum");
        EXPECT_EQ(sums.out, f[6] + "  -\n" + f[7] + "  -\n");
    }
    EXPECT_EQ(count, 12);
}

TEST(Run, smallRunToTheByte) {
    const Scratch dir;
    dir.write("net.in", oneAutomaton);
    dir.write("form.in", "p5");
    dir.write("netk1.cnf", "longer than what the run writes" + std::string(999, '\n'));
    const Outcome run = dir.run("$T net form 1");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(masked(run.out), "@ bytes memory\nwczytywanie automatu\nwczytywanie wartosciowania\n"
                               "Nodes: 2\nEdges: 1\nFormula is read\nConjunction: 4\n\n@\n"
                               "Memory used by Tervoxal : @ Mb\n");
    EXPECT_EQ(dir.read("netk1.cnf"),
              "p cnf 6 13\n-4 5 6 0\n-5 -6 0\n-2 -5 0\n-1 -5 0\n-1 -4 0\n-1 -3 0\n6 0\n2 -3 0\n"
              "3 -4 0\n4 -6 0\n1 -3 4 0\n1 -2 3 0\n1 2 5 0\n");
    EXPECT_EQ(dir.read("netk1.lck"), "1\n1 \n1\n2\n");
    const std::string seconds = dir.read("tervoxaltime.out");
    EXPECT_NE(run.out.find("\n\n" + seconds + "Memory"), std::string::npos);
    EXPECT_TRUE(std::regex_match(seconds, std::regex("[0-9.e-]{1,9}\n")));
}

// Each command ends in a state that the last command prints.
TEST(Run, commandLineAndEnvironment) {
    const std::string files = "ls | grep -c '^net.*k'";
    const struct {
        std::string command;
        int status;
        std::string out, err; // of the whole, progress left out
    } rows[] = {
        {"$T net form", 1, "", "Usage : tervoxal NetworkFile FormulaFile PathLen\n"},
        {"$T net form 0", 2, "", "Length of path should be > 0\n"},
        {"$T net form -3", 2, "", "Length of path should be > 0\n"},
        {"$T net form abc", 2, "", "Length of path should be > 0\n"},
        {"$T net form 2147483648", 2, "", "Length of path should be > 0\n"},
        {"$T none form 1 >/dev/null", 1, "", "Nie moge otworzyc pliku none.in\n"},
        {"$T net none 1 >/dev/null", 1, "", "Nie moge otworzyc pliku none.in\n"},
        {"$T . form 1 >/dev/null", 1, "", "Nie moge otworzyc pliku ..in\n"},
        {"$T net bad 1 >/dev/null; " + files, 1, "0\n",
         "formula, column 3: \"(\" starts no token\n"},
        {"$T net form 999998 >/dev/null 2>&1; head -2 netk*.lck | tail -1; tail -2 netk*.lck", 0,
         "1 \n999998\n999999\n", ""},
        {"$T net form 999999 >/dev/null; " + files, 1, "0\n",
         "path needs 1000000 variables, the limit is 999999\n"},
        {"$T net form 2147483647 >/dev/null; " + files, 1, "0\n",
         "path needs 2147483648 variables, the limit is 999999\n"},
        {"$T none0 T 2147483647 >/dev/null 2>&1; cat none0k*", 0,
         "p cnf 0 1\n0\n0\n\n2147483647\n0\n", ""},
        {"$T none1 T 2147483647 >/dev/null 2>&1; cat none1k*", 0,
         "p cnf 0 0\n1\n0 \n2147483647\n0\n", ""},
        {"$T net form 007x more >/dev/null 2>&1; ls net*k*; tail -2 net*lck", 0,
         "netk007x.cnf\nnetk007x.lck\n7\n8\n", ""},
        {"mkdir d; cp net.in d; $T d/net form 1 >/dev/null 2>&1; ls d *.out", 0,
         "tervoxaltime.out\n\nd:\nnet.in\nnetk1.cnf\nnetk1.lck\n", ""},
        {"for k in 1 2 3 4 5 6 7 8 9; do $T net form $k >/dev/null 2>&1 & done; wait; " + files +
             "; grep -cE '^[0-9.e-]+$' tervoxaltime.out",
         0, "18\n9\n", ""},
        {"mkdir tervoxaltime.out; $T net form 1 2>&1 | tail -1; " + files, 0,
         "Nie mozna otworzyc pliku tervoxaltime.out\n2\n", ""},
        {"mkdir tervoxaltime.out; $T net form 1 >/dev/null 2>&1", 1, "", ""},
        {"mkdir netk1.cnf; $T net form 1 >/dev/null 2>&1; cat netk1.lck", 0, "1\n1 \n1\n2\n", ""},
        {"ln -s /dev/full netk1.cnf; $T net form 1 2>&1 >/dev/full | tail -1 | cut -c 1-13", 0,
         "Time consumed\n", ""},
        {"ln -s /dev/full tervoxaltime.out; $T net form 1 >/dev/null 2>&1", 0, "", ""},
        {"$T net form 1 >&- 2>&- <&-; sha256sum <netk1.cnf >a; $T net form 1 >/dev/null 2>&1; "
         "sha256sum <netk1.cnf | cmp a -",
         0, "", ""},
        {"{ $T net form 1 2>&1; echo $? >status; } | true; cat status", 0, "0\n", ""},
        {"(ulimit -f 0; $T net form 9 >/dev/null 2>&1); ls *k9.lck", 0, "netk9.lck\n", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        const Scratch dir;
        dir.write("net.in", oneAutomaton);
        dir.write("none0.in", "no automaton\nend\n");
        dir.write("none1.in",
                  "n\na\nlocation 0\nend\ntransition 0 0\nend\nvaluation\nend\nend\nend");
        dir.write("form.in", "p5\n");
        dir.write("T.in", "T\n");
        dir.write("bad.in", "p5(\n");
        const Outcome run = dir.run("(" + row.command + "); s=$?; exit $s");
        EXPECT_EQ(run.status, row.status);
        EXPECT_EQ(run.out, row.out);
        EXPECT_EQ(run.err, row.err);
    }
}

} // namespace
