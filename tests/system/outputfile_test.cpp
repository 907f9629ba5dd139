#include "system/outputfile.h"

#include "support.h"

namespace tervoxal {

namespace {

bool written(const std::string& name, const std::string& text) {
    OutputFile file(name);
    file.write(text);
    return file.close() && !file.close();
}

TEST(OutputFile, tellsWhetherItIsThereAsAWhole) {
    const Scratch dir;
    EXPECT_TRUE(written(dir.path / "a", "text") && OutputFile(dir.path / "empty").close());
    EXPECT_EQ(dir.read("a"), "text");
    for (const std::string name : {"/no/file", "/dev/full", "/"})
        EXPECT_FALSE(written(name, "text"));
    { OutputFile(dir.path / "a").write("cut"); }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path), {}), 1);
}

} // namespace

} // namespace tervoxal
