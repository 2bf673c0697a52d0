#include "VUKBasGenericsLib_Module.h"

#include <gtest/gtest.h>

TEST(GenericsLibModule, CountsAsOneLiveModuleFromItsFirstStartToItsLastEnd)
{
    int live = 10;
    VUKBasGenericsLib_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasGenericsLib_initialize(live);
    EXPECT_EQ(live, 11);
    VUKBasGenericsLib_finalize(live);
    EXPECT_EQ(live, 11);
    VUKBasGenericsLib_finalize(live);
    EXPECT_EQ(live, 10);
}

TEST(GenericsLibModule, IgnoresAnEndWithoutAStart)
{
    int live = 2;
    VUKBasGenericsLib_finalize(live);
    EXPECT_EQ(live, 2);
}
