#include "text/fatal.h"

#include <cstdlib>
#include <iostream>

void error(const std::string& message) {
    std::cerr << message << std::endl;
    std::exit(1);
}
