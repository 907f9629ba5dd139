#include "children.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

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
int taken(const sigset_t& set, std::optional<std::chrono::steady_clock::duration> time) {
    if (!time) return sigwaitinfo(&set, nullptr);
    const auto nanoseconds = std::chrono::nanoseconds(*time).count();
    const timespec timeout{.tv_sec = nanoseconds / 1000000000, .tv_nsec = nanoseconds % 1000000000};
    return sigtimedwait(&set, nullptr, &timeout);
}

/// The children, their children, and so on.
std::set<pid_t> withDescendants(std::set<pid_t> children) {
    std::multimap<pid_t, pid_t> byParent;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored)) {
        // "PID (NAME) STATE PARENT ...", and the name may hold anything.
        std::ifstream in(entry.path() / "stat");
        std::string line;
        std::getline(in, line, '\0');
        std::istringstream fields(line.substr(line.rfind(')') + 1));
        std::string state;
        pid_t parent = 0;
        if (fields >> state >> parent) byParent.emplace(parent, std::atoi(line.c_str()));
    }
    for (std::vector<pid_t> open(children.begin(), children.end()); !open.empty();) {
        const auto [first, last] = byParent.equal_range(open.back());
        open.pop_back();
        for (auto child = first; child != last; ++child) {
            if (children.insert(child->second).second) open.push_back(child->second);
        }
    }
    return children;
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
    // A file that reaches its size limit is a write that fails.
    std::signal(SIGXFSZ, SIG_IGN);
    sigemptyset(&enders);
    for (const int ender : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction action {};
        sigaction(ender, nullptr, &action);
        if (action.sa_handler != SIG_IGN) sigaddset(&enders, ender);
    }
    awaited = enders;
    sigaddset(&awaited, SIGCHLD);
    sigprocmask(SIG_BLOCK, &awaited, &before);
}

Children::~Children() {
    end(std::set(running));
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

pid_t Children::start(const Launch& launch) {
    std::vector<std::string> words = launch.words;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) return 0;
    if (child == 0) become(launch, arguments, parent, before);
    // The child does it too: whoever is first.
    setpgid(child, child);
    running.insert(child);
    return child;
}

std::optional<Event> Children::ended() {
    while (!running.empty()) {
        siginfo_t info{};
        if (waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == 0) break;
        const pid_t child = info.si_pid;
        // Until it is waited for, the number of its group cannot become another group's.
        const bool ours = running.erase(child) > 0;
        if (ours) kill(-child, SIGKILL);
        waitpid(child, nullptr, 0);
        if (!ours) continue; // a child of whatever this process ran before
        return Event{.child = child,
                     .status = info.si_status + (info.si_code == CLD_EXITED ? 0 : 128)};
    }
    return {};
}

Event Children::wait(std::optional<std::chrono::milliseconds> time) {
    using Clock = std::chrono::steady_clock;
    const auto until = Clock::now() + time.value_or(std::chrono::milliseconds(0));
    for (;;) {
        if (const int signal = taken(enders, Clock::duration(0)); signal > 0) {
            return {.signal = signal};
        }
        if (!unseen.empty()) {
            const Event event = unseen.back();
            unseen.pop_back();
            return event;
        }
        if (const auto event = ended()) return *event;
        std::optional<Clock::duration> left;
        if (time) left = until - Clock::now();
        if (left && left->count() <= 0) return {};
        if (const int signal = taken(awaited, left); signal > 0 && signal != SIGCHLD) {
            return {.signal = signal};
        }
    }
}

void Children::end(const std::set<pid_t>& children) {
    const auto signalAll = [&](int signal) {
        for (const pid_t child : children) {
            if (running.contains(child)) kill(-child, signal);
        }
    };
    if (children.empty()) return;
    // Some commands, timeout among them, move to a group of their own.
    for (const pid_t process : withDescendants(children)) kill(process, SIGTERM);
    signalAll(SIGTERM);
    signalAll(SIGCONT); // a stopped process takes no other signal
    sigset_t childEnds{};
    sigemptyset(&childEnds);
    sigaddset(&childEnds, SIGCHLD);
    using Clock = std::chrono::steady_clock;
    const auto patience = Clock::now() + std::chrono::seconds(1);
    std::optional<Clock::duration> left = patience - Clock::now();
    while (std::any_of(children.begin(), children.end(),
                       [&](pid_t child) { return running.contains(child); })) {
        if (const auto event = ended()) {
            if (!children.contains(event->child)) unseen.push_back(*event);
            continue;
        }
        if (left) left = patience - Clock::now();
        if (left && left->count() <= 0) {
            signalAll(SIGKILL);
            left.reset();
        }
        [[maybe_unused]] const int signal = taken(childEnds, left);
    }
    std::erase_if(unseen, [&](const Event& event) { return children.contains(event.child); });
}

std::string notStarted(const Launch& launch) {
    return "cannot start " + launch.words.front() + ": " + std::strerror(errno);
}

std::string howEnded(const std::string& who, int status, const std::filesystem::path& log) {
    const std::string line = lastLine(log);
    return who + " ended with status " + std::to_string(status) +
           (status > 128 ? " (" + std::string(strsignal(status - 128)) + ")" : "") +
           (line.empty() ? "" : ": " + line);
}

std::string lastLine(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    in.seekg(0, std::ios::end);
    in.seekg(std::max<std::streamoff>(0, in.tellg() - std::streamoff(4096)));
    std::string last;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) last = line;
    }
    return last;
}

void dieBy(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    _exit(128 + signal); // it is blocked
}
