#include "VUKBasAllocator.h"

#include "mem_Watch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <utility>

namespace {

// Notes what is done to it in counters that outlive it.
struct Notes
{
    int allocated = 0;
    int freed = 0;
    int deleted = 0;
};

class NotingAllocator : public VUKBasAllocatorBase
{
public:
    explicit NotingAllocator(Notes& notes) : mNotes(notes) {}
    ~NotingAllocator() override { ++mNotes.deleted; }

    void* Alloc(std::size_t size) override
    {
        ++mNotes.allocated;
        return mem_OperatorNewThrow(size);
    }

    void Free(void* block) noexcept override
    {
        ++mNotes.freed;
        mem_Free(block);
    }

private:
    Notes& mNotes;
};

} // namespace

TEST(Allocator, IsEmptyByDefaultAndFromNull)
{
    EXPECT_TRUE(VUKBasAllocator().Null());
    EXPECT_TRUE(VUKBasAllocator(nullptr).Null());
    EXPECT_FALSE(VUKBasAllocator(new VUKBasMemAllocator).Null());
}

TEST(Allocator, GivesNoMemoryWhileEmpty)
{
    VUKBasAllocator empty;
    EXPECT_THROW(static_cast<void>(empty.Alloc(1)), std::bad_alloc);
    empty.Free(nullptr);
    EXPECT_TRUE(empty.Null());
}

TEST(Allocator, ForwardsToTheAllocatorThatItTookOver)
{
    Notes notes;
    VUKBasAllocator handle(new NotingAllocator(notes));
    void* block = handle.Alloc(100);
    std::memset(block, 1, 100);
    EXPECT_EQ(notes.allocated, 1);
    handle.Free(block);
    EXPECT_EQ(notes.freed, 1);
}

TEST(Allocator, IsDeletedWithTheLastOfItsHandles)
{
    Notes notes;
    {
        VUKBasAllocator first(new NotingAllocator(notes));
        {
            const VUKBasAllocator second(first);
            VUKBasAllocator third;
            third = second;
            first = VUKBasAllocator();
            EXPECT_TRUE(first.Null());
            EXPECT_FALSE(third.Null());
            EXPECT_EQ(notes.deleted, 0);
        }
        EXPECT_EQ(notes.deleted, 1);
    }
    EXPECT_EQ(notes.deleted, 1);
}

TEST(Allocator, AnotherHandleOnTheSameAllocatorSharesIt)
{
    Notes notes;
    auto* allocator = new NotingAllocator(notes);
    {
        VUKBasAllocator first(allocator);
        const VUKBasAllocator second(allocator);
        first = VUKBasAllocator();
        EXPECT_EQ(notes.deleted, 0);
    }
    EXPECT_EQ(notes.deleted, 1);
}

TEST(Allocator, MovingLeavesTheSourceEmpty)
{
    Notes notes;
    {
        VUKBasAllocator first(new NotingAllocator(notes));
        VUKBasAllocator second(std::move(first));
        // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what is tested
        EXPECT_TRUE(first.Null());
        EXPECT_FALSE(second.Null());
        first = std::move(second);
        EXPECT_FALSE(first.Null());
        EXPECT_EQ(notes.deleted, 0);
    }
    EXPECT_EQ(notes.deleted, 1);
}

TEST(Allocator, KeepsItsAllocatorWhenAssignedToItself)
{
    Notes notes;
    VUKBasAllocator handle(new NotingAllocator(notes));
    const VUKBasAllocator& same = handle;
    handle = same;
    EXPECT_FALSE(handle.Null());
    EXPECT_EQ(notes.deleted, 0);
}

TEST(MemAllocator, TakesItselfAndItsBlocksFromTheTable)
{
    mem_Watch watch;
    {
        VUKBasAllocator handle(new VUKBasMemAllocator);
        EXPECT_EQ(watch.Live(), 1);
        void* block = handle.Alloc(123);
        EXPECT_EQ(watch.LastSize(), 123U);
        EXPECT_EQ(watch.Live(), 2);
        handle.Free(block);
        EXPECT_EQ(watch.Live(), 1);
        handle.Free(nullptr);
        EXPECT_EQ(watch.Live(), 1);
    }
    EXPECT_EQ(watch.Live(), 0);
}

TEST(MemAllocator, ThrowsBadAllocWhenThereIsNoMemory)
{
    VUKBasAllocator handle(new VUKBasMemAllocator);
    mem_Watch watch;
    watch.FailAt(1);
    EXPECT_THROW(static_cast<void>(handle.Alloc(8)), std::bad_alloc);
    EXPECT_EQ(watch.Live(), 0);
}
