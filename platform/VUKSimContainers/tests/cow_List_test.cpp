#include "cow_List.h"

#include "VUKString.h"
#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <type_traits>

namespace {

cow_List<int> TenTwentyThirty()
{
    cow_List<int> list;
    list.Append(10);
    list.Append(20);
    list.Append(30);
    return list;
}

} // namespace

TEST(CowList, IsEmptyAtFirstAndTakesNoMemory)
{
    mem_Watch watch;
    const cow_List<int> list;
    cow_List<int> copy;
    copy = list;
    EXPECT_EQ(copy.Length(), 0);
    EXPECT_TRUE((std::is_same_v<decltype(list.Length()), long long>));
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(CowList, TakesNoMemoryForASingleElement)
{
    mem_Watch watch;
    cow_List<int> list;
    list.Reserve(1);
    list.Append(10);
    cow_List<int> copy;
    copy = list;
    EXPECT_EQ(copy.Length(), 1);
    EXPECT_EQ(copy[0], 10);
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(CowList, TakesItsSingleElementAlongIntoABlock)
{
    cow_List<int> list;
    list.Append(10);
    const cow_List<int> copy(list);
    list.Append(20);
    EXPECT_EQ(list.Length(), 2);
    EXPECT_EQ(list[0], 10);
    EXPECT_EQ(list[1], 20);
    EXPECT_EQ(copy.Length(), 1);
    EXPECT_EQ(copy[0], 10);
    cow_List<int> reserved(copy);
    reserved.Reserve(2);
    EXPECT_EQ(reserved.Length(), 1);
    EXPECT_EQ(reserved[0], 10);
}

TEST(CowList, RefusesAnIndexBesideItsSingleElement)
{
    cow_List<int> list;
    list.Append(10);
    for (const long long index : {-1LL, 1LL, LLONG_MAX}) {
        try {
            static_cast<void>(list[index]);
            ADD_FAILURE() << "took " << index;
        } catch (const VUKBasRangeException& exception) {
            EXPECT_EQ(exception.Index(), index);
            EXPECT_EQ(exception.Length(), 1);
        }
    }
}

TEST(CowList, GivesUpTheMemoryOfASingleElementThatItTookAlong)
{
    mem_Watch watch;
    {
        cow_List<VUKString> list;
        list.Append("a text that is certainly too long for a string to hold in itself");
        EXPECT_EQ(watch.Live(), 1);
        list.Append("short");
        EXPECT_EQ(watch.Live(), 3); // vector, elements, the one long text
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(CowList, KeepsElementsInTheOrderOfAppending)
{
    const cow_List<int> list = TenTwentyThirty();
    EXPECT_EQ(list.Length(), 3);
    EXPECT_EQ(list[0], 10);
    EXPECT_EQ(list[1], 20);
    EXPECT_EQ(list[2], 30);
}

TEST(CowList, RefusesAnIndexOutsideItsElements)
{
    const cow_List<int> list = TenTwentyThirty();
    for (const long long index : {-1LL, 3LL, LLONG_MAX, LLONG_MIN}) {
        try {
            static_cast<void>(list[index]);
            ADD_FAILURE() << "took " << index;
        } catch (const VUKBasRangeException& exception) {
            EXPECT_EQ(exception.Index(), index);
            EXPECT_EQ(exception.Length(), 3);
            EXPECT_STREQ(exception.Path(), "VUKSim/VUKSimContainers.m/src/cow_List");
            EXPECT_EQ(exception.Line(), 1);
        }
    }
}

TEST(CowList, RefusesIndexZeroWhileEmpty)
{
    const cow_List<int> list;
    try {
        static_cast<void>(list[0]);
        FAIL() << "took 0";
    } catch (const VUKBasRangeException& exception) {
        EXPECT_EQ(exception.Index(), 0);
        EXPECT_EQ(exception.Length(), 0);
        EXPECT_STREQ(exception.Path(), "VUKSim/VUKSimContainers.m/src/cow_List");
        EXPECT_EQ(exception.Line(), 1);
    }
}

TEST(CowList, CopiesShareTheirElements)
{
    const cow_List<int> list = TenTwentyThirty();
    mem_Watch watch;
    cow_List<int> copy;
    copy = list;
    EXPECT_EQ(&copy[1], &list[1]);
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(CowList, PartsFromItsCopiesWhenItChanges)
{
    cow_List<int> list = TenTwentyThirty();
    const cow_List<int> copy(list);
    list.Append(40);
    EXPECT_EQ(list.Length(), 4);
    EXPECT_EQ(list[3], 40);
    EXPECT_EQ(list[0], 10);
    EXPECT_EQ(copy.Length(), 3);
    EXPECT_EQ(copy[2], 30);
    EXPECT_NE(&copy[0], &list[0]);
}

TEST(CowList, PartsFromItsCopiesWhenItHasReservedAndIsEmpty)
{
    cow_List<int> list;
    list.Reserve(2);
    const cow_List<int> copy(list);
    list.Append(10);
    EXPECT_EQ(list.Length(), 1);
    EXPECT_EQ(list[0], 10);
    EXPECT_EQ(copy.Length(), 0);
}

TEST(CowList, PartsFromItsCopiesWhenItReserves)
{
    cow_List<int> list = TenTwentyThirty();
    const cow_List<int> copy(list);
    list.Reserve(100);
    EXPECT_NE(&copy[0], &list[0]);
    EXPECT_EQ(list.Length(), 3);
    EXPECT_EQ(list[2], 30);
    EXPECT_EQ(copy[2], 30);
}

TEST(CowList, KeepsAllElementsWhenACopyReservesForFewer)
{
    const cow_List<int> list = TenTwentyThirty();
    cow_List<int> copy(list);
    copy.Reserve(1);
    EXPECT_EQ(copy.Length(), 3);
    EXPECT_EQ(copy[0], 10);
    EXPECT_EQ(copy[2], 30);
}

TEST(CowList, ReservesOnceForManyElements)
{
    mem_Watch watch;
    {
        cow_List<int> list;
        list.Reserve(1000);
        const int allocations = watch.Allocations();
        for (int i = 0; i < 1000; ++i) {
            list.Append(i);
        }
        EXPECT_EQ(watch.Allocations(), allocations);
        EXPECT_EQ(list[999], 999);
        list.Reserve(-5);
        list.Reserve(10);
        EXPECT_EQ(watch.Allocations(), allocations);
        list.Reserve(2000);
        EXPECT_EQ(watch.LastSize(), 8000U);
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(CowList, AppendsAnElementOfItsOwn)
{
    cow_List<VUKString> list;
    list.Append("a text that is certainly too long for a string to hold in itself");
    for (int i = 0; i < 50; ++i) {
        list.Append(list[0]);
    }
    const cow_List<VUKString> copy(list);
    list.Append(list[0]); // while shared
    EXPECT_EQ(list.Length(), 52);
    EXPECT_STREQ(list[51].UTF8(),
                 "a text that is certainly too long for a string to hold in itself");
    EXPECT_EQ(copy.Length(), 51);
}

TEST(CowList, StaysAsItWasWhereverMemoryRunsOut)
{
    // Parting from a copy takes the shared vector and its elements, and the vector grows once more
    // when all it holds are copied: each of these allocations fails once.
    cow_List<VUKString> list;
    list.Append("a text that is certainly too long for a string to hold in itself");
    list.Append("short");
    int failures = 0;
    for (int n = 1;; ++n) {
        cow_List<VUKString> changed(list);
        mem_Watch watch;
        watch.FailAt(n);
        bool failed = false;
        try {
            changed.Append("another text, also too long for a string to hold it in itself");
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        if (!failed) {
            EXPECT_EQ(changed.Length(), 3);
            changed = cow_List<VUKString>(); // frees under the watch what it allocated under it
            EXPECT_EQ(watch.Live(), 0);
            break;
        }
        ++failures;
        EXPECT_EQ(changed.Length(), 2);
        EXPECT_EQ(&changed[0], &list[0]);
        EXPECT_EQ(watch.Live(), 0);
    }
    EXPECT_EQ(failures, 5); // vector, elements, the old text, the new one twice (given, kept)
}

TEST(CowList, KeepsItsSingleElementWhereverMemoryRunsOut)
{
    int failures = 0;
    for (int n = 1;; ++n) {
        cow_List<VUKString> list;
        list.Append("a text that is certainly too long for a string to hold in itself");
        mem_Watch watch;
        watch.FailAt(n);
        bool failed = false;
        try {
            list.Append(list[0]);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        EXPECT_EQ(list.Length(), failed ? 1 : 2);
        EXPECT_STREQ(list[0].UTF8(),
                     "a text that is certainly too long for a string to hold in itself");
        if (!failed) {
            break;
        }
        ++failures;
    }
    EXPECT_EQ(failures, 4); // vector, elements, the text twice
}

TEST(CowList, StaysAsItWasWhenReservingFails)
{
    mem_Watch watch;
    cow_List<int> list = TenTwentyThirty();
    watch.FailAt(1);
    EXPECT_THROW(list.Reserve(1000), std::bad_alloc);
    EXPECT_THROW(list.Reserve(LLONG_MAX), std::bad_alloc);
    EXPECT_EQ(list.Length(), 3);
    EXPECT_EQ(list[2], 30);
}
