#include "VUKSimRpm_BStreamWriteLocator.h"

#include "Bytes.h"
#include "CountedMemory.h"
#include "Failures.h"
#include "OnePool.h"
#include "Transfers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamWriteLocator";
constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

constexpr unsigned long kHuge = 18446744073709551615UL; // 2^64 - 1

using Stream = VUKSimRpm_BStreamWriteLocator;
using testing::ElementsAre;
using testing::IsEmpty;

void Prepare(Stream& stream, const std::string& bytes)
{
    std::memcpy(stream.PrepWrite(bytes.size()), bytes.data(), bytes.size());
}

void Put(Stream& stream, const std::string& bytes)
{
    stream.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

auto Preparing(Stream& stream, unsigned long length)
{
    return [&stream, length] { (void)stream.PrepWrite(length); };
}

auto Putting(Stream& stream, const std::string& bytes)
{
    return [&stream, bytes] { Put(stream, bytes); };
}

auto Flushing(Stream& stream)
{
    return [&stream] { stream.Flush(); };
}

std::string Blanks(std::size_t count)
{
    return std::string(count, '_');
}
} // namespace

TEST(BStreamWriteLocator, HasAnIdentity)
{
    EXPECT_FALSE(std::is_copy_constructible_v<Stream>);
    EXPECT_FALSE(std::is_copy_assignable_v<Stream>);
    EXPECT_FALSE(std::is_move_constructible_v<Stream>);
    EXPECT_FALSE(std::is_nothrow_destructible_v<Stream>);
}

TEST(BStreamWriteLocator, TouchesNeitherPoolNorMemoryUntilItIsGivenBytes)
{
    const OnePool store(Blanks(100));
    const VUKSimRpm_Locator start = store.Start();
    const ScriptedSystemCalls calls;
    const CountedMemory memory;
    {
        Stream stream(start, 0, 64);
        stream.Write("", 0);
        stream.Flush();
    }
    EXPECT_EQ(memory.Allocations(), 0);
    EXPECT_THAT(calls.Calls(), IsEmpty());
}

TEST(BStreamWriteLocator, AllocatesItsChunkOnceAndGivesItBack)
{
    const OnePool store(Blanks(200));
    const VUKSimRpm_Locator start = store.Start();
    const CountedMemory memory;
    {
        Stream stream(start, 0, 64);
        for (int i = 0; i < 20; ++i) {
            stream.Write("0123456789", 10);
        }
        EXPECT_EQ(memory.Allocations(), 1);
        EXPECT_EQ(memory.Peak(), 64U);
    }
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(BStreamWriteLocator, RaisesALesserChunkSizeTo16)
{
    const OnePool store(Blanks(100));
    for (const unsigned long chunkSize : {0UL, 8UL, 15UL, 16UL}) {
        Stream stream(store.Start(), 0, chunkSize);
        EXPECT_TRUE(RaisesRequestTooBig(Preparing(stream, 17), 17, 16, kSource, 53));
        Prepare(stream, Letters(16));
    }
    EXPECT_EQ(store.Stored().substr(0, 17), Letters(16) + "_");
}

TEST(BStreamWriteLocator, KeepsAGreaterChunkSize)
{
    const OnePool store(Blanks(100));
    Stream stream(store.Start(), 0, 17);
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(stream, 18), 18, 17, kSource, 53));
    Prepare(stream, Letters(17));
}

TEST(BStreamWriteLocator, RefusesToPrepareNothing)
{
    const OnePool store(Blanks(100));
    Stream stream(store.Start(), 0, 16);
    EXPECT_TRUE(RaisesAssertion(Preparing(stream, 0), "requestedLength > 0", kSource, 37));
}

TEST(BStreamWriteLocator, WritesNothingWithoutTouchingAnything)
{
    Stream nowhere(VUKSimRpm_Locator(), 0, 16); // any transfer would throw
    nowhere.Write("", 0);
    nowhere.Flush();
}

TEST(BStreamWriteLocator, WritesAnEmptyText)
{
    const OnePool store(Blanks(12));
    {
        Stream stream(store.Start(), 0, 16);
        stream.Write(VUKString());
        stream.Write(VUKString("ab"));
    }
    EXPECT_EQ(store.Stored(), std::string("\0\0\0\0\x02\0\0\0ab\0\0", 12));
}

TEST(BStreamWriteLocator, WritesItsBytesWhenItDiesAndNotBefore)
{
    const OnePool store(Blanks(10));
    {
        Stream stream(store.Start() + 2, 0, 16);
        Put(stream, "abc");
        EXPECT_EQ(store.Stored(), "__________");
    }
    EXPECT_EQ(store.Stored(), "__abc_____");
}

TEST(BStreamWriteLocator, WritesItsBytesAtAFlushOnce)
{
    const OnePool store(Blanks(10));
    const ScriptedSystemCalls calls;
    {
        Stream stream(store.Start(), 0, 16);
        Put(stream, "abc");
        stream.Flush();
        EXPECT_EQ(store.Stored(), "abc_______");
        stream.Flush();
        Put(stream, "de");
    }
    EXPECT_EQ(store.Stored(), "abcde_____");
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 3}, Transfer{83, 2}));
}

TEST(BStreamWriteLocator, FlushesBeforeARequestThatDoesNotFitTheChunk)
{
    const OnePool store(Blanks(100));
    const ScriptedSystemCalls calls;
    Stream stream(store.Start(), 0, 16);
    Prepare(stream, Letters(10));
    Prepare(stream, "012345"); // fits to the last byte
    EXPECT_THAT(Writes(calls), IsEmpty());
    Prepare(stream, "6");
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 16}));
    EXPECT_EQ(store.Stored().substr(0, 18), Letters(10) + "012345__");
}

TEST(BStreamWriteLocator, HoldsARunThatFillsTheChunkToTheLastByte)
{
    const OnePool store(Blanks(100));
    const ScriptedSystemCalls calls;
    Stream stream(store.Start(), 0, 16);
    Put(stream, Letters(10));
    Put(stream, "012345");
    EXPECT_THAT(Writes(calls), IsEmpty());
    stream.Flush();
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 16}));
    EXPECT_EQ(store.Stored().substr(0, 18), Letters(10) + "012345__");
}

TEST(BStreamWriteLocator, HoldsItsBytesWhereTheyWillLieInTheirPage)
{
    const OnePool store(Blanks(50000)); // from byte 80 on
    Stream stream(store.Start() + 20, 0, 16384);
    EXPECT_EQ(PlaceInPage(stream.PrepWrite(10000)), 100U);
    EXPECT_EQ(PlaceInPage(stream.PrepWrite(10000)), 1908U); // 10100 - 2 * 4096
    Put(stream, Letters(20000));
    EXPECT_EQ(PlaceInPage(stream.PrepWrite(1)), 3236U); // 40100 - 9 * 4096
}

TEST(BStreamWriteLocator, WritesWhatItHoldsAndThenALongRunDirectly)
{
    const OnePool store(Blanks(200));
    const ScriptedSystemCalls calls;
    {
        Stream stream(store.Start(), 0, 16);
        Put(stream, "01234");
        Put(stream, Letters(100));
        EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 5}, Transfer{85, 100}));
        EXPECT_EQ(store.Stored(), "01234" + Letters(100) + Blanks(95));
        Put(stream, "56789");
    }
    EXPECT_EQ(store.Stored(), "01234" + Letters(100) + "56789" + Blanks(90));
    EXPECT_EQ(Writes(calls).size(), 3U);
}

TEST(BStreamWriteLocator, WritesDirectlyWhatDoesNotFitEvenIfItIsShorterThanAChunk)
{
    const OnePool store(Blanks(100));
    const ScriptedSystemCalls calls;
    {
        Stream stream(store.Start(), 0, 16);
        Put(stream, Letters(10));
        Put(stream, "0123456");
        EXPECT_EQ(store.Stored().substr(0, 18), Letters(10) + "0123456_");
    }
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 10}, Transfer{90, 7}));
}

TEST(BStreamWriteLocator, WritesALongRunBeforeTheFirstChunkWithoutMemory)
{
    const OnePool store(Blanks(100));
    const VUKSimRpm_Locator start = store.Start();
    Stream stream(start, 0, 16);
    const std::string run = Letters(50);
    {
        const CountedMemory memory;
        Put(stream, run);
        EXPECT_EQ(memory.Allocations(), 0);
    }
    Put(stream, "!");
    stream.Flush();
    EXPECT_EQ(store.Stored(), run + "!" + Blanks(49));
}

// The limit

TEST(BStreamWriteLocator, StopsAtTheLimit)
{
    const OnePool store(Blanks(100));
    {
        Stream stream(store.Start(), 10, 64);
        Put(stream, "abcd");
        Put(stream, "efgh");
        EXPECT_TRUE(RaisesShortBuffer(Putting(stream, "0123"), 12, 10, kSource, 66));
        EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 4), 12, 10, kSource, 50));
        Put(stream, "ij"); // the limit itself can be reached
        EXPECT_TRUE(RaisesShortBuffer(Putting(stream, "k"), 11, 10, kSource, 66));
        stream.Flush();
        EXPECT_TRUE(RaisesShortBuffer(Putting(stream, "k"), 11, 10, kSource, 66));
        EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 1), 11, 10, kSource, 50));
    }
    EXPECT_EQ(store.Stored().substr(0, 12), "abcdefghij__");
}

TEST(BStreamWriteLocator, StopsALongRunAtTheLimitBeforeAnythingIsWritten)
{
    const OnePool store(Blanks(100));
    Stream stream(store.Start(), 50, 16);
    Put(stream, "abcd");
    EXPECT_TRUE(RaisesShortBuffer(Putting(stream, Letters(47)), 51, 50, kSource, 66));
    EXPECT_EQ(store.Stored(), Blanks(100));
    Put(stream, Letters(46));
    EXPECT_EQ(store.Stored(), "abcd" + Letters(46) + Blanks(50));
}

TEST(BStreamWriteLocator, LooksAtTheLimitAgainAfterTheFlushThatALongRunNeeds)
{
    // Only a stream that is used from within its own transfer has moved on by then.
    const OnePool store(Blanks(100));
    Stream stream(store.Start(), 50, 16);
    Put(stream, "abcd");
    const DuringNextWrite hook([&] { (void)stream.PrepWrite(1); });
    EXPECT_TRUE(RaisesShortBuffer(Putting(stream, Letters(46)), 51, 50, kSource, 74));
    EXPECT_EQ(store.Stored(), "abcd" + Blanks(96));
}

TEST(BStreamWriteLocator, LooksAtTheLimitBeforeTheChunkSize)
{
    const OnePool store(Blanks(100));
    Stream stream(store.Start(), 10, 16);
    EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 17), 17, 10, kSource, 50));
}

TEST(BStreamWriteLocator, HasFlushedWhenAPreparedRequestIsRefused)
{
    const OnePool store(Blanks(100));
    Stream stream(store.Start(), 30, 16);
    Put(stream, "abcd");
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(stream, 17), 17, 16, kSource, 53));
    EXPECT_EQ(store.Stored().substr(0, 6), "abcd__");
    Put(stream, "efgh");
    EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 23), 31, 30, kSource, 50));
    EXPECT_EQ(store.Stored().substr(0, 10), "abcdefgh__");
}

TEST(BStreamWriteLocator, FlushesNothingForARequestThatFitsTheChunkAndNotTheLimit)
{
    const OnePool store(Blanks(100));
    Stream stream(store.Start(), 12, 16);
    Put(stream, "abcdefgh");
    EXPECT_TRUE(RaisesShortBuffer(Preparing(stream, 8), 16, 12, kSource, 50));
    EXPECT_EQ(store.Stored().substr(0, 10), Blanks(10));
}

TEST(BStreamWriteLocator, IsNotFooledBySumsThatWrap)
{
    const OnePool store(Blanks(100));
    Stream limited(store.Start(), 10, 16);
    Put(limited, "abcd");
    // 4 + 2^64 - 1 is 3 in 64 bits, below the limit.
    EXPECT_TRUE(RaisesShortBuffer(Preparing(limited, kHuge), 3, 10, kSource, 50));

    Stream unlimited(store.Start(), 0, 16);
    Put(unlimited, "abcd");
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(unlimited, kHuge), 4294967295U, 16, kSource, 53));
    EXPECT_TRUE(RaisesRequestTooBig(Preparing(unlimited, kHuge - 3), 4294967292U, 16, kSource, 53));
    Put(unlimited, "efgh");
    unlimited.Flush();
    EXPECT_EQ(store.Stored().substr(0, 10), "abcdefgh__");
}

// What reaches the file

TEST(BStreamWriteLocator, LetsNoOldHeapBytesReachTheFile)
{
    const OnePool store(Blanks(40));
    const CountedMemory memory; // fills what nobody asks to be zero
    {
        Stream stream(store.Start(), 0, 32);
        (void)stream.PrepWrite(20); // and never filled
    }
    EXPECT_EQ(store.Stored(), bytes::Zeros(20) + Blanks(20));
}

TEST(BStreamWriteLocator, NeverExtendsAPool)
{
    const OnePool store(Blanks(10));
    const VUKSimRpm_Locator start = store.Start() + 8;
    {
        Stream stream(start, 0, 16);
        Put(stream, "ab");
    }
    auto* const stream = new Stream(start, 0, 16);
    Put(*stream, "abc");
    EXPECT_TRUE(RaisesIOBounds(Flushing(*stream), 8, 11, 10, kPoolSource, 186));
    EXPECT_TRUE(RaisesIOBounds(Putting(*stream, Letters(20)), 8, 11, 10, kPoolSource, 186));
    EXPECT_TRUE(RaisesIOBounds([&] { delete stream; }, 8, 11, 10, kPoolSource, 186));
    EXPECT_EQ(store.Stored(), "________ab");
}
