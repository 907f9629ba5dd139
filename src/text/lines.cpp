#include "text/lines.h"

#include "text/fatal.h"

#include <filesystem>
#include <system_error>

namespace tervoxal {

std::ifstream openInput(const std::string& name) {
    std::ifstream in(name);
    std::error_code ignored;
    if (!in || std::filesystem::is_directory(name, ignored)) {
        error("Nie moge otworzyc pliku " + name);
    }
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
