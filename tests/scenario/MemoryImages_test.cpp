// Stretches of pools are read into memory once and worked on there, with streams, texts and links.
#include "Records.h"

#include "Failures.h"
#include "OnePool.h"
#include "TemporaryFolder.h"
#include "Transfers.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_MemoryPool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

constexpr char kLocatorSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

using Document = VUKSimRpm_Document;
using testing::ElementsAre;
using testing::IsEmpty;

// A pool with a chain of a hundred records, "record 99" at `last`, each linked to the one before.
class MemoryImages : public testing::Test
{
protected:
    MemoryImages()
    {
        for (int i = 0; i < 100; ++i) {
            last = Append(store.Pool(), {"record " + std::to_string(i), last});
        }
    }

    [[nodiscard]] VUKSimRpm_Locator In(VUKSimRpm_MemoryPool& image,
                                       const VUKSimRpm_Locator& place) const
    {
        return {place, image};
    }

    OnePool store;
    VUKSimRpm_Locator last;
};
} // namespace

TEST_F(MemoryImages, FollowAChainWithOneReadOfTheFile)
{
    const ScriptedSystemCalls calls;
    VUKSimRpm_MemoryPool image(store.Start(), store.Pool().Length(), {}, nullptr);
    const auto names = Chain(In(image, last));
    EXPECT_EQ(names.size(), 100U);
    EXPECT_EQ(names.front(), "record 99");
    EXPECT_EQ(names.back(), "record 0");
    EXPECT_EQ(Reads(calls).size(), 1U);
}

TEST_F(MemoryImages, AreFollowedIntoThePoolAndOutOfItAgain)
{
    // The image holds the second half of the chain: what lies before is read from the pool.
    VUKSimRpm_Locator middle = last;
    for (int i = 0; i < 49; ++i) {
        middle = RecordAt(middle).link;
    }
    VUKSimRpm_MemoryPool image(middle, store.Pool().End() - middle, {}, nullptr);
    const ScriptedSystemCalls calls;
    EXPECT_EQ(Chain(In(image, last)).size(), 100U);
    const std::size_t outside = Reads(calls).size();
    EXPECT_GE(outside, 50U);
    EXPECT_LT(outside, 110U); // a read that meets the end of the file counts twice
}

TEST_F(MemoryImages, AreReadAlthoughTheFileIsClosed)
{
    VUKSimRpm_MemoryPool image(store.Start(), store.Pool().Length(), {}, nullptr);
    store.CloseFile();
    std::string first(4, '.');
    EXPECT_EQ(In(image, last).Read(4, first.data()), 4UL);
    EXPECT_EQ(first, std::string("\x09\0\0\0", 4)); // the length of "record 99"
}

TEST_F(MemoryImages, AndFileShowTheSameAfterWriting)
{
    VUKSimRpm_MemoryPool image(store.Start(), store.Pool().Length(), {}, nullptr);
    const VUKSimRpm_Locator imaged = In(image, last);
    {
        VUKSimRpm_BStreamWriteLocator stream(imaged, 0, 64);
        Store(stream, {"RECORD ??", store.Start()}); // as long as "record 99"
    }
    EXPECT_THAT(Chain(imaged), ElementsAre("RECORD ??", "record 0"));
    EXPECT_THAT(Chain(last), ElementsAre("RECORD ??", "record 0"));
    store.ReopenReadOnly();
    EXPECT_THAT(Chain(last), ElementsAre("RECORD ??", "record 0"));
}

TEST_F(MemoryImages, ShowWhatWasThereBeforeOthersWrote)
{
    VUKSimRpm_MemoryPool image(store.Start(), store.Pool().Length(), {}, nullptr);
    {
        VUKSimRpm_BStreamWriteLocator stream(last, 0, 64);
        Store(stream, {"RECORD ??", {}});
    }
    EXPECT_EQ(RecordAt(In(image, last)).name, "record 99");
    EXPECT_EQ(RecordAt(last).name, "RECORD ??");
    VUKSimRpm_MemoryPool again(In(image, store.Start()), store.Pool().Length(), {}, nullptr);
    EXPECT_EQ(RecordAt(In(again, last)).name, "RECORD ??");
}

TEST_F(MemoryImages, AreLeftBeforeALinkIntoAnotherPoolIsFollowed)
{
    store.File().NewPool(false, nullptr);
    const VUKSimRpm_Locator second = Append(store.File().Pool(), {"second pool", last});
    VUKSimRpm_MemoryPool image(second, store.File().End() - second, {}, nullptr);
    const Record record = RecordAt(In(image, second));
    EXPECT_EQ(record.link.IMPool(), &image); // which does not hold the other pool
    EXPECT_TRUE(
        RaisesAssertion([&] { RecordAt(record.link); }, "SamePool(that)", kLocatorSource, 87));
    EXPECT_EQ(RecordAt(VUKSimRpm_Locator(record.link, 0)).name, "record 99");
}

TEST_F(MemoryImages, HoldEachItsOwnStretch)
{
    const unsigned long half = store.Pool().Length() / 2;
    VUKSimRpm_MemoryPool front(store.Start(), half, {}, nullptr);
    VUKSimRpm_MemoryPool back(store.Start() + half, half, {}, nullptr);
    WriteTo(In(front, store.Start() + (half - 1)), "F");
    WriteTo(In(back, store.Start() + half), "B");
    EXPECT_EQ(ReadFrom(store.Start() + (half - 1), 2), "FB");
    EXPECT_EQ(ReadFrom(In(front, store.Start() + (half - 1)), 2), "F");
    EXPECT_EQ(ReadFrom(In(back, store.Start() + half), 1), "B");
}

TEST_F(MemoryImages, ThatDieWriteNothing)
{
    const ScriptedSystemCalls calls;
    {
        VUKSimRpm_MemoryPool image(store.Start(), store.Pool().Length(), {}, nullptr);
        EXPECT_EQ(Chain(In(image, last)).size(), 100U);
    }
    EXPECT_THAT(Writes(calls), IsEmpty());
}
