// References between pools: slots in memory, indices in a directory when stored.
#include "VUKSimRpm_PoolDirectoryImpl.h"

#include "VUKSimRpm_Document.h"

#include "Failures.h"
#include "PoolMapFixture.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <climits>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";

class References : public testing::Test
{
protected:
    const std::string mA = bytes::Uuid('a');
    const std::string mB = bytes::Uuid('b');
    const std::string mC = bytes::Uuid('c');
    VUKBasSharedPtr<VUKSimRpm_PoolMap> mMap = VUKBasMakeShared<VUKSimRpm_PoolMap>();
    VUKSimRpm_PoolDirectoryImpl mDirectory{mMap};
};

// The slot for which index `index` stands in the directory of `pool`.
int Internalized(const VUKSimRpm_Pool& pool, int index)
{
    return pool.Impl().lock()->Directory()->InternalizeReference(index);
}

// The UUID of the pool for which index `index` stands in the directory of `pool`.
std::string ReferredUuid(const VUKSimRpm_Pool& pool, int index)
{
    const auto directory = pool.Impl().lock()->Directory();
    return UuidOf(*directory->Map().lock(), directory->InternalizeReference(index));
}
} // namespace

TEST_F(References, ToThePoolItselfHaveIndexZero)
{
    AddSlots(*mMap, 3);
    mDirectory.Init(false, nullptr);
    EXPECT_EQ(mDirectory.ExternalizeReference(3), 0);
    EXPECT_EQ(mDirectory.InternalizeReference(0), 3);
}

TEST_F(References, ToEarlierPoolsHaveTheIndexBehindTheirSlot)
{
    AddSlots(*mMap, 3);
    mDirectory.Init(false, nullptr);
    for (int slot = 0; slot < 3; ++slot) {
        EXPECT_EQ(mDirectory.ExternalizeReference(slot), slot + 1);
        EXPECT_EQ(mDirectory.InternalizeReference(slot + 1), slot);
    }
}

TEST_F(References, ToOtherPoolsAreRefusedByAPoolThatNamesItselfAlone)
{
    AddSlots(*mMap, 1);
    mDirectory.Init(true, nullptr);
    AddSlots(*mMap, 1);
    for (const int slot : {0, 2}) {
        EXPECT_TRUE(Raises<VUKSimExcCantExternalizeLoc>(
            [&] { (void)mDirectory.ExternalizeReference(slot); }, kSource, 123));
        EXPECT_EQ(mMap->GetDirectoryIndex(1, slot), -1);
    }
    EXPECT_EQ(mDirectory.ExternalizeReference(1), 0);
    EXPECT_EQ(mDirectory.Length(), 1);
}

TEST_F(References, ToPoolsMadeLaterAreRefused)
{
    AddSlots(*mMap, 2);
    mDirectory.Init(false, nullptr);
    AddSlots(*mMap, 1);
    EXPECT_TRUE(Raises<VUKSimExcCantExternalizeLoc>(
        [&] { (void)mDirectory.ExternalizeReference(3); }, kSource, 123));
    EXPECT_EQ(mMap->GetDirectoryIndex(2, 3), -1);
    EXPECT_EQ(mDirectory.Length(), 3);
}

TEST_F(References, TakeTheLowestIndexOfAPoolThatIsNamedTwice)
{
    mDirectory.Load((mA + mB + mC + mB + mA).c_str(), 5);
    EXPECT_EQ(mDirectory.ExternalizeReference(1), 1);
    EXPECT_EQ(mDirectory.ExternalizeReference(0), 0);
    EXPECT_EQ(mDirectory.InternalizeReference(3), 1);
    EXPECT_EQ(mDirectory.InternalizeReference(4), 0);
}

TEST_F(References, AreRememberedInTheMapUnderThePoolsOwnSlot)
{
    NewSlot(*mMap, mB);
    mDirectory.Load((mA + mC + mB).c_str(), 3); // slots 1, 2, 0
    EXPECT_EQ(mMap->GetDirectoryIndex(1, 0), -1);
    EXPECT_EQ(mDirectory.ExternalizeReference(0), 2);
    EXPECT_EQ(mMap->GetDirectoryIndex(1, 0), 2);
    EXPECT_EQ(mMap->GetDirectoryIndex(0, 1), -1);
    EXPECT_EQ(mMap->GetDirectoryIndex(1, 2), -1);
    EXPECT_EQ(mDirectory.ExternalizeReference(0), 2);
}

// Index 2 does not name slot 1: what is remembered is taken without looking.
TEST_F(References, TakeARememberedIndexWithoutSearching)
{
    mDirectory.Load((mA + mB + mC).c_str(), 3);
    mMap->AddReference(0, 1, 2);
    EXPECT_EQ(mDirectory.ExternalizeReference(1), 2);
    mMap->AddReference(0, 1, 0);
    EXPECT_EQ(mDirectory.ExternalizeReference(1), 0);
}

TEST_F(References, StayRememberedWhenPoolsAreRemoved)
{
    mDirectory.Load((mA + mB).c_str(), 2);
    EXPECT_EQ(mDirectory.ExternalizeReference(1), 1);
    mMap->Remove(0);
    mMap->Remove(1);
    EXPECT_EQ(mMap->GetDirectoryIndex(0, 1), 1);
    EXPECT_EQ(mDirectory.ExternalizeReference(1), 1);
}

// A pool that comes back into its slot meets the indices of its earlier directory.
TEST_F(References, OutliveTheDirectoryThatTheyWereFoundIn)
{
    {
        VUKSimRpm_PoolDirectoryImpl before(mMap);
        before.Load((mA + mB + mC).c_str(), 3);
        EXPECT_EQ(before.ExternalizeReference(1), 1);
    }
    mDirectory.Load((mA + mC + mB).c_str(), 3);
    EXPECT_EQ(mDirectory.ExternalizeReference(1), 1);
    EXPECT_EQ(mDirectory.ExternalizeReference(2), 1);
}

TEST_F(References, NeedASlotOfTheMap)
{
    mDirectory.Load((mA + mB).c_str(), 2);
    for (const int slot : {-1, INT_MIN}) {
        EXPECT_TRUE(RaisesAssertion([&] { (void)mDirectory.ExternalizeReference(slot); },
                                    "dstSlotInMap >= 0", kSource, 103));
    }
    for (const int slot : {2, 63, INT_MAX}) {
        EXPECT_TRUE(RaisesAssertion([&] { (void)mDirectory.ExternalizeReference(slot); },
                                    "dstSlotInMap < mMap.lock()->Length()", kSource, 104));
    }
}

TEST_F(References, NoticeARememberedIndexBehindTheDirectory)
{
    mDirectory.Load((mA + mB).c_str(), 2);
    for (const int index : {2, INT_MAX}) {
        mMap->AddReference(0, 1, index);
        EXPECT_TRUE(RaisesAssertion([&] { (void)mDirectory.ExternalizeReference(1); },
                                    "srcSlotInDir < len", kSource, 110));
    }
}

TEST_F(References, HaveNoSourceInAnEmptyDirectory)
{
    EXPECT_TRUE(RaisesAssertion([&] { (void)mDirectory.ExternalizeReference(0); },
                                "dstSlotInMap < mMap.lock()->Length()", kSource, 104));
    NewSlot(*mMap, mA);
    EXPECT_TRUE(RaisesRange([&] { (void)mDirectory.ExternalizeReference(0); }, 0, 0));
    EXPECT_TRUE(RaisesValidation([&] { (void)mDirectory.InternalizeReference(0); },
                                 "slotInDirectory < mMapSlotList.Length()", kSource, 130));
}

TEST_F(References, ThatWereStoredNegativeAreInvalid)
{
    mDirectory.Load((mA + mB).c_str(), 2);
    for (const int index : {-1, -2, INT_MIN}) {
        EXPECT_TRUE(RaisesValidation([&] { (void)mDirectory.InternalizeReference(index); },
                                     "slotInDirectory >= 0", kSource, 129));
    }
}

TEST_F(References, ThatWereStoredBehindTheDirectoryAreInvalid)
{
    mDirectory.Load((mA + mB).c_str(), 2);
    EXPECT_EQ(mDirectory.InternalizeReference(1), 1);
    for (const int index : {2, 3, INT_MAX}) {
        EXPECT_TRUE(RaisesValidation([&] { (void)mDirectory.InternalizeReference(index); },
                                     "slotInDirectory < mMapSlotList.Length()", kSource, 130));
    }
}

TEST_F(References, NoticeAWrongSlotInTheDirectory)
{
    const LastBlockOf list(12); // three slots
    mDirectory.Load((mA + mB + mC).c_str(), 3);
    list.Overwrite(1, -1);
    EXPECT_TRUE(RaisesAssertion([&] { (void)mDirectory.InternalizeReference(1); }, "slotInMap >= 0",
                                kSource, 133));
    for (const int slot : {3, INT_MAX}) {
        list.Overwrite(1, slot);
        EXPECT_TRUE(RaisesAssertion([&] { (void)mDirectory.InternalizeReference(1); },
                                    "slotInMap < mMap.lock()->Length()", kSource, 134));
    }
    EXPECT_EQ(mDirectory.InternalizeReference(2), 2);
}

TEST_F(References, AreReadWithoutAskingTheCache)
{
    mDirectory.Load((mA + mB).c_str(), 2);
    mMap->AddReference(0, 1, 0);
    EXPECT_EQ(mDirectory.InternalizeReference(1), 1);
    EXPECT_EQ(mDirectory.InternalizeReference(0), 0);
    EXPECT_EQ(mMap->GetDirectoryIndex(0, 0), -1);
}

TEST_F(References, MeanTheSamePoolsInTheDocumentThatAPoolIsAppendedTo)
{
    const TemporaryFolder folder;
    VUKSimRpm_Document from("TEST");
    VUKSimRpm_File source = from.AddFile(folder.File("from.sim"), VUKSimRpm_Document::Write);
    source.Allocate(1);
    source.NewPool(false, mB.c_str());
    source.Allocate(1);
    source.NewPool(false, mA.c_str()); // slot 2; names itself, slot 0, slot 1
    ASSERT_EQ(Internalized(source.Pool(), 2), 1);
    ASSERT_EQ(ReferredUuid(source.Pool(), 2), mB);

    VUKSimRpm_Document to("TEST");
    VUKSimRpm_File target = to.AddFile(folder.File("to.sim"), VUKSimRpm_Document::Write);
    for (int i = 0; i < 4; ++i) {
        target.Allocate(1);
        target.NewPool(true, nullptr);
    }
    target.AppendPool(source.Pool()); // slots 0 to 4 are taken
    EXPECT_EQ(Internalized(target.Pool(), 0), 5);
    EXPECT_EQ(Internalized(target.Pool(), 1), 6);
    EXPECT_EQ(Internalized(target.Pool(), 2), 7);
    EXPECT_EQ(ReferredUuid(target.Pool(), 0), mA);
    EXPECT_EQ(ReferredUuid(target.Pool(), 1), ReferredUuid(source.Pool(), 1));
    EXPECT_EQ(ReferredUuid(target.Pool(), 2), mB);
}
