#include "VUKSimRpm_BStreamReadLocator.h"

#include "Bytes.h"
#include "CountedMemory.h"
#include "Failures.h"
#include "LimitedMemory.h"
#include "OnePool.h"
#include "Transfers.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadLocator";
constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

constexpr unsigned long kHuge = 18446744073709551615UL; // 2^64 - 1

using Stream = VUKSimRpm_BStreamReadLocator;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Prepared(Stream& stream, unsigned long length)
{
    const char* const bytes = stream.PrepRead(length);
    return std::string(bytes, length);
}

std::string Next(Stream& stream, unsigned int length)
{
    std::string bytes(length, '.');
    stream.Read(bytes.data(), length);
    return bytes;
}

auto Preparing(Stream& stream, unsigned long length)
{
    return [&stream, length] { (void)stream.PrepRead(length); };
}

auto Reading(Stream& stream, unsigned int length)
{
    return [&stream, length] { (void)Next(stream, length); };
}
} // namespace

TEST(BStreamReadLocator, HasAnIdentity)
{
    EXPECT_FALSE(std::is_copy_constructible_v<Stream>);
    EXPECT_FALSE(std::is_copy_assignable_v<Stream>);
    EXPECT_FALSE(std::is_move_constructible_v<Stream>);
}

TEST(BStreamReadLocator, TouchesNeitherPoolNorMemoryUntilItIsAskedForBytes)
{
    const OnePool store(Letters(100));
    const VUKSimRpm_Locator start = store.Start();
    const ScriptedSystemCalls calls;
    const CountedMemory memory;
    Stream stream(start, 0, 64);
    char byte = 'x';
    stream.Read(&byte, 0);
    EXPECT_EQ(memory.Allocations(), 0);
    EXPECT_THAT(calls.Calls(), IsEmpty());
}

TEST(BStreamReadLocator, AllocatesItsChunkOnceAndGivesItBack)
{
    const OnePool store(Letters(200));
    const VUKSimRpm_Locator start = store.Start();
    const CountedMemory memory;
    {
        Stream stream(start, 0, 64);
        for (int i = 0; i < 20; ++i) {
            (void)stream.PrepRead(10);
        }
        EXPECT_EQ(memory.Allocations(), 1);
        EXPECT_EQ(memory.Peak(), 64U);
    }
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(BStreamReadLocator, RaisesALesserChunkSizeTo16)
{
    const OnePool store(Letters(100));
    for (const unsigned long chunkSize : {0UL, 8UL, 15UL, 16UL}) {
        Stream stream(store.Start(), 0, chunkSize);
        EXPECT_TRUE(RaisesRequestTooBig(Preparing(stream, 17), 17, 16, kSource, 62));
        EXPECT_EQ(Prepared(stream, 16), Letters(16));
    }
}

TEST(BStreamReadLocator, KeepsAGreaterChunkSize)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 0, 17);
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(stream, 18), 18, 17, kSource, 62));
    EXPECT_EQ(Prepared(stream, 17), Letters(17));
}

TEST(BStreamReadLocator, RefusesToPrepareNothing)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 0, 16);
    EXPECT_TRUE(RaisesAssertion(Preparing(stream, 0), "requestedLength > 0", kSource, 37));
}

TEST(BStreamReadLocator, ReadsNothingWithoutTouchingAnything)
{
    Stream nowhere(VUKSimRpm_Locator(), 0, 16); // any transfer would throw
    char byte = 'x';
    nowhere.Read(&byte, 0);
    EXPECT_EQ(byte, 'x');
}

TEST(BStreamReadLocator, ReadsAnEmptyText)
{
    const OnePool store(std::string("\0\0\0\0\x02\0\0\0ab\0\0", 12));
    Stream stream(store.Start(), 0, 16);
    VUKString text = "before";
    stream.Read(text);
    EXPECT_TRUE(text.IsEmpty());
    stream.Read(text);
    EXPECT_TRUE(text == "ab");
}

TEST(BStreamReadLocator, ServesManyShortRecordsWithOneTransfer)
{
    const OnePool store(Letters(200));
    const ScriptedSystemCalls calls;
    Stream stream(store.Start() + 100, 0, 64);
    for (unsigned long at = 100; at < 164; at += 8) {
        EXPECT_EQ(Prepared(stream, 8), Letters(200).substr(at, 8));
    }
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{180, 64}));
}

TEST(BStreamReadLocator, MovesWhatIsLeftToTheFrontAndReadsTheRestOfAChunk)
{
    const OnePool store(Letters(100));
    const ScriptedSystemCalls calls;
    Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(Prepared(stream, 10), Letters(100).substr(0, 10));
    EXPECT_EQ(Prepared(stream, 10), Letters(100).substr(10, 10)); // 6 held, 10 more
    EXPECT_EQ(Prepared(stream, 6), Letters(100).substr(20, 6));
    EXPECT_EQ(Prepared(stream, 16), Letters(100).substr(26, 16));
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{80, 16}, Transfer{96, 10}, Transfer{106, 16}));
}

TEST(BStreamReadLocator, ReadsAheadAWholeChunkWhateverTheLimit)
{
    const OnePool store(Letters(100));
    const ScriptedSystemCalls calls;
    Stream stream(store.Start(), 4, 64);
    EXPECT_EQ(Prepared(stream, 4), "abcd");
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{80, 64}));
    EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 1), 5, 4, kSource, 59));
}

TEST(BStreamReadLocator, StopsAtTheLimit)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 10, 64);
    EXPECT_EQ(Next(stream, 4), "abcd");
    EXPECT_EQ(Next(stream, 4), "efgh");
    EXPECT_TRUE(RaisesShortBuffer(Reading(stream, 4), 12, 10, kSource, 75));
    EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 4), 12, 10, kSource, 59));
    EXPECT_EQ(Next(stream, 2), "ij"); // the limit itself can be reached
    EXPECT_TRUE(RaisesShortBuffer(Reading(stream, 1), 11, 10, kSource, 75));
}

TEST(BStreamReadLocator, StopsALongRunAtTheLimitBeforeAnythingIsRead)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 50, 16);
    EXPECT_EQ(Next(stream, 4), "abcd");
    const ScriptedSystemCalls calls;
    EXPECT_TRUE(RaisesShortBuffer(Reading(stream, 47), 51, 50, kSource, 75));
    EXPECT_THAT(Reads(calls), IsEmpty());
    EXPECT_EQ(Next(stream, 46), Letters(50).substr(4));
}

TEST(BStreamReadLocator, WithLimitZeroHasNone)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(Next(stream, 100), Letters(100));
}

TEST(BStreamReadLocator, LooksAtTheLimitBeforeTheChunkSize)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 10, 16);
    EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 17), 17, 10, kSource, 59));
}

TEST(BStreamReadLocator, ReadsAheadBeforeItLooksAtTheLimit)
{
    Stream stream(VUKSimRpm_Locator(), 10, 16);
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>(Preparing(stream, 17), kLocatorSource, 117));
}

TEST(BStreamReadLocator, SaysHowManyBytesItHoldsWhenThePoolDeliversTooFew)
{
    const OnePool store("0123456789");
    Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(Prepared(stream, 4), "0123");
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(stream, 8), 8, 6, kSource, 62));
    EXPECT_TRUE(RaisesRequestTooBig(Reading(stream, 7), 7, 6, kSource, 62));
    EXPECT_EQ(Prepared(stream, 6), "456789");
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(stream, 1), 1, 0, kSource, 62));
}

TEST(BStreamReadLocator, IsNotFooledBySumsThatWrap)
{
    const OnePool store(Letters(100));
    Stream limited(store.Start(), 10, 16);
    EXPECT_EQ(Prepared(limited, 4), "abcd");
    // 4 + 2^64 - 1 is 3 in 64 bits, below the limit.
    EXPECT_TRUE(RaisesShortBuffer(Preparing(limited, kHuge), 3, 10, kSource, 59));
    EXPECT_EQ(Prepared(limited, 4), "efgh");

    Stream unlimited(store.Start(), 0, 16);
    EXPECT_EQ(Prepared(unlimited, 4), "abcd");
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(unlimited, kHuge), 4294967295U, 16, kSource, 62));
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(unlimited, kHuge - 3), 4294967292U, 16, kSource, 62));
    EXPECT_EQ(Prepared(unlimited, 4), "efgh");

    Stream widest(store.Start(), kHuge, 16);
    EXPECT_EQ(Prepared(widest, 4), "abcd");
    EXPECT_TRUE(RaisesShortBuffer(Preparing(widest, kHuge), 3, 4294967295U, kSource, 59));
}

// Runs longer than a chunk

TEST(BStreamReadLocator, ReadsALongRunPastTheBuffer)
{
    const OnePool store(Letters(200));
    const ScriptedSystemCalls calls;
    Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(Next(stream, 5), Letters(200).substr(0, 5));
    EXPECT_EQ(Next(stream, 100), Letters(200).substr(5, 100)); // 11 held, then 89
    EXPECT_EQ(Next(stream, 5), Letters(200).substr(105, 5));
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{80, 16}, Transfer{96, 89}, Transfer{185, 16}));
}

TEST(BStreamReadLocator, ReadsARunOfAChunkThroughTheBuffer)
{
    const OnePool store(Letters(200));
    const ScriptedSystemCalls calls;
    Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(Next(stream, 5), Letters(200).substr(0, 5));
    EXPECT_EQ(Next(stream, 16), Letters(200).substr(5, 16));
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{80, 16}, Transfer{96, 5}));

    // A run past the buffer would have consumed what it got.
    const OnePool shorter("0123456789");
    Stream another(shorter.Start(), 0, 16);
    EXPECT_TRUE(RaisesRequestTooBig(Reading(another, 16), 16, 10, kSource, 62));
    EXPECT_EQ(Prepared(another, 10), "0123456789");
}

TEST(BStreamReadLocator, GoesOnBehindALongRunThatCameBeforeTheFirstChunk)
{
    const OnePool store(Letters(200));
    Stream stream(store.Start(), 120, 16);
    EXPECT_EQ(Next(stream, 100), Letters(200).substr(0, 100));
    EXPECT_EQ(Prepared(stream, 8), Letters(200).substr(100, 8));
    EXPECT_TRUE(RaisesShortBuffer(Reading(stream, 13), 121, 120, kSource, 75));
}

TEST(BStreamReadLocator, SaysHowManyBytesALongRunDelivered)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 1000, 16);
    EXPECT_EQ(Next(stream, 4), "abcd");
    std::string bytes(200, '.');
    EXPECT_TRUE(RaisesRequestTooBig([&] { stream.Read(bytes.data(), 200); }, 200, 96, kSource, 62));
    EXPECT_EQ(bytes, Letters(100).substr(4) + std::string(104, '.'));
    // What was delivered is consumed: 100 bytes lie behind, 900 before the limit.
    EXPECT_TRUE(RaisesShortBuffer(Reading(stream, 901), 1001, 1000, kSource, 75));
    EXPECT_TRUE(RaisesRequestTooBig(Reading(stream, 900), 900, 0, kSource, 62));
}

// Failures in the middle

TEST(BStreamReadLocator, KeepsWhatItHoldsWhenTheReadAheadFails)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(Prepared(stream, 10), Letters(100).substr(0, 10));
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pread, EIO);
        EXPECT_TRUE(RaisesFileError(Preparing(stream, 10), "read", EIO));
        EXPECT_TRUE(RaisesFileError(Preparing(stream, 10), "read", EIO));
        EXPECT_EQ(Prepared(stream, 4), Letters(100).substr(10, 4));
    }
    EXPECT_EQ(Prepared(stream, 10), Letters(100).substr(14, 10));
    EXPECT_EQ(Prepared(stream, 16), Letters(100).substr(24, 16));
}

TEST(BStreamReadLocator, GoesOnBehindTheBytesItHeldWhenALongRunFails)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(Prepared(stream, 10), Letters(100).substr(0, 10));
    std::string bytes(50, '.');
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pread, EIO);
        EXPECT_TRUE(RaisesFileError([&] { stream.Read(bytes.data(), 50); }, "read", EIO));
    }
    EXPECT_EQ(bytes.substr(0, 6), Letters(100).substr(10, 6)); // delivered, and so consumed
    EXPECT_EQ(Prepared(stream, 8), Letters(100).substr(16, 8));
}

TEST(BStreamReadLocator, CanBeUsedAgainWhenThereWasNoMemory)
{
    const OnePool store(Letters(100));
    Stream stream(store.Start(), 0, 16);
    {
        const LimitedMemory memory(0);
        EXPECT_TRUE(RaisesBadAlloc(Preparing(stream, 10)));
    }
    EXPECT_EQ(Prepared(stream, 10), Letters(100).substr(0, 10));
}

TEST(BStreamReadLocator, FailsAtTheFirstTransferWhenItsPoolIsNotOpen)
{
    OnePool store(Letters(100));
    Stream stream(store.Start(), 0, 16);
    Stream nowhere(VUKSimRpm_Locator(), 0, 16);
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>(Preparing(stream, 1), kLocatorSource, 117));
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>(Reading(stream, 1), kLocatorSource, 117));
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>(Reading(nowhere, 99), kLocatorSource, 117));
}

// Context

TEST(BStreamReadLocator, HasTheDirectoryOfItsPool)
{
    OnePool store("x");
    const Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(stream.SourceDir(), store.Start().Directory().get());
    EXPECT_EQ(stream.IMPool(), nullptr);
    store.CloseFile();
    EXPECT_TRUE(
        Raises<VUKSimExcCantDerefLocator>([&] { (void)stream.SourceDir(); }, kLocatorSource, 149));
}

TEST(BStreamReadLocator, ReadsThroughTheMemoryPoolOfItsStart)
{
    const OnePool store(Letters(100));
    VUKSimRpm_MemoryPool image(store.Start(), 100, {}, nullptr);
    const ScriptedSystemCalls calls;
    Stream stream(VUKSimRpm_Locator(store.Start(), image), 0, 16);
    EXPECT_EQ(stream.IMPool(), &image);
    EXPECT_EQ(Prepared(stream, 10), Letters(100).substr(0, 10));
    EXPECT_EQ(Next(stream, 70), Letters(100).substr(10, 70));
    EXPECT_THAT(Reads(calls), IsEmpty());
}

TEST(BStreamReadLocator, GoesOnInThePoolWhereTheMemoryPoolEnds)
{
    const OnePool store(Letters(100));
    VUKSimRpm_MemoryPool image(store.Start(), 20, {}, nullptr);
    WriteTo(store.Start() + 10, "BEHIND THE IMAGE");
    const ScriptedSystemCalls calls;
    Stream stream(VUKSimRpm_Locator(store.Start(), image), 0, 16);
    EXPECT_EQ(Prepared(stream, 16), "abcdefghijklmnop");
    EXPECT_EQ(Prepared(stream, 4), "qrst"); // all that the image has left
    EXPECT_EQ(Prepared(stream, 6), " IMAGE");
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{100, 16}));
}

TEST(BStreamReadLocator, ReadsPositionsBeyond4GiB)
{
    OnePool store;
    store.File().Allocate(4294967396ULL); // 2^32 + 100, sparse
    WriteTo(store.Start() + 4294967290ULL, "0123456789");
    Stream stream(store.Start() + 4294967290ULL, 0, 16);
    EXPECT_EQ(Prepared(stream, 10), "0123456789");
}
