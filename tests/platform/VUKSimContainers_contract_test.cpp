#include "cow_List.h"

#include "Failures.h"

#include <gtest/gtest.h>

#include <type_traits>

static_assert(std::is_same_v<decltype(cow_List<int>().Length()), long long>);

TEST(ListContract, AppendsAtItsEnd)
{
    cow_List<int> list;
    EXPECT_EQ(list.Length(), 0);
    list.Reserve(2);
    EXPECT_EQ(list.Length(), 0);
    list.Append(5);
    list.Append(6);
    list.Append(7);
    EXPECT_EQ(list.Length(), 3);
    EXPECT_EQ(list[0], 5);
    EXPECT_EQ(list[2], 7);
}

TEST(ListContract, RaisesItsOwnErrorOutOfRange)
{
    cow_List<int> list;
    EXPECT_TRUE(RaisesRange([&] { (void)list[0]; }, 0, 0));
    list.Append(5);
    EXPECT_TRUE(RaisesRange([&] { (void)list[1]; }, 1, 1));
    EXPECT_TRUE(RaisesRange([&] { (void)list[-1]; }, -1, 1));
}

TEST(ListContract, GivesEachCopyItsOwnElementsOnceItChanges)
{
    cow_List<int> list;
    list.Append(5);
    cow_List<int> copy = list;
    copy.Append(6);
    EXPECT_EQ(list.Length(), 1);
    EXPECT_EQ(copy.Length(), 2);
    EXPECT_EQ(copy[0], 5);
}
