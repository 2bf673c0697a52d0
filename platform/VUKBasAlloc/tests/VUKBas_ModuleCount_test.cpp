#include "VUKBas_ModuleCount.h"

#include <gtest/gtest.h>

TEST(ModuleCount, RaisesTheHostsCountOnceHoweverOftenItIsEntered)
{
    VUKBas_ModuleCount count;
    int live = 5;
    count.Enter(live);
    EXPECT_EQ(live, 6);
    count.Enter(live);
    EXPECT_EQ(live, 6);
}

TEST(ModuleCount, LowersTheHostsCountWithTheLastLeave)
{
    VUKBas_ModuleCount count;
    int live = 0;
    count.Enter(live);
    count.Enter(live);
    count.Leave(live);
    EXPECT_EQ(live, 1);
    count.Leave(live);
    EXPECT_EQ(live, 0);
}

TEST(ModuleCount, IgnoresALeaveWithoutAnEnter)
{
    VUKBas_ModuleCount count;
    int live = 3;
    count.Leave(live);
    EXPECT_EQ(live, 3);
    count.Enter(live);
    EXPECT_EQ(live, 4);
    count.Leave(live);
    EXPECT_EQ(live, 3);
}

TEST(ModuleCount, StartsAgainAfterItEnded)
{
    VUKBas_ModuleCount count;
    int live = 0;
    count.Enter(live);
    count.Leave(live);
    count.Enter(live);
    EXPECT_EQ(live, 1);
}
