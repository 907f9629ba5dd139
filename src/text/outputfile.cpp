#include "outputfile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

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

/// What has become of the old file: it is not there, it cannot be removed, it is no regular file.
enum class Old { gone, inPlace, special };

/// Removes the old file of the name, if it is a regular one and its directory gives it up.
Old removeOld(const std::string& name, const std::string& target) {
    struct stat status {};
    if (stat(name.c_str(), &status) != 0) return Old::gone;
    if (!S_ISREG(status.st_mode)) return Old::special;
    return unlink(target.c_str()) == 0 ? Old::gone : Old::inPlace;
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
    if (target.empty()) return;
    const Old old = removeOld(name, target);
    if (old == Old::special) {
        file = open(name.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        return;
    }
    regular = true;
    held = endingNow();
    sigprocmask(SIG_BLOCK, &held, &before);
    if (old == Old::inPlace) {
        file = open(target.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    } else {
        createTemporary();
    }
    if (file == -1) sigprocmask(SIG_SETMASK, &before, nullptr);
}

OutputFile::~OutputFile() { finish(false); }

void OutputFile::createTemporary() {
    const std::string stem = ".tervoxal-" + std::to_string(getpid()) + "-";
    int n = 0;
    do { // a number is taken where another machine has a process of the same number
        temporary = fs::path(target).replace_filename(stem + std::to_string(n++));
        file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (file == -1 && errno == EEXIST);
}

void OutputFile::write(std::string_view text) {
    while (file != -1 && !text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
        const bool failed = written == 0 || (written == -1 && errno != EINTR);
        if (failed || (regular && anyPending(held))) finish(false);
    }
}

bool OutputFile::close() { return finish(true); }

bool OutputFile::finish(bool whole) {
    if (file == -1) return false;
    whole = ::close(file) == 0 && whole;
    file = -1;
    if (!temporary.empty()) {
        whole = whole && rename(temporary.c_str(), target.c_str()) == 0;
        if (!whole) unlink(temporary.c_str());
    } else if (regular && !whole) {
        empty(target);
    }
    if (regular) sigprocmask(SIG_SETMASK, &before, nullptr); // a signal held back takes effect
    return whole;
}

void removeOutput(const std::string& name) {
    const std::string target = followLinks(name);
    if (removeOld(name, target) == Old::inPlace) empty(target);
}
