// Bytes moved through locators, with and without a memory pool, and direct locators made of them.
#include "VUKSimRpm_Locator.h"

#include "Bytes.h"
#include "Failures.h"
#include "OnePool.h"
#include "Transfers.h"
#include "VUKBasSharedPtr.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_PoolImpl.h"
#include "VUKSimRpm_PoolMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";
constexpr char kImageSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool";
constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
constexpr char kFileSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";
constexpr char kMapSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolMap";

using Locator = VUKSimRpm_Locator;
using testing::IsEmpty;

// Read, Write and DirectLocator each say that the pool cannot be reached.
void ExpectNoPool(const Locator& locator)
{
    using Failure = VUKSimExcCantDerefLocator;
    char byte = 'x';
    EXPECT_TRUE(Raises<Failure>([&] { (void)locator.Read(1, &byte); }, kSource, 117));
    EXPECT_TRUE(Raises<Failure>([&] { locator.Write(1, &byte); }, kSource, 130));
    EXPECT_TRUE(Raises<Failure>([&] { (void)locator.DirectLocator(); }, kSource, 195));
    EXPECT_EQ(byte, 'x');
}
} // namespace

TEST(LocatorTransfer, ReadsAndWritesTheBytesItNames)
{
    const OnePool store("0123456789");
    EXPECT_EQ(ReadFrom(store.Start() + 3, 4), "3456");
    EXPECT_EQ((store.Start() + 3).Write(4, "abcd"), 4UL);
    EXPECT_EQ(store.Stored(), "012abcd789");
}

TEST(LocatorTransfer, ReadsUpToTheEndOfTheFileAndLeavesTheRestOfTheBuffer)
{
    const OnePool store("0123456789");
    std::string buffer = "....................";
    EXPECT_EQ((store.Start() + 6).Read(20, buffer.data()), 4UL);
    EXPECT_EQ(buffer, "6789................");
    EXPECT_EQ((store.Start() + 10).Read(20, buffer.data()), 0UL);
    EXPECT_EQ(buffer, "6789................");
}

TEST(LocatorTransfer, FailsOnADefaultLocator)
{
    ExpectNoPool(Locator());
}

TEST(LocatorTransfer, LooksAtTheSlotsSignBeforeItAsksTheMap)
{
    // The map would report a failed assertion; none may be reported here.
    const auto map = VUKBasMakeShared<VUKSimRpm_PoolMap>();
    ExpectNoPool({map, -1, 0, nullptr});
    ExpectNoPool({map, -2147483647 - 1, 0, nullptr});
}

TEST(LocatorTransfer, FailsWhenThePoolMapIsGone)
{
    auto map = VUKBasMakeShared<VUKSimRpm_PoolMap>();
    map->NewSlot(bytes::Uuid('a').c_str());
    const Locator locator(map, 0, 0, nullptr);
    map.reset();
    ExpectNoPool(locator);
}

TEST(LocatorTransfer, FailsWhenTheSlotNeverHadAPool)
{
    const auto map = VUKBasMakeShared<VUKSimRpm_PoolMap>();
    map->NewSlot(bytes::Uuid('a').c_str());
    ExpectNoPool({map, 0, 0, nullptr});
}

TEST(LocatorTransfer, FailsWhileThePoolsFileIsClosed)
{
    OnePool store("0123456789");
    const Locator locator = store.Start();
    store.CloseFile();
    ExpectNoPool(locator);
    EXPECT_FALSE(locator.Null());
}

TEST(LocatorTransfer, WorksAgainWhenTheFileIsBack)
{
    OnePool store("0123456789");
    const Locator locator = store.Start() + 2;
    store.ReopenReadOnly();
    EXPECT_EQ(ReadFrom(locator, 3), "234");
}

TEST(LocatorTransfer, ThroughASlotThatTheMapDoesNotHaveFailsTheMapsAssertion)
{
    const auto map = VUKBasMakeShared<VUKSimRpm_PoolMap>();
    const Locator locator(map, 0, 0, nullptr);
    char byte = 'x';
    EXPECT_TRUE(RaisesAssertion([&] { (void)locator.Read(1, &byte); }, "slot < mItemList.size()",
                                kMapSource, 59));
}

TEST(LocatorTransfer, HoldsOnToNothingBetweenCalls)
{
    OnePool store("0123456789");
    const VUKSimRpm_Pool pool = store.Pool();
    const Locator locator = store.Start();
    (void)ReadFrom(locator, 4);
    WriteTo(locator, "abcd");
    (void)locator.DirectLocator();
    EXPECT_EQ(pool.Impl().UseCount(), 1); // the file's own
    store.CloseFile();
    EXPECT_TRUE(pool.Null());
}

TEST(LocatorTransfer, PassesOnWhatThePoolSaysOfAWritePastItsData)
{
    const OnePool store("0123456789");
    EXPECT_TRUE(
        RaisesIOBounds([&] { (store.Start() + 7).Write(4, "abcd"); }, 7, 11, 10, kPoolSource, 186));
    EXPECT_EQ(store.Stored(), "0123456789");
}

TEST(LocatorTransfer, PassesOnThatTheFileIsReadOnly)
{
    OnePool store("0123456789");
    store.ReopenReadOnly();
    const Locator locator = store.Start();
    EXPECT_TRUE(Raises<VUKSimExcWriteReadOnly>([&] { locator.Write(1, "a"); }, kFileSource, 255));
}

TEST(LocatorTransfer, LeavesTheLocatorAsItWasOnFailure)
{
    OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start(), 10, {}, nullptr);
    const Locator locator(store.Start() + 4, image);
    EXPECT_TRUE(RaisesAssertion([&] { locator.Write(7, "abcdefg"); }, "Within(location, length)",
                                kImageSource, 57));
    EXPECT_TRUE(locator == store.Start() + 4);
    EXPECT_EQ(locator.IMPool(), &image);
}

// With a memory pool

TEST(LocatorTransfer, ReadsThroughTheMemoryPoolWithoutTouchingTheFile)
{
    OnePool store(Letters(100));
    VUKSimRpm_MemoryPool image(store.Start() + 20, 60, {}, nullptr);
    const Locator locator(store.Start() + 26, image);
    const ScriptedSystemCalls calls;
    EXPECT_EQ(ReadFrom(locator, 5), "abcde");
    EXPECT_THAT(Reads(calls), IsEmpty());
    store.CloseFile();
    EXPECT_EQ(ReadFrom(locator, 5), "abcde");
}

TEST(LocatorTransfer, ReadsOnlyWhatIsInTheMemoryPoolWhenItEndsBeforeTheRequest)
{
    const OnePool store(Letters(200));
    VUKSimRpm_MemoryPool image(store.Start(), 100, {}, nullptr);
    const Locator locator(store.Start() + 60, image);
    const ScriptedSystemCalls calls;
    std::string buffer(100, '.');
    EXPECT_EQ(locator.Read(100, buffer.data()), 40UL);
    EXPECT_EQ(buffer, Letters(100).substr(60) + std::string(60, '.'));
    EXPECT_THAT(Reads(calls), IsEmpty());
}

TEST(LocatorTransfer, ReadsFromThePoolWhatBeginsOutsideTheMemoryPool)
{
    const OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start() + 4, 3, {}, nullptr);
    WriteTo(store.Start(), "abcdefghij");                               // behind the image's back
    EXPECT_EQ(ReadFrom(Locator(store.Start() + 3, image), 5), "defgh"); // begins before it
    EXPECT_EQ(ReadFrom(Locator(store.Start() + 4, image), 5), "456");
    EXPECT_EQ(ReadFrom(Locator(store.Start() + 6, image), 5), "6");
    EXPECT_EQ(ReadFrom(Locator(store.Start() + 7, image), 5), "hij"); // begins behind it
}

TEST(LocatorTransfer, ReadsWithAMemoryPoolOfAnotherPoolFailTheSamePoolAssertion)
{
    const OnePool store("0123456789");
    const OnePool other("abcdefghij");
    VUKSimRpm_MemoryPool image(store.Start(), 10, {}, nullptr);
    const Locator locator(other.Start(), image);
    char byte = 'x';
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)locator.Read(1, &byte); }, "SamePool(that)", kSource, 87));
    EXPECT_EQ(byte, 'x');
}

TEST(LocatorTransfer, WritesToTheMemoryPoolAndToThePool)
{
    const OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start() + 2, 6, {}, nullptr);
    const Locator imaged(store.Start() + 3, image);
    const Locator plain = store.Start() + 3;
    EXPECT_EQ(imaged.Write(3, "abc"), 3UL);
    EXPECT_EQ(ReadFrom(plain, 3), "abc");
    EXPECT_EQ(store.Stored(), "012abc6789");
    const ScriptedSystemCalls calls;
    EXPECT_EQ(ReadFrom(imaged, 3), "abc");
    EXPECT_THAT(Reads(calls), IsEmpty());
}

TEST(LocatorTransfer, ChangesTheMemoryPoolFirstAndThePoolSecond)
{
    const OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start(), 10, {}, nullptr);
    const Locator imaged(store.Start() + 3, image);
    std::string seen;
    {
        const DuringNextWrite hook([&] { seen = ReadFrom(imaged, 3); });
        imaged.Write(3, "abc");
    }
    EXPECT_EQ(seen, "abc");
    EXPECT_EQ(store.Stored(), "012abc6789");
}

TEST(LocatorTransfer, LeavesTheMemoryPoolChangedWhenThePoolCannotBeWritten)
{
    OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start(), 10, {}, nullptr);
    const Locator imaged(store.Start(), image);
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pwrite, ENOSPC);
        EXPECT_TRUE(RaisesFileError([&] { imaged.Write(2, "ab"); }, "write", ENOSPC));
    }
    EXPECT_EQ(ReadFrom(imaged, 4), "ab23");
    store.ReopenReadOnly();
    EXPECT_TRUE(Raises<VUKSimExcWriteReadOnly>([&] { imaged.Write(2, "cd"); }, kFileSource, 255));
    EXPECT_EQ(ReadFrom(imaged, 4), "cd23");
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { imaged.Write(2, "ef"); }, kSource, 130));
    EXPECT_EQ(ReadFrom(imaged, 4), "ef23");
    EXPECT_EQ(store.Stored(), "0123456789");
}

TEST(LocatorTransfer, WritesNothingThatIsNotWhollyInTheMemoryPool)
{
    const OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start() + 2, 6, {}, nullptr);
    const auto outside = [&](unsigned long long offset, const std::string& text) {
        const Locator locator(store.Start() + offset, image);
        return RaisesAssertion([&] { locator.Write(text.size(), text.data()); },
                               "Within(location, length)", kImageSource, 57);
    };
    EXPECT_TRUE(outside(1, "ab"));
    EXPECT_TRUE(outside(7, "ab"));
    EXPECT_TRUE(outside(9, "a"));
    EXPECT_EQ(store.Stored(), "0123456789");
    EXPECT_EQ(ReadFrom(Locator(store.Start() + 2, image), 6), "234567");
}

// Direct locators

TEST(LocatorTransfer, MakesADirectLocatorToTheByteItNames)
{
    const OnePool store("0123456789");
    char byte = '.';
    EXPECT_EQ((store.Start() + 7).DirectLocator().Read(1, &byte), 1UL);
    EXPECT_EQ(byte, '7');
}

TEST(LocatorTransfer, MakesNoDirectLocatorOfOneWithAMemoryPool)
{
    const OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start(), 10, {}, nullptr);
    const Locator imaged(store.Start(), image);
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)imaged.DirectLocator(); }, "0 == mIMPool", kSource, 191));
    const Locator nowhere(Locator(), image); // looked at before the pool is
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)nowhere.DirectLocator(); }, "0 == mIMPool", kSource, 191));
}
