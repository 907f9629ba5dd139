#include "pathlength.h"

#include <cstdlib>

int pathLength(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}
