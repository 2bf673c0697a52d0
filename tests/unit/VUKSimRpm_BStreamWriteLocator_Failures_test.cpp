// What becomes of the bytes that wait in a stream when a transfer fails, and what a stream knows of
// the place that it writes to.
#include "VUKSimRpm_BStreamWriteLocator.h"

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
#include <memory>
#include <stdexcept>

namespace {

constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";
constexpr char kImageSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool";

using Stream = VUKSimRpm_BStreamWriteLocator;

void Put(Stream& stream, const std::string& bytes)
{
    stream.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

// A stream that holds bytes which cannot be written.
class BStreamWriteLocatorOnAFullDisk : public testing::Test
{
protected:
    BStreamWriteLocatorOnAFullDisk() { calls.FailAlways(SystemCall::Pwrite, ENOSPC); }

    [[nodiscard]] Stream* NewStream()
    {
        auto* const stream = new Stream(store.Start(), 0, 16);
        Put(*stream, "abc");
        return stream;
    }

    OnePool store{"0123456789"};
    ScriptedSystemCalls calls;
};

} // namespace

TEST(BStreamWriteLocator, HoldsItsBytesUntilAFlushSucceeds)
{
    const OnePool store("0123456789");
    ScriptedSystemCalls calls;
    Stream stream(store.Start(), 0, 16);
    Put(stream, "abc");
    calls.Script(SystemCall::Pwrite, {Fails(EIO), Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { stream.Flush(); }, "write", EIO));
    EXPECT_TRUE(RaisesFileError([&] { (void)stream.PrepWrite(14); }, "write", ENOSPC));
    EXPECT_EQ(store.Stored(), "0123456789");
    Put(stream, "de");
    stream.Flush();
    EXPECT_EQ(store.Stored(), "abcde56789");
}

TEST(BStreamWriteLocator, StaysWhereItIsWhenALongRunFails)
{
    const OnePool store(std::string(60, '_'));
    ScriptedSystemCalls calls;
    Stream stream(store.Start(), 0, 16);
    Put(stream, "abc");
    calls.Script(SystemCall::Pwrite, {Passes(), Fails(EIO)});
    EXPECT_TRUE(RaisesFileError([&] { Put(stream, Letters(40)); }, "write", EIO));
    EXPECT_EQ(store.Stored(), "abc" + std::string(57, '_'));
    Put(stream, Letters(40));
    EXPECT_EQ(store.Stored(), "abc" + Letters(40) + std::string(17, '_'));
}

TEST(BStreamWriteLocator, CanBeUsedAgainWhenThereWasNoMemory)
{
    const OnePool store("0123456789");
    {
        Stream stream(store.Start(), 0, 16);
        {
            const LimitedMemory memory(0);
            EXPECT_TRUE(RaisesBadAlloc([&] { Put(stream, "abc"); }));
        }
        Put(stream, "def");
    }
    EXPECT_EQ(store.Stored(), "def3456789");
}

TEST(BStreamWriteLocator, FailsAtTheFirstTransferWhenItsPoolIsNotOpen)
{
    using Failure = VUKSimExcCantDerefLocator;
    auto* const stream = new Stream(VUKSimRpm_Locator(), 0, 16);
    EXPECT_TRUE(Raises<Failure>([&] { Put(*stream, Letters(17)); }, kLocatorSource, 130));
    Put(*stream, "abc");
    EXPECT_TRUE(Raises<Failure>([&] { stream->Flush(); }, kLocatorSource, 130));
    EXPECT_TRUE(Raises<Failure>([&] { delete stream; }, kLocatorSource, 130));
}

// Destructors

TEST_F(BStreamWriteLocatorOnAFullDisk, SaysSoWhenItDies)
{
    const auto write = [&] {
        Stream stream(store.Start(), 0, 16);
        Put(stream, "abc");
    };
    EXPECT_TRUE(RaisesFileError(write, "write", ENOSPC));
    EXPECT_EQ(store.Stored(), "0123456789");
}

TEST_F(BStreamWriteLocatorOnAFullDisk, SaysSoWhenItIsDeletedAndGivesBackItsMemory)
{
    const CountedMemory memory;
    Stream* const stream = NewStream();
    EXPECT_EQ(memory.Blocks(), 2U); // the stream and its chunk
    EXPECT_TRUE(RaisesFileError([&] { delete stream; }, "write", ENOSPC));
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST_F(BStreamWriteLocatorOnAFullDisk, SaysSoWhenItIsDeletedAsItsBase)
{
    VUKSimRpm_BStreamWrite* const stream = NewStream();
    EXPECT_TRUE(RaisesFileError([&] { delete stream; }, "write", ENOSPC));
}

TEST_F(BStreamWriteLocatorOnAFullDisk, KeepsQuietWhileAnotherExceptionUnwinds)
{
    const CountedMemory memory;
    const auto write = [&] {
        const std::unique_ptr<Stream> onHeap(NewStream());
        Stream onStack(store.Start(), 0, 16);
        Put(onStack, "def");
        throw std::runtime_error("the first");
    };
    try {
        write();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& raised) {
        EXPECT_STREQ(raised.what(), "the first");
    }
    EXPECT_EQ(Writes(calls).size(), 2U); // both tried
    EXPECT_EQ(memory.Blocks(), 0U);
}

TEST_F(BStreamWriteLocatorOnAFullDisk, SaysSoWhenItLivedAndDiedWithinAnothersUnwinding)
{
    // A destructor that writes a last record of its own, and knows how to deal with a failure.
    struct LastWords
    {
        ~LastWords()
        {
            try {
                Stream stream(start, 0, 16);
                Put(stream, "abc");
            } catch (const VUKSimUttOSFileException& raised) {
                error = raised.ErrorNumber();
            }
        }
        VUKSimRpm_Locator start;
        int& error;
    };
    int error = 0;
    try {
        const LastWords words{store.Start(), error};
        throw std::runtime_error("the first");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(error, ENOSPC);
}

// Context

TEST(BStreamWriteLocator, HasTheDirectoryOfItsPool)
{
    OnePool store("x");
    const Stream stream(store.Start(), 0, 16);
    EXPECT_EQ(stream.SourceDir(), store.Start().Directory().get());
    EXPECT_EQ(stream.IMPool(), nullptr);
    store.CloseFile();
    EXPECT_TRUE(
        Raises<VUKSimExcCantDerefLocator>([&] { (void)stream.SourceDir(); }, kLocatorSource, 149));
}

TEST(BStreamWriteLocator, WritesThroughTheMemoryPoolOfItsStart)
{
    const OnePool store(std::string(60, '_'));
    VUKSimRpm_MemoryPool image(store.Start(), 60, {}, nullptr);
    const VUKSimRpm_Locator imaged(store.Start(), image);
    const ScriptedSystemCalls calls;
    {
        Stream stream(imaged, 0, 16);
        EXPECT_EQ(stream.IMPool(), &image);
        Put(stream, "abc");
        Put(stream, Letters(40));
        Put(stream, "xyz");
    }
    const std::string written = "abc" + Letters(40) + "xyz" + std::string(14, '_');
    EXPECT_EQ(ReadFrom(imaged, 60), written);
    EXPECT_EQ(ReadFrom(store.Start(), 60), written);
}

TEST(BStreamWriteLocator, WritesNothingOutsideTheMemoryPoolOfItsStart)
{
    const OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start(), 5, {}, nullptr);
    auto* const stream = new Stream(VUKSimRpm_Locator(store.Start() + 3, image), 0, 16);
    Put(*stream, "abc");
    EXPECT_TRUE(
        RaisesAssertion([&] { delete stream; }, "Within(location, length)", kImageSource, 57));
    EXPECT_EQ(store.Stored(), "0123456789");
}

TEST(BStreamWriteLocator, WritesPositionsBeyond4GiB)
{
    OnePool store;
    store.File().Allocate(4294967396ULL); // 2^32 + 100, sparse
    const VUKSimRpm_Locator place = store.Start() + 4294967290ULL;
    {
        Stream stream(place, 10, 16);
        Put(stream, "0123456789");
    }
    EXPECT_EQ(ReadFrom(place, 10), "0123456789");
    EXPECT_EQ(store.Folder().Size("a.sim"), 4294967380ULL); // 80 + 2^32 + 4
}
