#include "VUKSimRpm_BStreamAppendToPool.h"

#include "Bytes.h"
#include "CountedMemory.h"
#include "Failures.h"
#include "OnePool.h"
#include "Transfers.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamAppendToPool";
constexpr char kDirectorySource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";

constexpr unsigned long kHuge = 18446744073709551615UL; // 2^64 - 1

using Stream = VUKSimRpm_BStreamAppendToPool;
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
} // namespace

TEST(BStreamAppendToPool, HasAnIdentity)
{
    EXPECT_FALSE(std::is_copy_constructible_v<Stream>);
    EXPECT_FALSE(std::is_copy_assignable_v<Stream>);
    EXPECT_FALSE(std::is_move_constructible_v<Stream>);
    EXPECT_FALSE(std::is_nothrow_destructible_v<Stream>);
}

// Growing

TEST(BStreamAppendToPool, GrowsThePoolAtAFlushAndNotBefore)
{
    const OnePool store("old");
    Stream stream(store.Pool(), 64);
    Put(stream, "0123456789");
    EXPECT_EQ(store.Pool().Length(), 3ULL);
    EXPECT_EQ(stream.Length(), 10UL);
    stream.Flush();
    EXPECT_EQ(store.Pool().Length(), 13ULL);
    EXPECT_EQ(stream.Length(), 10UL);
    EXPECT_EQ(store.Stored(), "old0123456789");
}

TEST(BStreamAppendToPool, GrowsThePoolWhenItDies)
{
    const OnePool store("old");
    const VUKSimRpm_Locator start = store.Pool().End();
    {
        Stream stream(store.Pool(), 64);
        Put(stream, "0123456789");
        EXPECT_TRUE(store.Pool().End() == start);
    }
    EXPECT_TRUE(store.Pool().End() == start + 10);
    EXPECT_EQ(ReadFrom(start, 10), "0123456789");
}

TEST(BStreamAppendToPool, GrowsThePoolByExactlyTheBytesWrittenWithOneWriteEach)
{
    const OnePool store("old");
    const ScriptedSystemCalls calls;
    {
        Stream stream(store.Pool(), 16);
        for (int i = 0; i < 5; ++i) {
            Put(stream, "01234");
        }
        EXPECT_EQ(store.Pool().Length(), 23ULL); // the fourth did not fit: it went straight in
        EXPECT_EQ(stream.Length(), 25UL);
    }
    EXPECT_EQ(store.Pool().Length(), 28ULL);
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{83, 15}, Transfer{98, 5}, Transfer{103, 5}));
    EXPECT_EQ(store.Stored(), "old0123401234012340123401234");
}

TEST(BStreamAppendToPool, WritesWhatItHoldsAndThenALongRunDirectly)
{
    const OnePool store;
    const ScriptedSystemCalls calls;
    Stream stream(store.Pool(), 16);
    Put(stream, "abc");
    Put(stream, Letters(100));
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 3}, Transfer{83, 100}));
    EXPECT_EQ(stream.Length(), 103UL);
    EXPECT_EQ(store.Stored(), "abc" + Letters(100));
}

TEST(BStreamAppendToPool, HoldsAChunkToTheLastByte)
{
    const OnePool store;
    const ScriptedSystemCalls calls;
    Stream stream(store.Pool(), 16);
    Prepare(stream, Letters(10));
    Put(stream, "012345");
    EXPECT_THAT(Writes(calls), IsEmpty());
    Prepare(stream, "6");
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 16}));
    EXPECT_EQ(store.Stored(), Letters(10) + "012345");
    EXPECT_EQ(stream.Length(), 17UL);
}

TEST(BStreamAppendToPool, PreparesAWholeChunkBehindAFlush)
{
    const OnePool store;
    Stream stream(store.Pool(), 16);
    Prepare(stream, "0");
    Prepare(stream, Letters(16));
    EXPECT_EQ(store.Pool().Length(), 1ULL);
    stream.Flush();
    EXPECT_EQ(store.Stored(), "0" + Letters(16));
}

TEST(BStreamAppendToPool, HoldsItsBytesWhereTheyWillLieInTheirPage)
{
    const OnePool store; // its data begins at byte 80
    Stream stream(store.Pool(), 16384);
    EXPECT_EQ(PlaceInPage(stream.PrepWrite(10000)), 80U);
    EXPECT_EQ(PlaceInPage(stream.PrepWrite(10000)), 1888U); // 10080 - 2 * 4096
    Put(stream, Letters(20000));
    EXPECT_EQ(PlaceInPage(stream.PrepWrite(1)), 3216U); // 40080 - 9 * 4096
}

TEST(BStreamAppendToPool, WritesNothingWhenGivenNothing)
{
    const OnePool store("old");
    const ScriptedSystemCalls calls;
    {
        Stream stream(store.Pool(), 16);
        stream.Write("", 0);
        stream.Flush();
        EXPECT_EQ(stream.Length(), 0UL);
    }
    EXPECT_THAT(Writes(calls), IsEmpty());
    EXPECT_EQ(store.Pool().Length(), 3ULL);
}

TEST(BStreamAppendToPool, WritesAnEmptyText)
{
    const OnePool store;
    {
        Stream stream(store.Pool(), 16);
        stream.Write(VUKString());
        stream.Write(VUKString("ab"));
    }
    EXPECT_EQ(store.Stored(), std::string("\0\0\0\0\x02\0\0\0ab\0\0", 12));
}

TEST(BStreamAppendToPool, LetsOthersGoOnWhereItEnded)
{
    OnePool store("old");
    for (const char* const text : {"one", "two", "three"}) {
        Stream stream(store.Pool(), 16);
        Put(stream, text);
    }
    WriteTo(store.File().Allocate(4), "four");
    EXPECT_EQ(store.Stored(), "oldonetwothreefour");
}

TEST(BStreamAppendToPool, LetsNoOldHeapBytesReachTheFile)
{
    const OnePool store;
    const CountedMemory memory; // fills what nobody asks to be zero
    {
        Stream stream(store.Pool(), 32);
        (void)stream.PrepWrite(20); // and never filled
    }
    EXPECT_EQ(store.Stored(), bytes::Zeros(20));
}

// Requests

TEST(BStreamAppendToPool, RaisesALesserChunkSizeTo16)
{
    const OnePool store;
    for (const unsigned long chunkSize : {0UL, 4UL, 15UL, 16UL}) {
        Stream stream(store.Pool(), chunkSize);
        EXPECT_TRUE(RaisesRequestTooBig([&] { (void)stream.PrepWrite(20); }, 20, 16, kSource, 40));
        EXPECT_TRUE(RaisesRequestTooBig([&] { (void)stream.PrepWrite(17); }, 17, 16, kSource, 40));
        Prepare(stream, Letters(16));
    }
}

TEST(BStreamAppendToPool, HasFlushedWhenARequestIsTooBig)
{
    const OnePool store;
    Stream stream(store.Pool(), 4);
    Put(stream, "abc");
    EXPECT_TRUE(RaisesRequestTooBig([&] { (void)stream.PrepWrite(20); }, 20, 16, kSource, 40));
    EXPECT_EQ(store.Stored(), "abc");
    EXPECT_EQ(stream.Length(), 3UL);
    Put(stream, "def");
    stream.Flush();
    EXPECT_EQ(store.Stored(), "abcdef");
}

TEST(BStreamAppendToPool, IsNotFooledByARequestWhoseEndWraps)
{
    const OnePool store;
    Stream stream(store.Pool(), 16);
    Put(stream, "abcd");
    EXPECT_TRUE( // 4 + 2^64 - 4 is 0 in 64 bits; the exception carries the low 32 bits
        RaisesRequestTooBig([&] { (void)stream.PrepWrite(kHuge - 3); }, 4294967292U, 16, kSource,
                            40));
    EXPECT_TRUE( // in 32 bits this would be 1 byte
        RaisesRequestTooBig([&] { (void)stream.PrepWrite(4294967297UL); }, 1, 16, kSource, 40));
    EXPECT_EQ(stream.Length(), 4UL);
}

TEST(BStreamAppendToPool, RefusesToPrepareNothing)
{
    const OnePool store;
    Stream stream(store.Pool(), 16);
    EXPECT_TRUE(
        RaisesAssertion([&] { (void)stream.PrepWrite(0); }, "requestedLength > 0", kSource, 33));
    EXPECT_EQ(stream.Length(), 0UL);
}

// Context

TEST(BStreamAppendToPool, HasTheDirectoryOfItsPoolAndNoMemoryPool)
{
    OnePool store("x");
    const Stream stream(store.Pool(), 16);
    EXPECT_EQ(stream.SourceDir(), store.Start().Directory().get());
    EXPECT_EQ(stream.IMPool(), nullptr);
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { (void)stream.SourceDir(); }, kSource, 101));
    EXPECT_EQ(stream.IMPool(), nullptr);
}

TEST(BStreamAppendToPool, TranslatesLocatorsThroughTheDirectoryOfItsPool)
{
    OnePool store("x");
    store.File().NewPool(true, nullptr); // refers to itself alone
    const VUKSimRpm_Pool pool = store.File().Pool();
    const VUKSimRpm_Locator first = store.Start();
    Stream stream(pool, 64);
    pool.Start().ExternalizeImpl(stream);
    EXPECT_TRUE(Raises<VUKSimExcCantExternalizeLoc>([&] { first.ExternalizeImpl(stream); },
                                                    kDirectorySource, 123));
    stream.Flush();
    // The room of the record that failed is counted, and zero.
    EXPECT_EQ(pool.Length(), 24ULL);
    EXPECT_EQ(ReadFrom(pool.Start(), 24), bytes::Zeros(24));
}
