// Child processes, each in a process group of its own, and the signals that ask the parent for
// something, taken as events. While a Children exists, SIGINT, SIGTERM, SIGHUP and SIGQUIT do not
// end the process: wait tells of them, so that whoever waits can clean up first. SIGTSTP (Ctrl-Z)
// stops the children too, and they go on when the process does. A signal that is ignored at the
// start, as SIGHUP is under nohup, stays ignored.
//
// A group ends with its first process: what that leaves running there is killed. What moves to
// another group or session (setsid, timeout, daemons) ends at the latest with the Children: on
// Linux the process adopts its orphans meanwhile (PR_SET_CHILD_SUBREAPER) and finds what is below
// it in /proc. POSIX has no means for that. A process that was given children by an exec does not
// adopt, since their orphans are not its own.
//
// If the parent is killed by SIGKILL, its children get SIGTERM (PR_SET_PDEATHSIG, Linux as well).

#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tervoxal {

/// A command to run. Its standard input is empty.
struct Launch {
    std::vector<std::string> words; // the program's file, then its arguments
    std::string directory;          // where it runs; empty: where the parent does
    std::string out;                // the file that takes its standard output, emptied first
    std::string err;                // the same for standard error
};

/// What wait has seen: a child that ended, a signal that asks the parent to end, or neither of them
/// in the given time.
struct ChildEvent {
    pid_t child = 0; // 0: none
    int status = 0;  // of the child: its exit status, or 128 plus the signal that ended it
    int signal = 0;  // 0: none
};

/// All children of the process. There is at most one object of this class.
class Children {
public:
    Children();
    /// Ends all children and what is left of them, and takes the signals back as they were.
    ~Children();
    Children(const Children&) = delete;
    Children& operator=(const Children&) = delete;

    /// Starts a child. Gives 0 where the system has no room for another one, with errno set. A
    /// program that cannot be run is a child that ends with status 127.
    [[nodiscard]] pid_t start(const Launch& launch);
    /// Waits for an event, or for the time if one is given. The time does not run while the process
    /// is stopped.
    [[nodiscard]] ChildEvent wait(std::optional<std::chrono::milliseconds> time = {});
    /// Ends the children and all below them: by SIGTERM and, a second later, by SIGKILL. Comes back
    /// when they are gone. wait tells nothing of them.
    void end(const std::set<pid_t>& children);

private:
    using Clock = std::chrono::steady_clock;

    /// Takes one child that has ended.
    [[nodiscard]] std::optional<ChildEvent> ended();
    void endProcesses(const std::set<pid_t>& children, std::set<pid_t> below,
                      Clock::time_point kill);
    void stop();
    void signalAll(const std::set<pid_t>& children, const std::set<pid_t>& below, int signal) const;

    std::set<pid_t> running;
    std::vector<ChildEvent> unseen; // children that ended while others were waited for
    bool adopts = false;            // its orphans
    sigset_t before{};              // the blocked signals
    sigset_t requests{};            // those that wait takes: to end, and SIGTSTP
    sigset_t awaited{};             // requests and SIGCHLD
};

/// Why a child could not be started. To be called directly after start.
[[nodiscard]] std::string notStarted(const Launch& launch);
/// What a child said last: the last line of the file that took its messages. Where nothing can be
/// written beside that file, as on a full disk, it says so, and where.
[[nodiscard]] std::string lastMessage(const std::filesystem::path& log);
/// Tells of a child that ended otherwise than it should: who, with which status, and what it said
/// last.
[[nodiscard]] std::string howEnded(const std::string& who, int status,
                                   const std::filesystem::path& log);
/// The lines of a child's messages that begin with "warning: ".
[[nodiscard]] std::vector<std::string> warnings(const std::filesystem::path& log);
/// Ends the process by the signal, as if it had never been taken.
[[noreturn]] void dieBy(int signal);

} // namespace tervoxal
