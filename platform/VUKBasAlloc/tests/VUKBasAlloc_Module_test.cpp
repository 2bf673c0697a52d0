#include "VUKBasAlloc_Module.h"

#include <gtest/gtest.h>

TEST(AllocModule, CountsAsOneLiveModuleFromItsFirstStartToItsLastEnd)
{
    int live = 10;
    VUKBasAlloc_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasAlloc_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasAlloc_finalize(live);
    EXPECT_EQ(live, 11);
    VUKBasAlloc_finalize(live);
    EXPECT_EQ(live, 10);
}

TEST(AllocModule, IgnoresAnEndWithoutAStart)
{
    int live = 2;
    VUKBasAlloc_finalize(live);
    EXPECT_EQ(live, 2);
}
