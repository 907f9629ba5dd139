#include "system/outputfile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tervoxal {

namespace {

namespace fs = std::filesystem;

/// What the name leads to in the end, whether it is there or not; empty for a loop of links.
std::string followLinks(const std::string& name) {
    fs::path path = name;
    std::error_code ignored;
    for (int links = 0; links < 40; ++links) { // as many as the system follows
        if (!fs::is_symlink(fs::symlink_status(path, ignored))) return path;
        path = path.parent_path() / fs::read_symlink(path, ignored);
    }
    return {};
}

void empty(const std::string& file) {
    std::error_code ignored;
    fs::resize_file(file, 0, ignored);
}

constexpr std::array endingSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXCPU};

/// Those that would end the process now: others are ignored or have a handler.
sigset_t endingNow() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : endingSignals) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_DFL) sigaddset(&signals, signal);
    }
    return signals;
}

bool anyPending(const sigset_t& signals) {
    sigset_t pending;
    sigpending(&pending);
    return std::any_of(endingSignals.begin(), endingSignals.end(), [&](int signal) {
        return sigismember(&signals, signal) == 1 && sigismember(&pending, signal) == 1;
    });
}

} // namespace

OutputFile::OutputFile(const std::string& name) : target(followLinks(name)) {
    if (target.empty()) {
        old = Old::locked;
    } else if (stat(name.c_str(), &like) == 0) {
        removeOld(name);
    }
}

OutputFile::~OutputFile() { finish(false); }

void OutputFile::removeOld(const std::string& name) {
    if (!S_ISREG(like.st_mode)) {
        old = Old::special;
        target = name; // which the system may follow where it shows no link
        return;
    }
    const int writable = open(target.c_str(), O_WRONLY | O_CLOEXEC);
    if (writable == -1) {
        old = Old::locked;
        return;
    }
    ::close(writable);
    if (unlink(target.c_str()) == 0) return;
    old = Old::emptied;
    empty(target);
}

bool OutputFile::writable() const {
    if (old == Old::locked) return false;
    if (old != Old::gone) return access(target.c_str(), W_OK) == 0;
    const fs::path folder = fs::path(target).parent_path();
    return access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0;
}

void OutputFile::begin() {
    begun = true;
    if (regular()) {
        held = endingNow();
        sigprocmask(SIG_BLOCK, &held, &before);
    }
    if (old == Old::gone) {
        createTemporary();
    } else if (old != Old::locked) {
        file = open(target.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    }
    if (regular() && file == -1) sigprocmask(SIG_SETMASK, &before, nullptr);
}

void OutputFile::createTemporary() {
    const std::string stem = ".tervoxal-" + std::to_string(getpid()) + "-";
    const bool replaces = S_ISREG(like.st_mode);
    int n = 0;
    do { // a number is taken where another machine has a process of the same number
        temporary = fs::path(target).replace_filename(stem + std::to_string(n++));
        file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                    replaces ? 0600 : 0666);
    } while (file == -1 && errno == EEXIST);
    if (file == -1 || !replaces) return;
    [[maybe_unused]] const int owned = fchown(file, like.st_uid, like.st_gid);
    fchmod(file, like.st_mode & 07777U);
}

void OutputFile::write(std::string_view text) {
    if (!begun) begin();
    while (file != -1 && !text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
        const bool failed = written == 0 || (written == -1 && errno != EINTR);
        if (failed || (regular() && anyPending(held))) finish(false);
    }
}

bool OutputFile::close() {
    if (!begun) begin();
    return finish(true);
}

bool OutputFile::finish(bool whole) {
    if (file == -1) return false;
    whole = ::close(file) == 0 && whole;
    file = -1;
    if (!temporary.empty()) {
        whole = whole && rename(temporary.c_str(), target.c_str()) == 0;
        if (!whole) unlink(temporary.c_str());
    } else if (regular() && !whole) {
        empty(target);
    }
    if (regular()) sigprocmask(SIG_SETMASK, &before, nullptr); // a signal held back takes effect
    return whole;
}

} // namespace tervoxal
