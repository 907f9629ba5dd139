// Child processes, each in a process group of its own, and the signals that end the parent, taken
// as events. While a Children exists, SIGINT, SIGTERM, SIGHUP and SIGQUIT do not end the process:
// wait tells of them, so whoever waits can clean up first. Those that are ignored at the start, as
// under nohup, stay ignored.
//
// A group ends with its first process: what that leaves running is killed. If the parent is killed
// itself, its children get SIGTERM.

#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

/// A command to run. Its standard input is empty.
struct Launch {
    std::vector<std::string> words; // the program's file, then its arguments
    std::string directory;          // where it runs; empty: where the parent does
    std::string out;                // the file that takes its standard output, emptied first
    std::string err;                // the same for standard error
};

/// What wait has seen: a child that ended, a signal that asks the parent to end, or neither of them
/// in the given time.
struct Event {
    pid_t child = 0; // 0: none
    int status = 0;  // of the child: its exit status, or 128 plus the signal that ended it
    int signal = 0;  // 0: none
};

/// All children of the process. There is at most one object of this class.
class Children {
public:
    Children();
    /// Ends all children and takes the signals back as they were.
    ~Children();
    Children(const Children&) = delete;
    Children& operator=(const Children&) = delete;

    /// Starts a child. Gives 0 where the system has no room for another one, with errno set. A
    /// program that cannot be run is a child that ends with status 127.
    [[nodiscard]] pid_t start(const Launch& launch);
    /// Waits for an event, or for the time if one is given.
    [[nodiscard]] Event wait(std::optional<std::chrono::milliseconds> time = {});
    /// Ends the children with SIGTERM and, after a second, with SIGKILL. wait tells nothing of
    /// them.
    void end(const std::set<pid_t>& children);

private:
    /// Takes one child that has ended.
    [[nodiscard]] std::optional<Event> ended();

    std::set<pid_t> running;
    std::vector<Event> unseen; // children that ended while others were waited for
    sigset_t before{};         // the blocked signals
    sigset_t enders{};
    sigset_t awaited{}; // enders and SIGCHLD
};

/// Why a child could not be started, right behind the call.
[[nodiscard]] std::string notStarted(const Launch& launch);
/// Tells of a child that ended otherwise than it should: who, with which status, and the last line
/// of the file that took its messages.
[[nodiscard]] std::string howEnded(const std::string& who, int status,
                                   const std::filesystem::path& log);
/// The last line of a file that is not empty, among its last 4 KiB.
[[nodiscard]] std::string lastLine(const std::filesystem::path& file);
/// Ends the process by the signal, as if it had never been taken.
[[noreturn]] void dieBy(int signal);
