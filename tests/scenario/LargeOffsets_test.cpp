// Locators to places beyond 4 GiB, in memory and stored; the files are sparse and cost little.
#include "Records.h"

#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_MemoryPool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

using testing::ElementsAre;

// A pool of 5,000,000,000 bytes with records at 4,400,000,000 ("far") and at 4,300,000,000 ("near",
// linked to the other one), and a second pool with a record that links to "near".
class LargeOffsets : public testing::Test
{
protected:
    LargeOffsets()
    {
        store.File().Allocate(5000000000ULL);
        far = store.Start() + 4400000000ULL;
        near = store.Start() + 4300000000ULL;
        Put(far, {"far", {}});
        Put(near, {"near", far});
        store.File().NewPool(false, nullptr);
        second = Append(store.File().Pool(), {"second pool", near});
    }

    static void Put(const VUKSimRpm_Locator& place, const Record& record)
    {
        VUKSimRpm_BStreamWriteLocator stream(place, 0, 64);
        Store(stream, record);
    }

    OnePool store;
    VUKSimRpm_Locator far;
    VUKSimRpm_Locator near;
    VUKSimRpm_Locator second;
};
} // namespace

TEST_F(LargeOffsets, AreStoredInAll64Bits)
{
    // Behind "near" (4 + 4 bytes): 4,400,000,000 is 0x1'0642'AC00; the pool names itself with 0.
    EXPECT_EQ(ReadFrom(near + 8, 12),
              std::string("\x00\xAC\x42\x06\x01\x00\x00\x00\x00\x00\x00\x00", 12));
    // Behind "second pool" (4 + 12 bytes): 4,300,000,000 is 0x1'004C'CB00; entry 1.
    EXPECT_EQ(ReadFrom(second + 16, 12),
              std::string("\x00\xCB\x4C\x00\x01\x00\x00\x00\x01\x00\x00\x00", 12));
}

TEST_F(LargeOffsets, AreFollowed)
{
    EXPECT_THAT(Chain(second), ElementsAre("second pool", "near", "far"));
    EXPECT_EQ(far - near, 100000000ULL);
    EXPECT_TRUE(near < far);
    EXPECT_EQ(ReadFrom(store.Start() + 5032704, 3), std::string(3, '\0')); // 4.3e9 in 32 bits
}

TEST_F(LargeOffsets, AreFollowedAfterReopening)
{
    store.Document().Close();
    VUKSimRpm_Document document("TEST");
    const auto file = document.AddFile(store.Folder().File("a.sim"), VUKSimRpm_Document::Read);
    EXPECT_EQ(file.Pool(0).Length(), 5000000000ULL);
    EXPECT_THAT(Chain(file.Pool(1).Start()), ElementsAre("second pool", "near", "far"));
}

TEST_F(LargeOffsets, AreFollowedThroughAMemoryImage)
{
    VUKSimRpm_MemoryPool image(near, 32, {}, nullptr);
    const VUKSimRpm_Locator imaged(near, image);
    Put(imaged, {"NEAR", near});
    EXPECT_EQ(RecordAt(imaged).name, "NEAR");
    EXPECT_TRUE(RecordAt(near).link == near);
}

TEST_F(LargeOffsets, EndWhereThePoolEnds)
{
    const VUKSimRpm_Locator end = store.Start() + 5000000000ULL;
    WriteTo(end - 4, "last");
    EXPECT_TRUE(RaisesIOBounds([&] { WriteTo(end - 4, "last!"); }, 4999999996ULL, 5000000001ULL,
                               5000000000ULL, kPoolSource, 186));
    EXPECT_EQ(ReadFrom(end - 4, 4), "last");
}
