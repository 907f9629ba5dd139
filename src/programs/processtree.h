// The processes of the system at one moment, and who is whose child. Linux tells it in /proc; where
// there is none, the tree is empty.

#pragma once

#include <map>
#include <set>
#include <sys/types.h>

namespace tervoxal {

class ProcessTree {
public:
    /// Looks at the system. Linear in the number of its processes.
    ProcessTree();

    /// Those below the roots: their children, their children's children, and so on. A root is not
    /// among them, unless it is below another one.
    [[nodiscard]] std::set<pid_t> below(const std::set<pid_t>& roots) const;

private:
    std::multimap<pid_t, pid_t> byParent;
};

} // namespace tervoxal
