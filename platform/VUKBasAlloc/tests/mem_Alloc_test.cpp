#include "mem_Alloc.h"

#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <type_traits>

#include <unistd.h>

namespace {

using AllocationFunction = void* (*)(std::size_t);

constexpr AllocationFunction kAllFunctions[] = {mem_OperatorNewThrow, mem_OperatorNewTinyThrow,
                                                mem_OperatorNewThrowBuiltin,
                                                mem_OperatorNewZeroedThrow};

struct Widget : mem_AllocationOperators
{
    long long value = 7;
};

struct ThrowingWidget : mem_AllocationOperators
{
    ThrowingWidget() { throw 1; }
};

long ResidentBytes()
{
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

} // namespace

TEST(MemAlloc, GivesWritableBlocksOfTheSizeAskedFor)
{
    for (const AllocationFunction allocate : kAllFunctions) {
        mem_Watch watch;
        void* block = allocate(1000);
        EXPECT_EQ(watch.LastSize(), 1000U);
        std::memset(block, 0x5A, 1000);
        EXPECT_EQ(watch.Live(), 1);
        mem_Free(block);
        EXPECT_EQ(watch.Live(), 0);
    }
}

TEST(MemAlloc, GivesBlocksAlignedForEveryBuiltInType)
{
    for (const AllocationFunction allocate : kAllFunctions) {
        void* block = allocate(1);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0U);
        mem_Free(block);
    }
}

TEST(MemAlloc, GivesABlockOfItsOwnForNoBytes)
{
    for (const AllocationFunction allocate : kAllFunctions) {
        mem_Watch watch;
        void* first = allocate(0);
        EXPECT_EQ(watch.LastSize(), 1U);
        void* second = allocate(0);
        EXPECT_NE(first, nullptr);
        EXPECT_NE(first, second);
        mem_Free(first);
        mem_Free(second);
    }
}

TEST(MemAlloc, ThrowsBadAllocWhenTheTableGivesNothing)
{
    for (const AllocationFunction allocate : kAllFunctions) {
        mem_Watch watch;
        watch.FailAt(1);
        EXPECT_THROW(static_cast<void>(allocate(8)), std::bad_alloc);
        void* block = allocate(8);
        EXPECT_NE(block, nullptr);
        mem_Free(block);
        EXPECT_EQ(watch.Live(), 0);
    }
}

TEST(MemAlloc, ZeroesEveryByteOfAZeroedBlock)
{
    // The heap is given something to hand out again first.
    void* used = mem_OperatorNewThrow(4096);
    std::memset(used, 0xFF, 4096);
    mem_Free(used);

    auto* bytes = static_cast<unsigned char*>(mem_OperatorNewZeroedThrow(4096));
    EXPECT_TRUE(std::all_of(bytes, bytes + 4096, [](unsigned char byte) { return byte == 0; }));
    mem_Free(bytes);
}

TEST(MemAlloc, SpendsNoMemoryOnTheUntouchedPagesOfAZeroedBlock)
{
    constexpr std::size_t kHalfGiB = 536'870'912;
    const long before = ResidentBytes();
    auto* bytes = static_cast<unsigned char*>(mem_OperatorNewZeroedThrow(kHalfGiB));
    EXPECT_EQ(bytes[kHalfGiB - 1], 0);
    EXPECT_LT(ResidentBytes() - before, 134'217'728);
    mem_Free(bytes);
}

TEST(MemAlloc, FreesNullWithoutAskingTheTable)
{
    mem_Watch watch;
    mem_Free(nullptr);
    EXPECT_EQ(watch.Live(), 0);
}

TEST(MemAlloc, ReplacedFunctionsServeEveryCallUntilTheyAreTakenBack)
{
    const mem_Functions before = mem_CurrentFunctions();
    {
        mem_Watch watch;
        EXPECT_NE(mem_CurrentFunctions().allocate, before.allocate);
        void* plain = mem_OperatorNewThrow(3);
        void* zeroed = mem_OperatorNewZeroedThrow(5);
        EXPECT_EQ(watch.Allocations(), 2);
        mem_Free(plain);
        mem_Free(zeroed);
    }
    EXPECT_EQ(mem_CurrentFunctions().allocate, before.allocate);
    EXPECT_EQ(mem_CurrentFunctions().allocateZeroed, before.allocateZeroed);
    EXPECT_EQ(mem_CurrentFunctions().release, before.release);
}

TEST(MemAllocationOperators, SendASingleObjectThroughTheTable)
{
    mem_Watch watch;
    const auto widget = std::make_unique<Widget>();
    EXPECT_EQ(watch.LastSize(), sizeof(Widget));
    EXPECT_EQ(watch.Live(), 1);
}

TEST(MemAllocationOperators, SendAnArrayThroughTheTable)
{
    mem_Watch watch;
    {
        const auto widgets = std::make_unique<Widget[]>(3);
        EXPECT_EQ(widgets[2].value, 7);
        EXPECT_EQ(watch.Live(), 1);
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(MemAllocationOperators, GiveTheMemoryBackWhenTheConstructorThrows)
{
    mem_Watch watch;
    EXPECT_THROW(static_cast<void>(std::make_unique<ThrowingWidget>()), int);
    EXPECT_EQ(watch.Allocations(), 1);
    EXPECT_EQ(watch.Live(), 0);
}

TEST(MemAllocationOperators, PassOnThatThereIsNoMemory)
{
    mem_Watch watch;
    watch.FailAt(1);
    EXPECT_THROW(static_cast<void>(std::make_unique<Widget>()), std::bad_alloc);
}

TEST(MemAllocationOperators, LeaveConstructionInPlaceUsable)
{
    mem_Watch watch;
    alignas(Widget) std::byte room[sizeof(Widget)];
    auto* widget = new (room) Widget;
    EXPECT_EQ(static_cast<void*>(widget), room);
    EXPECT_EQ(widget->value, 7);
    widget->~Widget();
    EXPECT_EQ(watch.Allocations(), 0);
}

TEST(MemAllocationOperators, AddNothingToAnObject)
{
    EXPECT_EQ(sizeof(Widget), 8U);
    EXPECT_TRUE(std::is_empty_v<mem_AllocationOperators>);
    EXPECT_FALSE(std::is_polymorphic_v<mem_AllocationOperators>);
}
