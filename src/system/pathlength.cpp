#include "system/pathlength.h"

#include <cstdlib>

namespace tervoxal {

int pathLength(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

} // namespace tervoxal
