#include "freemem.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

TEST(FreeMemory, readsBothLayouts) {
    const char* const head = "        total:    used:    free:  shared:\n";
    const struct {
        std::string text;
        unsigned int bytes;
    } rows[] = {
        {std::string(head) + "Mem:  1000 400 600 0\nSwap: 500 100 400\n", 1000},
        {std::string("\n\n") + head + "\nMem:  1000 400 600\n\nSwap: 0 0 0", 600},
        {std::string(head) + "Mem: 9 8 7\nSwap: 6 5 4\nMemFree: 1 kB\nSwapFree: 2 kB\n", 11},
        {std::string(head) + "Mem: 9 8 3000000000\nSwap: 6 5 3000000000\n", 1705032704},
        {std::string(head) + "Mem: 9 8 7\nMemFree: 1 kB\n", 1024},
        {"MemTotal: 9 kB\nMemFree: 3 kB\nBuffers: 7 kB\nSwapTotal: 5 kB\nSwapFree: 2 kB\n",
         5 * 1024},
        {"SwapFree: 2 kB\nMemTotal: 9 kB\nMemFree: 8388608 kB\n", 2048}, // 8 GiB are 0 in 32 bits
        {"MemFree: x\nSwapFree:\n", 4294967295},
        {"MemFree 5 kB\n", 4294967295},
        {"", 4294967295},
    };
    for (const auto& row : rows) {
        std::istringstream in(row.text);
        EXPECT_EQ(freeMemIn(in), row.bytes) << row.text;
    }
    EXPECT_NE(getfreemem(), 4294967295);
}

} // namespace
