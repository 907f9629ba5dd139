#include "programs/children.h"

#include "programs/directories.h"
#include "programs/processtree.h"
#include "system/filetext.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tervoxal {

namespace {

using Clock = std::chrono::steady_clock;

/// The rest of a child that cannot run its program.
[[noreturn]] void giveUp(const std::string& what) {
    const std::string line = "cannot use " + what + ": " + std::strerror(errno) + '\n';
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
    _exit(127);
}

void redirect(const std::string& file, int flags, int target) {
    const int descriptor = open(file.c_str(), flags | O_CLOEXEC, 0666);
    if (descriptor < 0 || dup2(descriptor, target) < 0) giveUp(file);
}

/// The new process, up to its program. Its signals are still blocked.
[[noreturn]] void become(const Launch& launch, std::vector<char*>& arguments, pid_t parent,
                         const sigset_t& mask) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(127); // it ended before the line above
    redirect("/dev/null", O_RDONLY, STDIN_FILENO);
    redirect(launch.err, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    redirect(launch.out, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    if (!launch.directory.empty() && chdir(launch.directory.c_str()) != 0) {
        giveUp(launch.directory);
    }
    for (const int ignored : {SIGPIPE, SIGXFSZ}) std::signal(ignored, SIG_DFL);
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    execv(arguments.front(), arguments.data());
    giveUp(launch.words.front());
}

/// The signal of the set that came within the time, or at all if none is given; 0 or less where
/// none did.
int taken(const sigset_t& set, std::optional<Clock::duration> time) {
    if (!time) return sigwaitinfo(&set, nullptr);
    const auto nanoseconds = std::chrono::nanoseconds(*time).count();
    const timespec timeout{.tv_sec = nanoseconds / 1000000000, .tv_nsec = nanoseconds % 1000000000};
    return sigtimedwait(&set, nullptr, &timeout);
}

constexpr auto patience = std::chrono::seconds(1);
/// How often those are looked for that have been killed and are not gone.
constexpr auto tick = std::chrono::milliseconds(50);

/// Those of the processes that are still below this one, and what is below them. An orphan is: this
/// process adopts it.
std::set<pid_t> living(std::set<pid_t> processes) {
    const ProcessTree tree;
    processes.merge(tree.below(processes));
    const std::set<pid_t> ours = tree.below({getpid()});
    std::erase_if(processes, [&](pid_t process) { return !ours.contains(process); });
    return processes;
}

} // namespace

Children::Children() {
    // A child's files must not take the number of a standard stream that is closed here.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            [[maybe_unused]] const int descriptor = open("/dev/null", O_RDONLY);
        }
    }
    std::signal(SIGCHLD, SIG_DFL);
    sigemptyset(&requests);
    for (const int request : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) {
        struct sigaction action {};
        sigaction(request, nullptr, &action);
        if (action.sa_handler != SIG_IGN) sigaddset(&requests, request);
    }
    awaited = requests;
    sigaddset(&awaited, SIGCHLD);
    sigprocmask(SIG_BLOCK, &awaited, &before);
    // What this process ran before it was this program is not ours, nor are the orphans of that.
    adopts = ProcessTree().below({getpid()}).empty();
    if (adopts) prctl(PR_SET_CHILD_SUBREAPER, 1);
}

Children::~Children() {
    end(std::set(running));
    if (adopts) {
        endProcesses({}, ProcessTree().below({getpid()}), Clock::now());
        prctl(PR_SET_CHILD_SUBREAPER, 0);
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

pid_t Children::start(const Launch& launch) {
    std::vector<std::string> words = launch.words;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    // A child can be asked to end whoever holds such requests back here.
    sigset_t unheld = before;
    for (const int request : {SIGINT, SIGTERM}) sigdelset(&unheld, request);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) return 0;
    if (child == 0) become(launch, arguments, parent, unheld);
    // The child does it too: whoever is first.
    setpgid(child, child);
    running.insert(child);
    return child;
}

std::optional<ChildEvent> Children::ended() {
    for (;;) {
        siginfo_t info{};
        if (waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == 0) break;
        const pid_t child = info.si_pid;
        // Until it is waited for, the number of its group cannot become another group's.
        const bool ours = running.erase(child) > 0;
        if (ours) kill(-child, SIGKILL);
        waitpid(child, nullptr, 0);
        if (!ours) continue; // an orphan
        return ChildEvent{.child = child,
                          .status = info.si_status + (info.si_code == CLD_EXITED ? 0 : 128)};
    }
    return {};
}

ChildEvent Children::wait(std::optional<std::chrono::milliseconds> time) {
    auto until = Clock::now() + time.value_or(std::chrono::milliseconds(0));
    int signal = taken(requests, Clock::duration(0));
    for (;;) {
        if (signal == SIGTSTP) {
            const auto begin = Clock::now();
            stop();
            until += Clock::now() - begin;
        } else if (signal > 0 && signal != SIGCHLD) {
            return {.signal = signal};
        }
        if (!unseen.empty()) {
            const ChildEvent event = unseen.back();
            unseen.pop_back();
            return event;
        }
        if (const auto event = ended()) return *event;
        std::optional<Clock::duration> left;
        if (time) left = until - Clock::now();
        if (left && left->count() <= 0) return {};
        signal = taken(awaited, left);
    }
}

void Children::end(const std::set<pid_t>& children) {
    if (children.empty()) return;
    const std::set<pid_t> below = ProcessTree().below(children);
    signalAll(children, below, SIGTERM);
    signalAll(children, below, SIGCONT); // a stopped process takes no other signal
    endProcesses(children, below, Clock::now() + patience);
    std::erase_if(unseen, [&](const ChildEvent& event) { return children.contains(event.child); });
}

/// Waits for the end of the children and of what was below them. From the given time on they are
/// killed, again and again: a process may start another one meanwhile.
void Children::endProcesses(const std::set<pid_t>& children, std::set<pid_t> below,
                            Clock::time_point kill) {
    sigset_t childEnds{};
    sigemptyset(&childEnds);
    sigaddset(&childEnds, SIGCHLD);
    for (;;) {
        while (const auto event = ended()) {
            if (!children.contains(event->child)) unseen.push_back(*event);
        }
        const bool childrenRun = std::any_of(children.begin(), children.end(),
                                             [&](pid_t child) { return running.contains(child); });
        const auto left = kill - Clock::now();
        if (!childrenRun || left.count() <= 0) {
            below = living(below);
            // What cannot be killed has another owner.
            if (!childrenRun && (below.empty() || left < -patience)) return;
        }
        if (left.count() <= 0) signalAll(children, below, SIGKILL);
        [[maybe_unused]] const int signal = taken(childEnds, left.count() > 0 ? left : tick);
    }
}

/// Stops the children and this process, until it is continued.
void Children::stop() {
    const std::set<pid_t> below = ProcessTree().below(running);
    signalAll(running, below, SIGSTOP);
    sigset_t signals{};
    sigemptyset(&signals);
    sigaddset(&signals, SIGTSTP);
    std::raise(SIGTSTP);
    sigprocmask(SIG_UNBLOCK, &signals, nullptr); // here it stops
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    signalAll(running, below, SIGCONT);
}

/// Signals the groups of the children, and those below them: some commands, timeout among them,
/// move to a group of their own.
void Children::signalAll(const std::set<pid_t>& children, const std::set<pid_t>& below,
                         int signal) const {
    for (const pid_t process : below) kill(process, signal);
    for (const pid_t child : children) {
        if (running.contains(child)) kill(-child, signal);
    }
}

std::string notStarted(const Launch& launch) {
    return "cannot start " + launch.words.front() + ": " + std::strerror(errno);
}

std::string lastMessage(const std::filesystem::path& log) {
    const std::string problem = unwritable(log.parent_path());
    return problem.empty() ? lastLine(log) : problem;
}

std::string howEnded(const std::string& who, int status, const std::filesystem::path& log) {
    const std::string line = lastMessage(log);
    return who + " ended with status " + std::to_string(status) +
           (status > 128 ? " (" + std::string(strsignal(status - 128)) + ")" : "") +
           (line.empty() ? "" : ": " + line);
}

std::vector<std::string> warnings(const std::filesystem::path& log) {
    std::vector<std::string> found;
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(log, ignored)) return found; // it may have no end
    std::ifstream in(log, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("warning: ")) found.push_back(line);
    }
    return found;
}

void dieBy(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    _exit(128 + signal); // it is blocked
}

} // namespace tervoxal
