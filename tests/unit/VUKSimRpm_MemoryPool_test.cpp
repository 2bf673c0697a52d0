#include "VUKSimRpm_MemoryPool.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "OnePool.h"
#include "Transfers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool";
constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

constexpr unsigned long kHuge = 18446744073709551615UL; // 2^64 - 1

using Locator = VUKSimRpm_Locator;
using MemoryPool = VUKSimRpm_MemoryPool;
using testing::IsEmpty;

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
