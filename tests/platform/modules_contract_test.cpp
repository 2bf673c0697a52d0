#include "VUKBasAlloc_Module.h"
#include "VUKBasCoreUtils_Module.h"
#include "VUKBasGenericsLib_Module.h"
#include "VUKBasShared_Module.h"
#include "VUKSimContainers_Module.h"

#include <gtest/gtest.h>

namespace {

struct Module
{
    void (*initialize)(int&);
    void (*finalize)(int&);
};

constexpr Module kModules[] = {
    {VUKSimContainers_initialize, VUKSimContainers_finalize},
    {VUKBasShared_initialize, VUKBasShared_finalize},
    {VUKBasCoreUtils_initialize, VUKBasCoreUtils_finalize},
    {VUKBasGenericsLib_initialize, VUKBasGenericsLib_finalize},
    {VUKBasAlloc_initialize, VUKBasAlloc_finalize},
};
} // namespace

TEST(ModulesContract, EachCountsItselfAtItsFirstStartAndItsLastStop)
{
    for (const Module& module : kModules) {
        int live = 10;
        module.initialize(live);
        EXPECT_EQ(live, 11);
        module.initialize(live);
        EXPECT_EQ(live, 11);
        module.finalize(live);
        EXPECT_EQ(live, 11);
        module.finalize(live);
        EXPECT_EQ(live, 10);
    }
}

TEST(ModulesContract, EachCountsItselfApartFromTheOthers)
{
    int live = 0;
    for (const Module& module : kModules) {
        module.initialize(live);
    }
    EXPECT_EQ(live, 5);
    for (const Module& module : kModules) {
        module.finalize(live);
    }
    EXPECT_EQ(live, 0);
}
