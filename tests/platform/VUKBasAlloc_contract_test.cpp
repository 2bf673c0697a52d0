#include "VUKBasAllocator.h"
#include "mem_Alloc.h"

#include "Failures.h"
#include "LimitedMemory.h"
#include "ResidentBytes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

class Counted : public VUKBasAllocatorBase
{
public:
    explicit Counted(int& blocks) : mBlocks(blocks) {}
    ~Counted() override { mBlocks = -1; }

    void* Alloc(std::size_t size) override
    {
        ++mBlocks;
        return mem_OperatorNewThrow(size);
    }
    void Free(void* block) noexcept override
    {
        mBlocks -= block != nullptr ? 1 : 0;
        mem_Free(block);
    }

private:
    int& mBlocks; // given out and not taken back; -1 once the allocator is gone
};

struct Node : mem_AllocationOperators
{
    int value = 7;
};
} // namespace

TEST(MemoryContract, GivesBlocksOfAnySizeAndTakesThemAllBackTheSameWay)
{
    for (void* (*allocate)(std::size_t) :
         {mem_OperatorNewThrow, mem_OperatorNewTinyThrow, mem_OperatorNewThrowBuiltin,
          mem_OperatorNewZeroedThrow}) {
        for (const std::size_t size : {0U, 1U, 32U, 1000000U}) {
            void* block = allocate(size);
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U);
            std::memset(block, 0xFF, size);
            mem_Free(block);
        }
    }
    mem_Free(nullptr);
}

TEST(MemoryContract, GivesZeroedBlocksWhosePagesCostNothingUntilTheyAreTouched)
{
    constexpr std::size_t kSize = 256 * 1024 * 1024;
    const long long before = ResidentBytes();
    auto* block = static_cast<unsigned char*>(mem_OperatorNewZeroedThrow(kSize));
    EXPECT_EQ(block[0], 0);
    EXPECT_EQ(block[kSize / 2], 0);
    EXPECT_EQ(block[kSize - 1], 0);
    EXPECT_LT(ResidentBytes() - before, 16 * 1024 * 1024);
    mem_Free(block);
}

TEST(MemoryContract, ThrowsBadAllocWhenThereIsNoMemory)
{
    for (void* (*allocate)(std::size_t) :
         {mem_OperatorNewThrow, mem_OperatorNewTinyThrow, mem_OperatorNewThrowBuiltin,
          mem_OperatorNewZeroedThrow}) {
        const LimitedMemory none(0);
        EXPECT_TRUE(RaisesBadAlloc([&] { (void)allocate(16); }));
        EXPECT_TRUE(none.RanOut());
    }
    const LimitedMemory none(0);
    EXPECT_TRUE(RaisesBadAlloc([] { delete new Node; }));
}

TEST(AllocatorContract, IsEmptyByDefaultAndThenGivesNothing)
{
    VUKBasAllocator none;
    EXPECT_TRUE(none.Null());
    EXPECT_TRUE(RaisesBadAlloc([&] { (void)none.Alloc(1); }));
    none.Free(nullptr);
}

TEST(AllocatorContract, SharesTheAllocatorAmongItsCopiesAndDeletesItWithTheLast)
{
    int blocks = 0;
    {
        VUKBasAllocator copy;
        {
            VUKBasAllocator first(new Counted(blocks));
            copy = first;
            void* block = first.Alloc(8);
            EXPECT_EQ(blocks, 1);
            copy.Free(block);
        }
        EXPECT_FALSE(copy.Null());
        EXPECT_EQ(blocks, 0);
    }
    EXPECT_EQ(blocks, -1);
}

TEST(AllocatorContract, ComesWithOneForTheHeap)
{
    VUKBasAllocator heap(new VUKBasMemAllocator);
    auto* block = static_cast<char*>(heap.Alloc(100));
    std::memset(block, 1, 100);
    heap.Free(block);
}
