// How a memory pool gets its bytes, and whose memory they lie in.
#include "VUKSimRpm_MemoryPool.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "OnePool.h"
#include "Transfers.h"
#include "VUKBasAllocatorBase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool";
constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

using Locator = VUKSimRpm_Locator;
using MemoryPool = VUKSimRpm_MemoryPool;
using testing::ElementsAre;
using testing::IsEmpty;

// What an allocator was asked to do; outlives it.
struct Notes
{
    std::vector<std::size_t> allocated; // sizes
    std::vector<void*> freed;
    bool gone = false;
    bool exhausted = false; // no memory from now on
};

class NotingAllocator final : public VUKBasAllocatorBase
{
public:
    explicit NotingAllocator(Notes& notes) : mNotes(notes) {}
    ~NotingAllocator() override { mNotes.gone = true; }

    void* Alloc(std::size_t size) override
    {
        if (mNotes.exhausted) {
            throw std::bad_alloc();
        }
        mNotes.allocated.push_back(size);
        return std::malloc(size);
    }
    void Free(void* block) noexcept override
    {
        mNotes.freed.push_back(block);
        std::free(block);
    }

private:
    Notes& mNotes;
};

VUKBasAllocator AllocatorWith(Notes& notes)
{
    return VUKBasAllocator(new NotingAllocator(notes));
}
} // namespace

TEST(MemoryPool, LoadsItsStretchInOneReadAndNothingElse)
{
    const OnePool store(Letters(100));
    const ScriptedSystemCalls calls;
    const MemoryPool image(store.Start() + 20, 60, {}, nullptr);
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{100, 60}));
    EXPECT_THAT(Writes(calls), IsEmpty());
}

TEST(MemoryPool, OfSizeZeroLoadsNothingAndHoldsNoByte)
{
    const OnePool store("0123456789");
    const ScriptedSystemCalls calls;
    const MemoryPool image(store.Start() + 4, 0, {}, nullptr);
    EXPECT_THAT(Reads(calls), IsEmpty());
    for (unsigned long long offset = 0; offset <= 10; ++offset) {
        EXPECT_FALSE(image.Startin(store.Start() + offset)) << offset;
    }
    EXPECT_TRUE(image.Within(store.Start() + 4, 0));
    EXPECT_FALSE(image.Within(store.Start() + 4, 1));
    EXPECT_FALSE(image.Within(store.Start() + 5, 0));
}

TEST(MemoryPool, LoadsFromThePoolAlthoughTheLocatorCarriesAnotherMemoryPool)
{
    const OnePool store("0123456789");
    MemoryPool stale(store.Start(), 10, {}, nullptr);
    WriteTo(store.Start(), "abcdefghij"); // behind the image's back
    const Locator imaged(store.Start() + 1, stale);
    ASSERT_EQ(ReadFrom(imaged, 3), "123");
    MemoryPool fresh(imaged, 3, {}, nullptr);
    EXPECT_EQ(ReadFrom(Locator(store.Start() + 1, fresh), 3), "bcd");
}

TEST(MemoryPool, WithAnEmptyAllocatorUsesTheDefaultHeap)
{
    const OnePool store("0123456789");
    const CountedMemory memory;
    {
        MemoryPool image(store.Start(), 10, VUKBasAllocator(), nullptr);
        EXPECT_EQ(memory.Blocks(), 2U); // the allocator and the image
        EXPECT_EQ(ReadFrom(Locator(store.Start(), image), 10), "0123456789");
    }
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(MemoryPool, WithAnEmptyAllocatorAdoptsABufferOfTheDefaultHeap)
{
    const OnePool store("0123456789");
    const CountedMemory memory;
    {
        char* buffer = static_cast<char*>(mem_OperatorNewThrow(10));
        const MemoryPool image(store.Start(), 10, VUKBasAllocator(), buffer);
        EXPECT_EQ(std::string(buffer, 10), "0123456789");
    }
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(MemoryPool, TakesItsBufferFromTheAllocatorAndGivesItBack)
{
    const OnePool store("0123456789");
    Notes notes;
    {
        const MemoryPool image(store.Start() + 3, 6, AllocatorWith(notes), nullptr);
        EXPECT_THAT(notes.allocated, ElementsAre(6U));
        EXPECT_THAT(notes.freed, IsEmpty());
        EXPECT_FALSE(notes.gone); // the image holds it now
    }
    EXPECT_EQ(notes.freed.size(), 1U);
    EXPECT_TRUE(notes.gone);
}

TEST(MemoryPool, AdoptsTheCallersBufferAndFreesItThroughTheAllocator)
{
    const OnePool store("0123456789");
    Notes notes;
    VUKBasAllocator allocator = AllocatorWith(notes);
    void* const buffer = allocator.Alloc(4);
    {
        const MemoryPool image(store.Start() + 3, 4, allocator, static_cast<char*>(buffer));
        EXPECT_EQ(std::string(static_cast<char*>(buffer), 4), "3456");
        EXPECT_THAT(notes.allocated, ElementsAre(4U)); // the test's own
        EXPECT_THAT(notes.freed, IsEmpty());
    }
    EXPECT_THAT(notes.freed, ElementsAre(buffer));
}

TEST(MemoryPool, FailsWhenThePoolDeliversFewerBytes)
{
    const OnePool store("0123456789");
    EXPECT_TRUE(RaisesAssertion([&] { MemoryPool(store.Start() + 3, 8, {}, nullptr); },
                                "r == mSize", kSource, 30));
}

TEST(MemoryPool, FailsWhenThePoolCannotBeReached)
{
    OnePool store("0123456789");
    const Locator locator = store.Start();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([] { MemoryPool(Locator(), 8, {}, nullptr); },
                                                  kLocatorSource, 117));
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { MemoryPool(locator, 8, {}, nullptr); },
                                                  kLocatorSource, 117));
}

TEST(MemoryPool, ThatCannotBeLoadedFreesTheBufferItAllocated)
{
    const OnePool store("0123456789");
    Notes notes;
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>(
        [&] { MemoryPool(Locator(), 8, AllocatorWith(notes), nullptr); }, kLocatorSource, 117));
    EXPECT_THAT(notes.allocated, ElementsAre(8U));
    EXPECT_EQ(notes.freed.size(), 1U);
    EXPECT_TRUE(notes.gone);

    notes = {};
    EXPECT_TRUE(
        RaisesAssertion([&] { MemoryPool(store.Start(), 11, AllocatorWith(notes), nullptr); },
                        "r == mSize", kSource, 30));
    EXPECT_THAT(notes.allocated, ElementsAre(11U));
    EXPECT_EQ(notes.freed.size(), 1U);
    EXPECT_TRUE(notes.gone);
}

TEST(MemoryPool, ThatCannotBeLoadedLeavesTheCallersBufferToTheCaller)
{
    const OnePool store("0123456789");
    Notes notes;
    VUKBasAllocator allocator = AllocatorWith(notes);
    void* const buffer = allocator.Alloc(11);
    char* const bytes = static_cast<char*>(buffer);
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>(
        [&] { MemoryPool(Locator(), 11, allocator, bytes); }, kLocatorSource, 117));
    EXPECT_TRUE(RaisesAssertion([&] { MemoryPool(store.Start(), 11, allocator, bytes); },
                                "r == mSize", kSource, 30));
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pread, EIO);
        EXPECT_TRUE(
            RaisesFileError([&] { MemoryPool(store.Start(), 5, allocator, bytes); }, "read", EIO));
    }
    EXPECT_THAT(notes.freed, IsEmpty());
    allocator.Free(buffer);
}

TEST(MemoryPool, PassesOnThatTheAllocatorHasNoMemory)
{
    const OnePool store("0123456789");
    Notes notes;
    notes.exhausted = true;
    EXPECT_TRUE(
        RaisesBadAlloc([&] { MemoryPool(store.Start(), 5, AllocatorWith(notes), nullptr); }));
    EXPECT_THAT(notes.freed, IsEmpty());
    EXPECT_TRUE(notes.gone);
}
