#include "programs/processtree.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace tervoxal {

ProcessTree::ProcessTree() {
    std::error_code ignored;
    std::filesystem::directory_iterator entry("/proc", ignored);
    for (; entry != std::filesystem::directory_iterator(); entry.increment(ignored)) {
        // "PID (NAME) STATE PARENT ...", and the name may hold anything.
        std::ifstream in(entry->path() / "stat");
        std::string line;
        std::getline(in, line, '\0');
        std::istringstream fields(line.substr(line.rfind(')') + 1));
        std::string state;
        pid_t parent = 0;
        if (fields >> state >> parent) byParent.emplace(parent, std::atoi(line.c_str()));
    }
}

std::set<pid_t> ProcessTree::below(const std::set<pid_t>& roots) const {
    std::set<pid_t> found;
    for (std::vector<pid_t> open(roots.begin(), roots.end()); !open.empty();) {
        const auto [first, last] = byParent.equal_range(open.back());
        open.pop_back();
        for (auto child = first; child != last; ++child) {
            if (found.insert(child->second).second) open.push_back(child->second);
        }
    }
    return found;
}

} // namespace tervoxal
