// What an operation costs in memory blocks and system calls, whatever the machine.
#include "CountedMemory.h"
#include "OnePool.h"
#include "Transfers.h"
#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_UUID.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

namespace {

using Locator = VUKSimRpm_Locator;
using testing::ElementsAre;
using testing::IsEmpty;

// How many blocks are allocated while it runs.
int AllocationsOf(const std::function<void()>& action)
{
    const CountedMemory memory;
    action();
    return memory.Allocations();
}

// How many system calls are made while it runs.
std::size_t CallsOf(const std::function<void()>& action)
{
    const ScriptedSystemCalls calls;
    action();
    return calls.Calls().size();
}

// Reads and writes of a store so small that its file is not mapped.
class CostsOfASmallPool : public testing::Test
{
protected:
    const OnePool store{Letters(100)};
    const Locator start = store.Start();
    char bytes[16] = "0123456789";
};
} // namespace

TEST_F(CostsOfASmallPool, CopyingALocatorIsFree)
{
    const auto copying = [&] {
        const Locator copy = start;
        Locator assigned;
        assigned = copy;
        EXPECT_TRUE(assigned == start);
    };
    EXPECT_EQ(AllocationsOf(copying), 0);
    EXPECT_EQ(CallsOf(copying), 0U);
}

TEST_F(CostsOfASmallPool, LocatorArithmeticIsFree)
{
    const auto counting = [&] {
        Locator place = start + 12;
        place += 30;
        EXPECT_EQ((place - 2) - start, 40U);
        EXPECT_TRUE(Locator(start, 42) == place);
    };
    EXPECT_EQ(AllocationsOf(counting), 0);
    EXPECT_EQ(CallsOf(counting), 0U);
}

TEST_F(CostsOfASmallPool, ComparingLocatorsIsFree)
{
    const Locator next = start + 1;
    const auto comparing = [&] {
        EXPECT_FALSE(start == next);
        EXPECT_TRUE(start < next);
        EXPECT_TRUE(start <= next);
        EXPECT_TRUE(start.SamePool(next));
        EXPECT_FALSE(start.Null());
    };
    EXPECT_EQ(AllocationsOf(comparing), 0);
    EXPECT_EQ(CallsOf(comparing), 0U);
}

TEST_F(CostsOfASmallPool, ReadingThroughALocatorIsOneCallAndNoBlock)
{
    const auto reading = [&] { EXPECT_EQ((start + 3).Read(8, bytes), 8U); };
    EXPECT_EQ(AllocationsOf(reading), 0);
    const ScriptedSystemCalls calls;
    reading();
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{83, 8}));
    EXPECT_EQ(calls.Calls().size(), 1U);
}

TEST_F(CostsOfASmallPool, WritingThroughALocatorIsOneCallAndNoBlock)
{
    const auto writing = [&] { EXPECT_EQ((start + 3).Write(8, bytes), 8U); };
    EXPECT_EQ(AllocationsOf(writing), 0);
    const ScriptedSystemCalls calls;
    writing();
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{83, 8}));
    EXPECT_EQ(calls.Calls().size(), 1U);
}

TEST_F(CostsOfASmallPool, DirectLocatorsCostNoBlock)
{
    EXPECT_EQ(AllocationsOf([&] {
                  const VUKSimRpm_DirectLocator direct = start.DirectLocator();
                  EXPECT_EQ(direct.Read(8, bytes), 8U);
                  EXPECT_EQ(direct.Write(8, bytes), 8U);
              }),
              0);
}

TEST_F(CostsOfASmallPool, AReadStreamReadsAChunkWithOneCallAndOneBlock)
{
    const ScriptedSystemCalls calls;
    const CountedMemory memory;
    VUKSimRpm_BStreamReadLocator stream(start, 0, 40);
    for (int i = 0; i < 2; ++i) {
        stream.Read(bytes, 10);
        (void)stream.PrepRead(10);
    }
    EXPECT_EQ(memory.Allocations(), 1);
    EXPECT_THAT(Reads(calls), ElementsAre(Transfer{80, 40}));
    EXPECT_EQ(calls.Calls().size(), 1U);
}

TEST_F(CostsOfASmallPool, AWriteStreamTouchesNothingWithinItsChunk)
{
    VUKSimRpm_BStreamWriteLocator stream(start, 0, 40);
    stream.Write(bytes, 1); // makes the chunk
    const ScriptedSystemCalls calls;
    EXPECT_EQ(AllocationsOf([&] {
                  stream.Write(bytes, 10);
                  std::memcpy(stream.PrepWrite(10), bytes, 10);
                  stream.Write(bytes, 10);
              }),
              0);
    EXPECT_THAT(calls.Calls(), IsEmpty());
    stream.Flush();
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{80, 31}));
    EXPECT_EQ(calls.Calls().size(), 1U);
}

TEST_F(CostsOfASmallPool, AnAppendStreamTouchesNothingWithinItsChunk)
{
    VUKSimRpm_BStreamAppendToPool stream(store.Pool(), 40);
    stream.Write(bytes, 1); // makes the chunk
    const ScriptedSystemCalls calls;
    EXPECT_EQ(AllocationsOf([&] {
                  stream.Write(bytes, 10);
                  std::memcpy(stream.PrepWrite(10), bytes, 10);
                  stream.Write(bytes, 10);
              }),
              0);
    EXPECT_THAT(calls.Calls(), IsEmpty());
    stream.Flush();
    EXPECT_THAT(Writes(calls), ElementsAre(Transfer{180, 31}));
}

TEST_F(CostsOfASmallPool, StoringAndLoadingALocatorIsFree)
{
    char record[12] = {};
    const VUKSimRpm_Pool pool = store.Pool();
    VUKSimRpm_BStreamWriteBuffer output(record, 12, pool);
    VUKSimRpm_BStreamReadBuffer input(record, 12, pool);
    Locator loaded;
    const ScriptedSystemCalls calls;
    EXPECT_EQ(AllocationsOf([&] {
                  (start + 7).ExternalizeImpl(output);
                  loaded.InternalizeImpl(input);
              }),
              0);
    EXPECT_THAT(calls.Calls(), IsEmpty());
    EXPECT_TRUE(loaded == start + 7);
}

TEST(Costs, ComparingUuidsIsFree)
{
    const VUKSimRpm_UUID one("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
    const VUKSimRpm_UUID other("aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab");
    const auto comparing = [&] {
        EXPECT_TRUE(one.Less(other));
        EXPECT_FALSE(other.Less(one));
    };
    EXPECT_EQ(AllocationsOf(comparing), 0);
    EXPECT_EQ(CallsOf(comparing), 0U);
}

TEST(Costs, WritingATextBelow256BytesNeedsNoScratchBlock)
{
    std::vector<char> buffer(1000);
    for (const std::size_t length : {1U, 40U, 251U, 252U}) {
        const VUKString text = Letters(length).c_str();
        VUKSimRpm_BStreamWriteBuffer stream(buffer.data(), buffer.size());
        EXPECT_EQ(AllocationsOf([&] { stream.Write(text); }), 0) << length;
    }
    const VUKString longer = Letters(253).c_str(); // 256 with its padding
    VUKSimRpm_BStreamWriteBuffer stream(buffer.data(), buffer.size());
    EXPECT_EQ(AllocationsOf([&] { stream.Write(longer); }), 1);
}

TEST(Costs, ReadingATextBelow256BytesNeedsNoBlockButTheTextsOwn)
{
    std::vector<char> buffer(1000);
    const auto blocksToRead = [&](std::size_t length) {
        const VUKString written = Letters(length).c_str();
        VUKSimRpm_BStreamWriteBuffer output(buffer.data(), buffer.size());
        output.Write(written);
        VUKSimRpm_BStreamReadBuffer input(buffer.data(), buffer.size());
        VUKString text;
        const int blocks = AllocationsOf([&] { input.VUKSimRpm_BStreamRead::Read(text); });
        EXPECT_TRUE(text == written);
        return blocks;
    };
    EXPECT_EQ(blocksToRead(8), 0); // short enough to need no block at all
    EXPECT_EQ(blocksToRead(40), 1);
    EXPECT_EQ(blocksToRead(252), 1);
    EXPECT_EQ(blocksToRead(253), 2);
}

TEST(Costs, ReadingATextIntoOneThatHadRoomForItNeedsNoBlock)
{
    std::vector<char> buffer(1000);
    VUKSimRpm_BStreamWriteBuffer output(buffer.data(), buffer.size());
    output.Write(VUKString(Letters(40).c_str()));
    output.Write(VUKString(Letters(39).c_str()));
    VUKSimRpm_BStreamReadBuffer input(buffer.data(), buffer.size());
    VUKString text;
    input.VUKSimRpm_BStreamRead::Read(text);
    EXPECT_EQ(AllocationsOf([&] { input.VUKSimRpm_BStreamRead::Read(text); }), 0);
    EXPECT_TRUE(text == Letters(39).c_str());
}
