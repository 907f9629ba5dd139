#include "driver/freemem.h"

#include <cstdlib>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

using namespace tervoxal;

namespace {

constexpr auto noFigure = std::numeric_limits<unsigned int>::max();

std::vector<std::string> nonEmptyLines(std::istream& in) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

/// The low 32 bits of the third number after the first word.
std::optional<unsigned int> freeColumn(const std::string& line) {
    std::istringstream fields(line);
    std::string head;
    long long total = 0;
    long long used = 0;
    long long free = 0;
    if (fields >> head >> total >> used >> free) return static_cast<unsigned int>(free);
    return {};
}

/// The low 32 bits of the value in the line that begins with the name.
std::optional<unsigned int> valueOf(const std::vector<std::string>& lines,
                                    const std::string& name) {
    for (const std::string& line : lines) {
        std::istringstream fields(line);
        std::string head;
        long long value = 0;
        if (fields >> head >> value && head == name) return static_cast<unsigned int>(value);
    }
    return {};
}

} // namespace

unsigned int tervoxal::freeMemIn(std::istream& in) {
    const std::vector<std::string> lines = nonEmptyLines(in);
    if (lines.size() >= 3) {
        const auto memory = freeColumn(lines[1]);
        const auto swap = freeColumn(lines[2]);
        if (memory && swap) return *memory + *swap;
    }
    const auto memory = valueOf(lines, "MemFree:");
    const auto swap = valueOf(lines, "SwapFree:");
    if (!memory && !swap) return noFigure;
    return (memory.value_or(0) + swap.value_or(0)) * 1024;
}

unsigned int getfreemem() {
    // Only the file is read, so what the command prints, or whether it is there, does not matter.
    [[maybe_unused]] const int status = std::system("free > /dev/null");
    std::ifstream in("/proc/meminfo");
    return in ? freeMemIn(in) : noFigure;
}
