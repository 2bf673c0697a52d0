#include "VUKSimRpm_MemoryPool.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "OnePool.h"
#include "VUKBasAllocatorBase.h"
#include "Transfers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <vector>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool";
constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

constexpr unsigned long kHuge = 18446744073709551615UL; // 2^64 - 1

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

// A pool of ten digits and an image of the five from 2 on.
class MemoryPoolOfFive : public testing::Test
{
protected:
    [[nodiscard]] Locator At(unsigned long long offset) const { return store.Start() + offset; }

    [[nodiscard]] std::string Image() const
    {
        std::string bytes(5, '.');
        EXPECT_EQ(image.Read(At(2), 5, bytes.data()), 5UL);
        return bytes;
    }

    OnePool store{"0123456789"};
    MemoryPool image{store.Start() + 2, 5, {}, nullptr};
};

} // namespace

TEST(MemoryPool, HasAnIdentity)
{
    EXPECT_FALSE(std::is_copy_constructible_v<MemoryPool>);
    EXPECT_FALSE(std::is_copy_assignable_v<MemoryPool>);
    EXPECT_FALSE(std::is_move_constructible_v<MemoryPool>);
    EXPECT_FALSE(std::is_move_assignable_v<MemoryPool>);
}

// Loading

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

// Questions

TEST_F(MemoryPoolOfFive, KnowsWhichStretchesLieWhollyInside)
{
    EXPECT_TRUE(image.Within(At(2), 5));
    EXPECT_TRUE(image.Within(At(2), 0));
    EXPECT_TRUE(image.Within(At(4), 3));
    EXPECT_TRUE(image.Within(At(7), 0));
    EXPECT_FALSE(image.Within(At(2), 6));
    EXPECT_FALSE(image.Within(At(4), 4));
    EXPECT_FALSE(image.Within(At(7), 1));
    EXPECT_FALSE(image.Within(At(8), 0));
    EXPECT_FALSE(image.Within(At(1), 1));
    EXPECT_FALSE(image.Within(At(1), 5));
}

TEST_F(MemoryPoolOfFive, IsNotFooledByLengthsAndOffsetsThatWrap)
{
    EXPECT_FALSE(image.Within(At(2), kHuge));
    EXPECT_FALSE(image.Within(At(4), kHuge - 3)); // 4 + length is 0 in 64 bits
    EXPECT_FALSE(image.Within(At(kHuge), 4));     // so is this
    EXPECT_FALSE(image.Startin(At(kHuge)));
}

TEST_F(MemoryPoolOfFive, HoldsNoStretchOfAnotherPoolOrOfNone)
{
    const OnePool other("0123456789");
    EXPECT_FALSE(image.Within(other.Start() + 2, 1));
    EXPECT_FALSE(image.Within(Locator(), 0));
}

TEST_F(MemoryPoolOfFive, KnowsWhichBytesLieInside)
{
    EXPECT_FALSE(image.Startin(At(0)));
    EXPECT_FALSE(image.Startin(At(1)));
    EXPECT_TRUE(image.Startin(At(2)));
    EXPECT_TRUE(image.Startin(At(6)));
    EXPECT_FALSE(image.Startin(At(7)));
}

TEST_F(MemoryPoolOfFive, AskedForAByteOfAnotherPoolFailsTheSamePoolAssertion)
{
    const OnePool other("0123456789");
    EXPECT_TRUE(RaisesAssertion([&] { (void)image.Startin(other.Start() + 2); }, "SamePool(that)",
                                kLocatorSource, 87));
    EXPECT_TRUE(RaisesAssertion([&] { (void)image.Startin(Locator()); }, "SamePool(that)",
                                kLocatorSource, 87));
}

TEST_F(MemoryPoolOfFive, AskedAfterItsDocumentClosedFailsTheSamePoolAssertion)
{
    const Locator inside = At(2);
    store.Document().Close();
    EXPECT_TRUE(RaisesAssertion([&] { (void)image.Startin(inside); }, "SamePool(that)",
                                kLocatorSource, 87));
    EXPECT_FALSE(image.Within(inside, 1));
}

// Reading

TEST_F(MemoryPoolOfFive, ReadsWhatWasThereWhenItWasLoaded)
{
    WriteTo(store.Start(), "abcdefghij"); // without the image
    EXPECT_EQ(Image(), "23456");
}

TEST_F(MemoryPoolOfFive, ClipsAReadAtItsEnd)
{
    std::string bytes(10, '.');
    EXPECT_EQ(image.Read(At(6), 10, bytes.data()), 1UL);
    EXPECT_EQ(bytes, "6.........");
    EXPECT_EQ(image.Read(At(4), 10, bytes.data()), 3UL);
    EXPECT_EQ(bytes, "456.......");
    EXPECT_EQ(image.Read(At(4), 3, bytes.data()), 3UL);
}

TEST_F(MemoryPoolOfFive, ClipsAReadWhoseEndWraps)
{
    std::string bytes(10, '.');
    EXPECT_EQ(image.Read(At(4), kHuge, bytes.data()), 3UL);
    EXPECT_EQ(bytes, "456.......");
}

TEST_F(MemoryPoolOfFive, ReadsNothingThatBeginsOutside)
{
    const OnePool other("0123456789");
    char byte = 'x';
    EXPECT_TRUE(RaisesAssertion([&] { (void)image.Read(other.Start() + 2, 1, &byte); },
                                "mLocator.SamePool(location)", kSource, 41));
    EXPECT_TRUE(RaisesAssertion([&] { (void)image.Read(Locator(), 1, &byte); },
                                "mLocator.SamePool(location)", kSource, 41));
    EXPECT_TRUE(RaisesAssertion([&] { (void)image.Read(At(1), 1, &byte); }, "mLocator <= location",
                                kSource, 44));
    EXPECT_TRUE(RaisesAssertion([&] { (void)image.Read(At(7), 1, &byte); },
                                "location < mLocator + mSize", kSource, 45));
    EXPECT_EQ(byte, 'x');
}

// Writing

TEST_F(MemoryPoolOfFive, WritesIntoTheImageAndNowhereElse)
{
    const ScriptedSystemCalls calls;
    image.Write(At(3), 2, "ab");
    EXPECT_EQ(Image(), "2ab56");
    EXPECT_THAT(Writes(calls), IsEmpty());
    EXPECT_EQ(store.Stored(), "0123456789");
}

TEST_F(MemoryPoolOfFive, NeverClipsAWrite)
{
    const OnePool other("0123456789");
    const auto refuses = [&](const Locator& location, unsigned long length) {
        return RaisesAssertion([&] { image.Write(location, length, "abcdef"); },
                               "Within(location, length)", kSource, 57);
    };
    EXPECT_TRUE(refuses(At(7), 1)); // at mLocator + mSize
    EXPECT_TRUE(refuses(At(6), 2));
    EXPECT_TRUE(refuses(At(2), 6));
    EXPECT_TRUE(refuses(At(1), 2));
    EXPECT_TRUE(refuses(At(4), kHuge));
    EXPECT_TRUE(refuses(other.Start() + 2, 1));
    EXPECT_TRUE(refuses(Locator(), 1));
    EXPECT_EQ(Image(), "23456");
}

TEST_F(MemoryPoolOfFive, MovesBytesWithoutAllocating)
{
    const Locator place = At(3);
    char bytes[2] = {'a', 'b'};
    const CountedMemory memory;
    image.Write(place, 2, bytes);
    EXPECT_EQ(image.Read(place, 2, bytes), 2UL);
    EXPECT_EQ(memory.Allocations(), 0);
}

TEST(MemoryPool, WritesNothingBackWhenItDies)
{
    const OnePool store("0123456789");
    const ScriptedSystemCalls calls;
    {
        MemoryPool image(store.Start(), 10, {}, nullptr);
        image.Write(store.Start(), 3, "abc");
    }
    EXPECT_THAT(Writes(calls), IsEmpty());
    EXPECT_EQ(store.Stored(), "0123456789");
}

TEST(MemoryPool, ImagesAStretchBeyond4GiB)
{
    OnePool store;
    store.File().Allocate(4294967396ULL); // 2^32 + 100, sparse
    const Locator place = store.Start() + 4294967300ULL;
    WriteTo(place, "0123456789");
    MemoryPool image(place + 2, 5, {}, nullptr);
    const Locator imaged(place + 3, image);
    WriteTo(imaged, "ab");
    EXPECT_EQ(ReadFrom(imaged, 10), "ab56");
    EXPECT_EQ(ReadFrom(place, 10), "012ab56789");
    EXPECT_FALSE(image.Startin(store.Start() + 6)); // the same offset in 32 bits
}
