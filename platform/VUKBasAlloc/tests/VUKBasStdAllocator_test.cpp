#include "VUKBasStdAllocator.h"

#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <new>
#include <type_traits>
#include <vector>

TEST(StdAllocator, TakesAContainersMemoryFromTheTable)
{
    mem_Watch watch;
    {
        std::vector<int, VUKBasStdAllocator<int>> numbers;
        numbers.reserve(10);
        EXPECT_EQ(watch.LastSize(), 40U);
        EXPECT_EQ(watch.Live(), 1);
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(StdAllocator, RefusesACountThatDoesNotFitInBytes)
{
    mem_Watch watch;
    VUKBasStdAllocator<int> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(0x4000'0000'0000'0000U)),
                 std::bad_array_new_length);
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(StdAllocator, PassesOnThatThereIsNoMemory)
{
    mem_Watch watch;
    watch.FailAt(1);
    VUKBasStdAllocator<int> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(1)), std::bad_alloc);
}

TEST(StdAllocator, IsEqualToEveryOther)
{
    const VUKBasStdAllocator<int> numbers;
    const VUKBasStdAllocator<char> letters(numbers);
    EXPECT_TRUE(numbers == letters);
    EXPECT_TRUE(std::allocator_traits<VUKBasStdAllocator<int>>::is_always_equal::value);
}
