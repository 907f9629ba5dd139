#include "text/amounts.h"

#include <iomanip>
#include <sstream>

namespace tervoxal {

std::string shown(std::chrono::duration<double> time) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << time.count() << " s";
    return text.str();
}

std::string steps(long n) { return std::to_string(n) + (n == 1 ? " step" : " steps"); }

} // namespace tervoxal
