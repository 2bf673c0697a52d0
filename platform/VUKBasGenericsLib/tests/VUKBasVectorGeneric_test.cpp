#include "VUKBasVectorGeneric.h"

#include "VUKString.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <new>
#include <numeric>
#include <type_traits>
#include <utility>

namespace {

VUKBasVectorGeneric<int> OneToFour()
{
    VUKBasVectorGeneric<int> numbers;
    for (int i = 1; i <= 4; ++i) {
        numbers.push_back(i);
    }
    return numbers;
}

} // namespace

TEST(VectorGeneric, IsEmptyAtFirstAndTakesNoMemory)
{
    mem_Watch watch;
    const VUKBasVectorGeneric<int> numbers;
    EXPECT_TRUE(numbers.empty());
    EXPECT_EQ(numbers.size(), 0);
    EXPECT_EQ(numbers.capacity(), 0);
    EXPECT_EQ(numbers.begin(), numbers.end());
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(VectorGeneric, CountsInSigned64Bits)
{
    const VUKBasVectorGeneric<int> numbers;
    EXPECT_TRUE((std::is_same_v<decltype(numbers.size()), long long>));
    EXPECT_TRUE((std::is_same_v<decltype(numbers.capacity()), long long>));
    EXPECT_TRUE(-1 < numbers.size());
    EXPECT_FALSE(4'294'967'295U < numbers.size());
}

TEST(VectorGeneric, KeepsElementsInTheOrderOfPushing)
{
    VUKBasVectorGeneric<int> numbers = OneToFour();
    EXPECT_EQ(numbers.size(), 4);
    EXPECT_FALSE(numbers.empty());
    EXPECT_EQ(numbers[0], 1);
    EXPECT_EQ(numbers[3], 4);
    EXPECT_EQ(numbers.back(), 4);
    numbers[1] = 20;
    EXPECT_EQ(std::accumulate(numbers.begin(), numbers.end(), 0), 28);
    const VUKBasVectorGeneric<int>& same = numbers;
    EXPECT_EQ(same[1], 20);
    EXPECT_EQ(same.back(), 4);
    EXPECT_EQ(std::accumulate(same.begin(), same.end(), 0), 28);
}

TEST(VectorGeneric, TakesElementsThatCanOnlyMove)
{
    VUKBasVectorGeneric<std::unique_ptr<int>> pointers;
    for (int i = 0; i < 20; ++i) {
        pointers.push_back(std::make_unique<int>(i));
    }
    EXPECT_EQ(*pointers[19], 19);
    EXPECT_EQ(*pointers[0], 0);
}

TEST(VectorGeneric, PushesAnElementOfItsOwnWhileItGrows)
{
    VUKBasVectorGeneric<VUKString> texts;
    texts.push_back("the first of many texts, too long for a string to hold in itself");
    for (int i = 0; i < 100; ++i) {
        texts.push_back(texts[0]);
    }
    EXPECT_STREQ(texts[100].UTF8(),
                 "the first of many texts, too long for a string to hold in itself");
}

TEST(VectorGeneric, DropsItsLastElement)
{
    VUKBasVectorGeneric<int> numbers = OneToFour();
    numbers.pop_back();
    EXPECT_EQ(numbers.size(), 3);
    EXPECT_EQ(numbers.back(), 3);
}

TEST(VectorGeneric, ResizesDownAndKeepsTheRoom)
{
    mem_Watch watch;
    VUKBasVectorGeneric<VUKString> texts;
    texts.reserve(3);
    for (int i = 0; i < 3; ++i) {
        texts.push_back("a text that is certainly too long for a string to hold in itself");
    }
    EXPECT_EQ(watch.Live(), 4);
    texts.resize_down(1);
    EXPECT_EQ(texts.size(), 1);
    EXPECT_EQ(texts.capacity(), 3);
    EXPECT_EQ(watch.Live(), 2); // the dropped texts are gone
    texts.resize_down(1);
    EXPECT_EQ(texts.size(), 1);
    texts.resize_down(0);
    EXPECT_TRUE(texts.empty());
}

TEST(VectorGeneric, RefusesToResizeDownToMoreOrToANegativeCount)
{
    VUKBasVectorGeneric<int> numbers = OneToFour();
    for (const long long count : {5LL, -1LL}) {
        try {
            numbers.resize_down(count);
            ADD_FAILURE() << "took " << count;
        } catch (const VUKBasRangeException& exception) {
            EXPECT_EQ(exception.Index(), count);
            EXPECT_EQ(exception.Length(), 4);
            EXPECT_STREQ(exception.Path(), "VUKSim/VUKBasGenericsLib.m/src/VUKBasVectorGeneric");
            EXPECT_EQ(exception.Line(), 1);
        }
        EXPECT_EQ(numbers.size(), 4);
    }
}

TEST(VectorGeneric, ClearsAndKeepsTheRoom)
{
    VUKBasVectorGeneric<int> numbers = OneToFour();
    const long long room = numbers.capacity();
    numbers.clear();
    EXPECT_TRUE(numbers.empty());
    EXPECT_EQ(numbers.capacity(), room);
}

TEST(VectorGeneric, ReservesExactlyAndNeverGivesRoomBack)
{
    mem_Watch watch;
    VUKBasVectorGeneric<int> numbers;
    numbers.reserve(64);
    EXPECT_EQ(numbers.capacity(), 64);
    EXPECT_EQ(watch.LastSize(), 256U);
    for (int i = 0; i < 64; ++i) {
        numbers.push_back(i);
    }
    EXPECT_EQ(watch.Allocations(), 1);
    numbers.reserve(10);
    numbers.reserve(-1);
    EXPECT_EQ(numbers.capacity(), 64);
    EXPECT_EQ(watch.Allocations(), 1);
}

TEST(VectorGeneric, RefusesARoomThatNoMemoryCouldHold)
{
    mem_Watch watch;
    VUKBasVectorGeneric<int> numbers;
    EXPECT_THROW(numbers.reserve(LLONG_MAX), std::bad_alloc);
    EXPECT_EQ(watch.Allocations(), 0);
    EXPECT_EQ(numbers.capacity(), 0);
}

TEST(VectorGeneric, StaysAsItWasWhenMemoryRunsOut)
{
    mem_Watch watch;
    VUKBasVectorGeneric<int> numbers = OneToFour();
    EXPECT_EQ(numbers.capacity(), 4);
    watch.FailAt(1);
    EXPECT_THROW(numbers.push_back(5), std::bad_alloc);
    watch.FailAt(1);
    EXPECT_THROW(numbers.reserve(100), std::bad_alloc);
    EXPECT_EQ(numbers.size(), 4);
    EXPECT_EQ(numbers.capacity(), 4);
    EXPECT_EQ(numbers[3], 4);
    numbers.push_back(5);
    EXPECT_EQ(numbers.back(), 5);
}

TEST(VectorGeneric, CopiesItsElements)
{
    VUKBasVectorGeneric<int> numbers = OneToFour();
    const VUKBasVectorGeneric<int> copy(numbers);
    numbers[0] = 100;
    EXPECT_EQ(copy[0], 1);
    EXPECT_EQ(copy.size(), 4);
    const VUKBasVectorGeneric<int> moved(std::move(numbers));
    EXPECT_EQ(moved[0], 100);
}
