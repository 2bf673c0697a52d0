#include "VUKSimContainers_Module.h"

#include <gtest/gtest.h>

TEST(ContainersModule, CountsAsOneLiveModuleFromItsFirstStartToItsLastEnd)
{
    int live = 10;
    VUKSimContainers_initialize(live);
    EXPECT_EQ(live, 11);
    VUKSimContainers_initialize(live);
    EXPECT_EQ(live, 11);
    VUKSimContainers_finalize(live);
    EXPECT_EQ(live, 11);
    VUKSimContainers_finalize(live);
    EXPECT_EQ(live, 10);
}

TEST(ContainersModule, IgnoresAnEndWithoutAStart)
{
    int live = 2;
    VUKSimContainers_finalize(live);
    EXPECT_EQ(live, 2);
}
