#include "text/lines.h"

#include "text/fatal.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace tervoxal {

namespace {

/// The file, or why it cannot be opened in errno.
std::ifstream opened(const std::string& name) {
    errno = 0;
    std::ifstream in(name);
    std::error_code ignored;
    if (in && std::filesystem::is_directory(name, ignored)) {
        errno = EISDIR;
        in.setstate(std::ios::failbit);
    }
    return in;
}

} // namespace

std::ifstream openInput(const std::string& name) {
    std::ifstream in = opened(name);
    if (!in) error("cannot open " + name + ": " + std::strerror(errno));
    return in;
}

std::ifstream openRunInput(const std::string& name) {
    std::ifstream in = opened(name);
    if (!in) error("Nie moge otworzyc pliku " + name);
    return in;
}

void refuseUnread(const std::istream& in, const std::string& name) {
    if (in.bad()) error(name + ": cannot be read");
}

bool Lines::next() {
    while (std::getline(*in, text)) {
        ++number;
        if (!text.empty() && text.front() != '#') return true;
    }
    refuseUnread(*in, name);
    return false;
}

} // namespace tervoxal
