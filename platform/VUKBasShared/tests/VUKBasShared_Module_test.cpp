#include "VUKBasShared_Module.h"

#include <gtest/gtest.h>

TEST(SharedModule, CountsAsOneLiveModuleFromItsFirstStartToItsLastEnd)
{
    int live = 10;
    VUKBasShared_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasShared_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasShared_finalize(live);
    EXPECT_EQ(live, 11);
    VUKBasShared_finalize(live);
    EXPECT_EQ(live, 10);
}

TEST(SharedModule, IgnoresAnEndWithoutAStart)
{
    int live = 2;
    VUKBasShared_finalize(live);
    EXPECT_EQ(live, 2);
}
