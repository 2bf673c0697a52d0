#include "Demo.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace heat {
namespace {

DemoOptions SmallDemo(const TemporaryFolder& folder)
{
    DemoOptions options;
    options.folder = folder.Path("demo/of heat");
    options.plate = {12, 8, 6, 40};
    options.layout = {12, 4096};
    options.checkpointEvery = 6;
    options.killStep = 22;
    return options;
}

TEST(Demo, ProvesItsPointTwiceInOneFolder)
{
    const TemporaryFolder folder;
    for (int time = 0; time < 2; ++time) {
        std::ostringstream out;
        RunDemo(SmallDemo(folder), out);

        EXPECT_NE(out.str().find("Step 18 was its last checkpoint; it had announced step 22"),
                  std::string::npos)
            << out.str();
        EXPECT_NE(out.str().find("41 fields of 280 values: every bit equals"), std::string::npos)
            << out.str();
        EXPECT_NE(
            out.str().find("\nProved: killed when it had announced step 22, the run went on at "),
            std::string::npos)
            << out.str();
        EXPECT_EQ(FileBytes(folder.Path("demo/of heat/field.svg")).substr(0, 5), "<?xml");
    }
}

TEST(Demo, SaysWhyItCannotRun)
{
    const TemporaryFolder folder;
    WriteFileBytes(folder.Path("demo"), "a file where a folder should be");
    std::ostringstream out;
    EXPECT_THROW(RunDemo(SmallDemo(folder), out), std::exception);
    EXPECT_EQ(out.str().find("Proved"), std::string::npos);
}

} // namespace
} // namespace heat
