#include "programs/children.h"

#include "support.h"
#include "system/filetext.h"

#include <cerrno>
#include <csignal>
#include <map>
#include <sys/wait.h>
#include <thread>

namespace tervoxal {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

class ChildrenTest : public testing::Test {
protected:
    pid_t shell(const std::string& script) {
        const pid_t child = children.start({{"/bin/sh", "-c", script}, scratch.path, out(), err()});
        EXPECT_GT(child, 0);
        return child;
    }
    [[nodiscard]] std::string out() const { return scratch.path / "out"; }
    [[nodiscard]] std::string err() const { return scratch.path / "err"; }
    /// Waits until a child has written as many lines.
    void waitForLines(std::ptrdiff_t lines) const {
        const auto until = steady_clock::now() + 10s;
        while (std::ranges::count(scratch.read("out"), '\n') < lines) {
            ASSERT_LT(steady_clock::now(), until);
            std::this_thread::sleep_for(2ms);
        }
    }
    /// Whether the process whose number the child wrote is in one of the states soon: as ps shows
    /// them, and - for none.
    [[nodiscard]] bool comesTo(const std::string& states) const {
        for (const auto until = steady_clock::now() + 10s; steady_clock::now() < until;) {
            std::ifstream in("/proc/" + std::to_string(std::stoi(scratch.read("out"))) + "/stat");
            std::string line;
            std::getline(in, line);
            const char state = in ? line.at(line.rfind(')') + 2) : '-';
            if (states.find(state) != std::string::npos) return true;
            std::this_thread::sleep_for(2ms);
        }
        return false;
    }
    [[nodiscard]] bool isGone() const { return comesTo("Z-"); }

    Scratch scratch;
    Children children;
};

TEST_F(ChildrenTest, tellHowTheyEnded) {
    std::map<pid_t, int> due;
    due[shell("exit 0")] = 0;
    due[shell("exit 77")] = 77;
    due[shell("kill -9 $$")] = 137;
    due[shell("kill -TERM $$")] = 143; // not blocked, unlike in the parent
    due[shell("kill -INT $$; exit 3")] = 130;
    due[children.start({{"/nowhere/to/be/found"}, "", out(), err()})] = 127;
    due[children.start({{"/bin/true"}, "/nowhere", out(), err()})] = 127;
    due[children.start({{"/bin/true"}, "", "/nowhere/out", err()})] = 127;
    for (auto n = due.size(); n > 0; --n) {
        const ChildEvent event = children.wait(10s);
        ASSERT_TRUE(due.contains(event.child)) << event.child;
        EXPECT_EQ(event.status, due[event.child]);
        EXPECT_EQ(event.signal, 0);
        due.erase(event.child);
    }
    EXPECT_EQ(children.wait(1ms).child, 0);
}

TEST_F(ChildrenTest, haveTheirDirectoryAndStreams) {
    scratch.write("out", "old text that is longer than the new one\n");
    const pid_t child = shell("pwd -P; cat; echo one >&2; echo >&2; echo two >&2; exit 5");
    const ChildEvent event = children.wait(10s);
    EXPECT_EQ(event.child, child);
    EXPECT_EQ(scratch.read("out"), std::filesystem::canonical(scratch.path).string() + '\n');
    EXPECT_EQ(howEnded("it", event.status, err()), "it ended with status 5: two");
    EXPECT_EQ(howEnded("it", 137, scratch.path / "none"), "it ended with status 137 (Killed)");
    scratch.write("err", std::string(5000, 'x') + "\nlast\n\n\n");
    EXPECT_EQ(lastLine(err()), "last");
}

TEST_F(ChildrenTest, whatTheFirstProcessLeavesRunningIsKilled) {
    const pid_t child = shell("sleep 100 & echo $!");
    EXPECT_EQ(children.wait(10s).child, child);
    EXPECT_TRUE(isGone());
}

TEST_F(ChildrenTest, waitIsNoLongerThanItsTime) {
    const pid_t child = shell("echo; sleep 100");
    const auto begin = steady_clock::now();
    const ChildEvent event = children.wait(50ms);
    EXPECT_EQ(event.child + event.signal, 0);
    EXPECT_GE(steady_clock::now() - begin, 50ms);
    children.end({child});
    EXPECT_LT(steady_clock::now() - begin, 50s);
    EXPECT_EQ(children.wait(1ms).child, 0);
}

TEST_F(ChildrenTest, signalsAreEvents) {
    const pid_t child = shell("echo; sleep 100");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        kill(getpid(), signal);
        EXPECT_EQ(children.wait(10s).signal, signal);
    }
    kill(child, SIGUSR1);
    const ChildEvent event = children.wait(10s);
    EXPECT_EQ(event.child, child);
    EXPECT_EQ(event.status, 128 + SIGUSR1);
}

TEST_F(ChildrenTest, thatDoNotWantToEndAreKilled) {
    const pid_t deaf = shell("trap '' TERM; echo; while :; do sleep 0.01; done");
    waitForLines(1);
    const pid_t other = children.start({{"/bin/sh", "-c", "exit 9"}, "", err(), err()});
    const auto begin = steady_clock::now();
    children.end({deaf});
    EXPECT_NEAR(static_cast<double>((steady_clock::now() - begin) / 1ms), 3000, 2500);
    EXPECT_NE(kill(deaf, 0), 0);
    const ChildEvent event = children.wait(10s); // seen meanwhile, and kept
    EXPECT_EQ(event.child, other);
    EXPECT_EQ(event.status, 9);
    EXPECT_EQ(children.wait(1ms).child, 0);
    // Without descendants, and one whose descendant is left alone.
    scratch.write("out", "");
    const pid_t alone = shell("trap '' TERM; echo; exec sleep 100");
    waitForLines(1);
    children.end({alone});
    EXPECT_NE(kill(alone, 0), 0);
    scratch.write("out", "");
    const pid_t parent = shell("setsid sh -c 'trap \"\" TERM; echo $$; exec sleep 100' & wait");
    waitForLines(1);
    children.end({parent});
    EXPECT_NE(kill(std::stoi(scratch.read("out")), 0), 0);
}

TEST_F(ChildrenTest, endWithTheirDescendantsAndWhenStopped) {
    // timeout moves to a group of its own.
    const pid_t child = shell("timeout 100 sh -c 'echo $$; sleep 100'; exit 0");
    waitForLines(1);
    const auto begin = steady_clock::now();
    children.end({child});
    EXPECT_LT(steady_clock::now() - begin, 1500ms); // nobody has to be killed
    EXPECT_TRUE(isGone());
    scratch.write("out", "");
    const pid_t stopped = shell("trap 'echo end; exit 0' TERM; echo; kill -STOP $$; sleep 100");
    waitForLines(1);
    children.end({stopped});
    EXPECT_EQ(scratch.read("out"), "\nend\n");
}

TEST_F(ChildrenTest, stopAndGoOnWithTheirParent) {
    const pid_t parent = fork();
    if (parent == 0) {
        setpgid(0, 0);
        {
            Children own;
            const std::string busy = "timeout 100 sh -c 'echo $$; while :; do :; done'";
            if (own.start({{"/bin/sh", "-c", busy}, "", out(), err()}) == 0) _exit(1);
            if (own.wait().signal != SIGTERM) _exit(2);
        }
        _exit(0);
    }
    waitForLines(1);
    kill(parent, SIGTSTP);
    int status = 0;
    EXPECT_EQ(waitpid(parent, &status, WUNTRACED), parent);
    EXPECT_TRUE(WIFSTOPPED(status));
    EXPECT_TRUE(comesTo("T"));
    kill(parent, SIGCONT);
    EXPECT_TRUE(comesTo("R"));
    kill(parent, SIGTERM);
    EXPECT_EQ(waitpid(parent, &status, 0), parent);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(comesTo("-"));
}

TEST(ChildrenDeathTest, takeTheirSignalsAlong) {
    const Scratch scratch;
    const std::string pid = scratch.path / "out";
    const auto startAndBeSignalled = [&] {
        {
            Children children;
            if (children.start({{"/bin/sh", "-c", "echo $$; exec sleep 100"}, "", pid, pid}) == 0)
                _exit(1);
            while (scratch.read("out").empty()) std::this_thread::sleep_for(2ms);
        } // ends it
        if (kill(std::stoi(scratch.read("out")), 0) == 0 || errno != ESRCH) _exit(2);
        dieBy(SIGTERM);
    };
    EXPECT_EXIT(startAndBeSignalled(), testing::KilledBySignal(SIGTERM), "");
}

} // namespace

} // namespace tervoxal
