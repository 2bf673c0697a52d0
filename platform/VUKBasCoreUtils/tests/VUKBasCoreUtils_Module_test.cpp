#include "VUKBasCoreUtils_Module.h"

#include <gtest/gtest.h>

TEST(CoreUtilsModule, CountsAsOneLiveModuleFromItsFirstStartToItsLastEnd)
{
    int live = 10;
    VUKBasCoreUtils_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasCoreUtils_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasCoreUtils_finalize(live);
    EXPECT_EQ(live, 11);
    VUKBasCoreUtils_finalize(live);
    EXPECT_EQ(live, 10);
}

TEST(CoreUtilsModule, IgnoresAnEndWithoutAStart)
{
    int live = 2;
    VUKBasCoreUtils_finalize(live);
    EXPECT_EQ(live, 2);
}
