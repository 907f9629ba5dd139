#include "driver/freemem.h"

#include "support.h"

namespace tervoxal {

namespace {

TEST(FreeMemory, readsBothLayouts) {
    checkTable("freemem.tsv", [](auto& text) {
        std::istringstream in(text);
        return std::to_string(freeMemIn(in));
    });
    EXPECT_NE(getfreemem(), 4294967295);
}

} // namespace

} // namespace tervoxal
