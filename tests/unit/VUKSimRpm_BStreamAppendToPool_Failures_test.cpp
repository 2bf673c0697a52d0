// An append stream whose pool others grow, close or fill, or which cannot be written.
#include "VUKSimRpm_BStreamAppendToPool.h"

#include "CountedMemory.h"
#include "Failures.h"
#include "LimitedMemory.h"
#include "OnePool.h"
#include "Transfers.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamAppendToPool";
constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

constexpr char kEndElsewhere[] = "mStart + Length() == mPool.End()";

using Stream = VUKSimRpm_BStreamAppendToPool;

void Put(Stream& stream, const std::string& bytes)
{
    stream.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

auto Flushing(Stream& stream)
{
    return [&stream] { stream.Flush(); };
}
} // namespace

// Others at work on the pool

TEST(BStreamAppendToPool, BreaksWhenThePoolWasGrownBehindItsBack)
{
    OnePool store;
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    stream->Flush();
    store.File().Allocate(5);
    Put(*stream, "def");
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>(Flushing(*stream), kSource, 89));
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { (void)stream->PrepWrite(16); }, kSource, 89));
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { Put(*stream, Letters(40)); }, kSource, 89));
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { delete stream; }, kSource, 89));
    EXPECT_EQ(store.Pool().Length(), 8ULL);
    EXPECT_EQ(store.Stored(), "abc");
}

TEST(BStreamAppendToPool, WithNothingWaitingFailsItsAssertionWhenThePoolWasGrown)
{
    OnePool store;
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    stream->Flush();
    store.File().Allocate(5);
    EXPECT_TRUE(RaisesAssertion(Flushing(*stream), kEndElsewhere, kSource, 73));
    EXPECT_TRUE( // a long run flushes first
        RaisesAssertion([&] { Put(*stream, Letters(40)); }, kEndElsewhere, kSource, 73));
    EXPECT_TRUE(RaisesAssertion([&] { delete stream; }, kEndElsewhere, kSource, 73));
}

TEST(BStreamAppendToPool, GivenNothingAtAllFailsItsAssertionWhenThePoolWasGrown)
{
    OnePool store;
    auto* const stream = new Stream(store.Pool(), 16);
    store.File().Allocate(1);
    EXPECT_TRUE(RaisesAssertion([&] { delete stream; }, kEndElsewhere, kSource, 73));
}

TEST(BStreamAppendToPool, BreaksWhenAnotherStreamAppendsToThePool)
{
    const OnePool store;
    auto* const first = new Stream(store.Pool(), 16);
    Stream second(store.Pool(), 16);
    Put(*first, "abc");
    Put(second, "def");
    second.Flush();
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { delete first; }, kSource, 89));
    Put(second, "ghi");
    second.Flush();
    EXPECT_EQ(store.Stored(), "defghi");
}

TEST(BStreamAppendToPool, ExpectsTheEndThatItFindsBehindALongRun)
{
    // Only a pool that grows from within the stream's own transfer ends elsewhere.
    OnePool store;
    auto* const stream = new Stream(store.Pool(), 16);
    {
        const DuringNextWrite hook([&] { store.File().Allocate(5); });
        Put(*stream, Letters(40));
    }
    Put(*stream, "abc");
    EXPECT_TRUE(RaisesAssertion(Flushing(*stream), kEndElsewhere, kSource, 73));
    EXPECT_EQ(store.Stored(), Letters(40) + std::string(5, '\0') + "abc");
    EXPECT_TRUE(RaisesAssertion([&] { delete stream; }, kEndElsewhere, kSource, 73));
}

TEST(BStreamAppendToPool, DoesNotMindAnAllocationOfNothing)
{
    OnePool store;
    Stream stream(store.Pool(), 16);
    Put(stream, "abc");
    store.File().Allocate(0);
    stream.Flush();
    EXPECT_EQ(store.Stored(), "abc");
}

// Pools that do not grow

TEST(BStreamAppendToPool, PassesOnThatThePoolIsNotTheLastAnyMore)
{
    OnePool store("old");
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    store.File().NewPool(true, nullptr);
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>(Flushing(*stream), kPoolSource, 163));
    EXPECT_TRUE(
        Raises<VUKSimExcImmutablePool>([&] { Put(*stream, Letters(40)); }, kPoolSource, 163));
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { delete stream; }, kPoolSource, 163));
    EXPECT_EQ(store.Pool().Length(), 3ULL);
}

TEST(BStreamAppendToPool, PassesOnThatThePoolOfAReadOnlyFileDoesNotGrow)
{
    OnePool store("old");
    store.ReopenReadOnly();
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { delete stream; }, kPoolSource, 163));
    EXPECT_EQ(store.Stored(), "old");
}

// What failed counts as appended although it still waits: the pool may have grown by it.
TEST(BStreamAppendToPool, CountsTheBytesOfAFailedFlushTwice)
{
    OnePool store("old");
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    store.File().NewPool(true, nullptr);
    EXPECT_EQ(stream->Length(), 3UL);
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>(Flushing(*stream), kPoolSource, 163));
    EXPECT_EQ(stream->Length(), 6UL);
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { delete stream; }, kPoolSource, 163));
}

// Pools that are gone

TEST(BStreamAppendToPool, CannotBeMadeOnAPoolThatIsGone)
{
    OnePool store;
    const VUKSimRpm_Pool pool = store.Pool();
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { Stream(pool, 16); }, kSource, 18));
}

TEST(BStreamAppendToPool, BreaksWhenBytesWaitForAPoolThatIsGone)
{
    OnePool store("old");
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>(Flushing(*stream), kSource, 89));
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { delete stream; }, kSource, 89));
    EXPECT_EQ(store.Stored(), "old");
}

TEST(BStreamAppendToPool, BreaksAtALongRunForAPoolThatIsGone)
{
    OnePool store("old");
    Stream stream(store.Pool(), 16);
    store.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { Put(stream, Letters(40)); }, kSource, 89));
}

TEST(BStreamAppendToPool, DiesQuietlyWithNothingWaitingWhenItsPoolIsGone)
{
    OnePool store("old");
    {
        Stream stream(store.Pool(), 16);
        Put(stream, "abc");
        stream.Flush();
        store.CloseFile();
        stream.Flush();
    }
    EXPECT_EQ(store.Stored(), "oldabc");
}

TEST(BStreamAppendToPool, BreaksWhenItsEmptyPoolWasReplaced)
{
    OnePool store;
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    store.File().NewPool(true, nullptr); // drops the pool, in which nothing was allocated
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { delete stream; }, kSource, 89));
    EXPECT_EQ(store.File().PoolCount(), 1U);
    EXPECT_EQ(store.Pool().Length(), 0ULL);
}

// Failures in the middle

TEST(BStreamAppendToPool, AppendsNoMoreOnceAWriteFailed)
{
    const OnePool store("old");
    auto* const stream = new Stream(store.Pool(), 16);
    Put(*stream, "abc");
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pwrite, ENOSPC);
        EXPECT_TRUE(RaisesFileError(Flushing(*stream), "write", ENOSPC));
    }
    EXPECT_EQ(store.Pool().Length(), 6ULL); // allocated and never written
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>(Flushing(*stream), kSource, 89));
    EXPECT_TRUE(Raises<VUKSimExcBrokenStream>([&] { delete stream; }, kSource, 89));
    EXPECT_EQ(store.Stored(), "old");
}

TEST(BStreamAppendToPool, GivesBackItsMemoryWhenItsLastFlushFails)
{
    const OnePool store("old");
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Pwrite, ENOSPC);
    const CountedMemory memory;
    auto* const stream = new Stream(store.Pool(), 64);
    EXPECT_EQ(memory.Blocks(), 2U); // the stream and its chunk
    EXPECT_EQ(memory.Peak(), 64 + sizeof(Stream));
    Put(*stream, "abc");
    EXPECT_TRUE(RaisesFileError([&] { delete stream; }, "write", ENOSPC));
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(BStreamAppendToPool, AllocatesItsChunkWhenItIsMadeAndNeverAgain)
{
    const OnePool store("old");
    const VUKSimRpm_Pool pool = store.Pool();
    const CountedMemory memory;
    {
        Stream stream(pool, 64);
        EXPECT_EQ(memory.Allocations(), 1);
        for (int i = 0; i < 20; ++i) {
            stream.Write("0123456789", 10);
        }
        stream.Flush();
        EXPECT_EQ(memory.Allocations(), 1);
    }
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST(BStreamAppendToPool, CannotBeMadeWithoutMemory)
{
    const OnePool store("old");
    const VUKSimRpm_Pool pool = store.Pool();
    const CountedMemory counted;
    const LimitedMemory memory(0);
    EXPECT_TRUE(RaisesBadAlloc([&] { Stream(pool, 64); }));
    EXPECT_EQ(counted.Blocks(), 0U);
}

TEST(BStreamAppendToPool, KeepsQuietWhileAnotherExceptionUnwinds)
{
    const OnePool store("old");
    ScriptedSystemCalls calls;
    calls.FailAlways(SystemCall::Pwrite, ENOSPC);
    const auto append = [&] {
        Stream stream(store.Pool(), 16);
        Put(stream, "abc");
        throw std::runtime_error("the first");
    };
    EXPECT_THROW(append(), std::runtime_error);
    EXPECT_EQ(Writes(calls).size(), 1U); // it tried
}

TEST(BStreamAppendToPool, WritesItsBytesWhileAnotherExceptionUnwinds)
{
    const OnePool store("old");
    const auto append = [&] {
        Stream stream(store.Pool(), 16);
        Put(stream, "abc");
        throw std::runtime_error("the first");
    };
    EXPECT_THROW(append(), std::runtime_error);
    EXPECT_EQ(store.Stored(), "oldabc");
}
