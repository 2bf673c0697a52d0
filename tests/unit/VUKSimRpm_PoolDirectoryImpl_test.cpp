#include "VUKSimRpm_PoolDirectoryImpl.h"

#include "Failures.h"
#include "LimitedMemory.h"
#include "PoolMapFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";
constexpr char kMapSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolMap";

class PoolDirectory : public testing::Test
{
protected:
    // The slots that a directory lists, in order.
    static std::vector<int> Slots(const VUKSimRpm_PoolDirectoryImpl& directory)
    {
        std::vector<int> slots;
        for (int index = 0; index < directory.Length(); ++index) {
            slots.push_back(directory.InternalizeReference(index));
        }
        return slots;
    }

    static std::string Dumped(const VUKSimRpm_PoolDirectoryImpl& directory)
    {
        std::string out(static_cast<std::size_t>(32 * directory.Length()), '#');
        directory.Dump(out.data());
        return out;
    }

    const std::string mA = bytes::Uuid('a');
    const std::string mB = bytes::Uuid('b');
    const std::string mC = bytes::Uuid('c');
    PoolMaker mPools;
    VUKBasSharedPtr<VUKSimRpm_PoolMap> mMap = VUKBasMakeShared<VUKSimRpm_PoolMap>();
    VUKSimRpm_PoolDirectoryImpl mDirectory{mMap};
};
} // namespace

TEST_F(PoolDirectory, IsBornEmptyAndHoldsItsMapWeakly)
{
    EXPECT_EQ(mDirectory.Length(), 0);
    EXPECT_EQ(mMap.UseCount(), 1);
    EXPECT_EQ(mDirectory.Map().lock(), mMap);
    mMap.reset();
    EXPECT_FALSE(mDirectory.Map().lock());
}

TEST_F(PoolDirectory, HasNoOwnEntryWhileEmpty)
{
    EXPECT_TRUE(RaisesRange([&] { (void)mDirectory.OwnSlot(); }, 0, 0));
    EXPECT_TRUE(RaisesRange([&] { (void)mDirectory.GetGUID(); }, 0, 0));
}

TEST_F(PoolDirectory, ListsItsOwnNewSlotAloneWhenAskedSo)
{
    AddSlots(*mMap, 3);
    mDirectory.Init(true, nullptr);
    EXPECT_THAT(Slots(mDirectory), testing::ElementsAre(3));
    EXPECT_EQ(mDirectory.OwnSlot(), 3);
    EXPECT_EQ(mMap->Length(), 4);
}

TEST_F(PoolDirectory, ListsEveryEarlierSlotBehindItsOwn)
{
    AddSlots(*mMap, 3);
    mDirectory.Init(false, nullptr);
    EXPECT_THAT(Slots(mDirectory), testing::ElementsAre(3, 0, 1, 2));
}

TEST_F(PoolDirectory, IsTheFirstAndOnlyEntryInAnEmptyMap)
{
    mDirectory.Init(false, nullptr);
    EXPECT_THAT(Slots(mDirectory), testing::ElementsAre(0));
}

TEST_F(PoolDirectory, GetsAFreshUuidWithoutAGivenOne)
{
    mDirectory.Init(true, nullptr);
    const std::string uuid = UuidOf(*mMap, 0);
    EXPECT_EQ(uuid.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(uuid[12], '4');
}

TEST_F(PoolDirectory, DrawsAnotherUuidWhenTheFreshOneIsOpen)
{
    const auto pool = mPools.NewPool();
    NewSlot(*mMap, mA);
    mMap->SetPool(0, pool);
    VUKSimRpm_UUID::TestForceUUID(mA.c_str());
    mDirectory.Init(true, nullptr);
    EXPECT_EQ(mDirectory.OwnSlot(), 1);
    EXPECT_NE(UuidOf(*mMap, 1), mA);
}

TEST_F(PoolDirectory, TakesAFreshUuidWhosePoolIsClosed)
{
    NewSlot(*mMap, mA);
    VUKSimRpm_UUID::TestForceUUID(mA.c_str());
    mDirectory.Init(true, nullptr);
    EXPECT_EQ(mDirectory.OwnSlot(), 1);
    EXPECT_EQ(UuidOf(*mMap, 1), mA);
}

TEST_F(PoolDirectory, TakesTheFirst32CharactersOfAGivenUuid)
{
    mDirectory.Init(true, "Any 32 characters, not checked..and more behind");
    EXPECT_EQ(UuidOf(*mMap, 0), "Any 32 characters, not checked..");
    EXPECT_EQ(mDirectory.GetGUID(), "Any 32 characters, not checked..");
}

TEST_F(PoolDirectory, NeedsNoTerminatorBehindAGivenUuid)
{
    const std::vector<char> exactly(32, 'a');
    mDirectory.Init(true, exactly.data());
    EXPECT_EQ(UuidOf(*mMap, 0), mA);
}

TEST_F(PoolDirectory, RefusesAShortUuidAndChangesNothing)
{
    std::string zeroInside = mA;
    zeroInside[5] = '\0';
    const std::string tooShort(31, 'a');
    for (const std::string& uuid : {tooShort, zeroInside, std::string()}) {
        EXPECT_TRUE(Raises<VUKSimExcInvalidGUID>([&] { mDirectory.Init(true, uuid.c_str()); },
                                                 kSource, 30));
    }
    EXPECT_EQ(mMap->Length(), 0);
    EXPECT_EQ(mDirectory.Length(), 0);
    mDirectory.Init(true, mA.c_str());
    EXPECT_EQ(mDirectory.OwnSlot(), 0);
}

TEST_F(PoolDirectory, RefusesTheUuidOfAnOpenPoolAndChangesNothing)
{
    const auto pool = mPools.NewPool();
    NewSlot(*mMap, mA);
    mMap->SetPool(0, pool);
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mDirectory.Init(true, mA.c_str()); },
                                                  kMapSource, 21));
    EXPECT_EQ(mMap->Length(), 1);
    EXPECT_EQ(mDirectory.Length(), 0);
}

TEST_F(PoolDirectory, AlwaysMakesANewSlotForANewPool)
{
    NewSlot(*mMap, mA);
    mDirectory.Init(true, mA.c_str());
    EXPECT_EQ(mDirectory.OwnSlot(), 1);
    EXPECT_EQ(mMap->LookupByUUID(mA.c_str()), 0);
}

TEST_F(PoolDirectory, IsFilledOnce)
{
    constexpr char kText[] = "mMapSlotList.Length() == 0";
    VUKSimRpm_PoolDirectoryImpl loaded(mMap);
    loaded.Load(mB.c_str(), 1);
    mDirectory.Init(true, nullptr);
    for (VUKSimRpm_PoolDirectoryImpl* directory : {&mDirectory, &loaded}) {
        EXPECT_TRUE(RaisesAssertion([&] { directory->Init(true, nullptr); }, kText, kSource, 23));
        EXPECT_TRUE(RaisesAssertion([&] { directory->Init(true, "short"); }, kText, kSource, 23));
        EXPECT_TRUE(RaisesAssertion([&] { directory->Load(mC.c_str(), 1); }, kText, kSource, 59));
        EXPECT_TRUE(RaisesAssertion([&] { directory->Load(nullptr, 0); }, kText, kSource, 59));
        EXPECT_EQ(directory->Length(), 1);
    }
    EXPECT_EQ(mMap->Length(), 2);
}

// Another slot slips in before the new one, while the map grows for it.
TEST_F(PoolDirectory, NoticesThatItsSlotIsNotTheLast)
{
    static VUKSimRpm_PoolMap* map;
    static mem_Functions real;
    map = mMap.get();
    real = mem_CurrentFunctions();
    mem_CurrentFunctions().allocateZeroed = [](std::size_t size) {
        mem_CurrentFunctions() = real;
        map->NewSlot(bytes::Uuid('b').c_str());
        return real.allocateZeroed(size);
    };
    EXPECT_TRUE(
        RaisesAssertion([&] { mDirectory.Init(true, mA.c_str()); }, "mySlot == len", kSource, 48));
    mem_CurrentFunctions() = real;
    EXPECT_EQ(mMap->Length(), 2);
}

TEST_F(PoolDirectory, LoadsRecordsInOrderAndMakesSlotsForUnknownPools)
{
    NewSlot(*mMap, mB);
    mDirectory.Load((mA + mB + mC).c_str(), 3);
    EXPECT_THAT(Slots(mDirectory), testing::ElementsAre(1, 0, 2));
    EXPECT_EQ(mMap->Length(), 3);
    EXPECT_EQ(UuidOf(*mMap, 1), mA);
    EXPECT_EQ(UuidOf(*mMap, 2), mC);
    EXPECT_FALSE(mMap->Pool(2).lock());
}

TEST_F(PoolDirectory, LoadsAPoolIntoTheSlotThatAReferenceMadeForIt)
{
    mDirectory.Load((mA + mB).c_str(), 2);
    VUKSimRpm_PoolDirectoryImpl ofB(mMap);
    ofB.Load((mB + mA).c_str(), 2);
    EXPECT_THAT(Slots(ofB), testing::ElementsAre(1, 0));
    EXPECT_EQ(mMap->Length(), 2);
}

TEST_F(PoolDirectory, LoadsAPoolIntoItsOldSlotAfterItWasClosed)
{
    const auto pool = mPools.NewPool();
    AddSlots(*mMap, 5);
    NewSlot(*mMap, mA);
    mMap->SetPool(5, pool);
    mMap->Remove(5);
    mDirectory.Load(mA.c_str(), 1);
    EXPECT_EQ(mDirectory.OwnSlot(), 5);
    EXPECT_EQ(mMap->Length(), 6);
}

TEST_F(PoolDirectory, RefusesToLoadAnOpenPool)
{
    const auto pool = mPools.NewPool();
    NewSlot(*mMap, mA);
    mMap->SetPool(0, pool);
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mDirectory.Load((mA + mB).c_str(), 2); },
                                                  kSource, 75));
    EXPECT_EQ(mMap->Length(), 1);
    EXPECT_EQ(mDirectory.Length(), 0);
}

TEST_F(PoolDirectory, LoadsReferencesToOpenPools)
{
    const auto pool = mPools.NewPool();
    NewSlot(*mMap, mB);
    mMap->SetPool(0, pool);
    mDirectory.Load((mA + mB).c_str(), 2);
    EXPECT_THAT(Slots(mDirectory), testing::ElementsAre(1, 0));
    EXPECT_EQ(mMap->Pool(0).lock(), pool);
}

TEST_F(PoolDirectory, LoadsRepeatedRecordsIntoTheSameSlot)
{
    mDirectory.Load((mA + mB + mA + mB).c_str(), 4);
    EXPECT_THAT(Slots(mDirectory), testing::ElementsAre(0, 1, 0, 1));
    EXPECT_EQ(mMap->Length(), 2);
}

TEST_F(PoolDirectory, LoadsRecordsOfAnyBytes)
{
    std::string binary = bytes::Uuid('\xFF');
    binary[4] = '\0';
    const std::string zeros = bytes::Zeros(32);
    mDirectory.Load((binary + zeros).c_str(), 2);
    EXPECT_EQ(UuidOf(*mMap, 0), binary);
    EXPECT_EQ(UuidOf(*mMap, 1), zeros);
    EXPECT_EQ(Dumped(mDirectory), binary + zeros);
    EXPECT_EQ(mDirectory.GetGUID(), "\xFF\xFF\xFF\xFF"); // text ends at a zero byte
}

TEST_F(PoolDirectory, StaysEmptyForACountOfZeroOrLess)
{
    for (const int count : {0, -1}) {
        mDirectory.Load(nullptr, count);
        EXPECT_EQ(mDirectory.Length(), 0);
        EXPECT_EQ(mMap->Length(), 0);
    }
    EXPECT_TRUE(RaisesAssertion([&] { mDirectory.Dump(nullptr); }, "dirLength > 0", kSource, 87));
    mDirectory.Load(mA.c_str(), 1); // still to be filled
    EXPECT_EQ(mDirectory.Length(), 1);
}

// Each cache of the map has a zeroed word of 8 bytes for a row.
TEST_F(PoolDirectory, GrowsTheMapOnceForAllItsRecords)
{
    std::string records;
    for (int i = 0; i < 100; ++i) {
        records += NumberedUuid(1000 + i);
    }
    AddSlots(*mMap, 64);
    const CacheRequests requests;
    mDirectory.Load(records.c_str(), 100);
    EXPECT_THAT(requests.Sizes(), testing::ElementsAre(2048U)); // 64 + 164, up to 256
    EXPECT_EQ(mMap->Length(), 164);
}

// Memory goes to the map's items and cache (twice), to the list (twice), and then to each new slot.
TEST_F(PoolDirectory, KeepsWhatItLoadedWhenMemoryRunsOut)
{
    const std::string records = mA + mB + mC;
    {
        const LimitedMemory memory(7);
        EXPECT_TRUE(RaisesBadAlloc([&] { mDirectory.Load(records.c_str(), 3); }));
    }
    EXPECT_EQ(mMap->Length(), 2);
    EXPECT_EQ(mMap->LookupByUUID(mC.c_str()), -1);
    EXPECT_THAT(Slots(mDirectory), testing::ElementsAre(0, 1));
    EXPECT_EQ(Dumped(mDirectory), mA + mB);
}

TEST_F(PoolDirectory, DumpsTheRecordsItLoaded)
{
    const std::string records = mA + mC + mB + mC;
    NewSlot(*mMap, mB);
    mDirectory.Load(records.c_str(), 4);
    std::string out(130, '#');
    mDirectory.Dump(out.data() + 1);
    EXPECT_EQ(out, "#" + records + "#");
}

TEST_F(PoolDirectory, DumpsANewPoolsUuidAndThoseBeforeIt)
{
    NewSlot(*mMap, mB);
    NewSlot(*mMap, mC);
    mDirectory.Init(false, mA.c_str());
    EXPECT_EQ(Dumped(mDirectory), mA + mB + mC);
}

TEST_F(PoolDirectory, DumpsNothingWhileEmpty)
{
    EXPECT_TRUE(RaisesAssertion([&] { mDirectory.Dump(nullptr); }, "dirLength > 0", kSource, 87));
}

TEST_F(PoolDirectory, NoticesAWrongSlotWhenItDumps)
{
    const LastBlockOf list(12); // three slots
    mDirectory.Load((mA + mB + mC).c_str(), 3);
    list.Overwrite(1, -1);
    EXPECT_TRUE(RaisesAssertion([&] { (void)Dumped(mDirectory); }, "slotInMap >= 0", kSource, 94));
    for (const int slot : {3, 64, 2147483647}) {
        list.Overwrite(1, slot);
        EXPECT_TRUE(RaisesAssertion([&] { (void)Dumped(mDirectory); },
                                    "slotInMap < mMap.lock()->Length()", kSource, 95));
    }
    list.Overwrite(1, 1);
    EXPECT_EQ(Dumped(mDirectory), mA + mB + mC);
}

TEST_F(PoolDirectory, GivesItsOwnUuidAsText)
{
    NewSlot(*mMap, mB);
    mDirectory.Init(false, mA.c_str());
    const VUKString guid = mDirectory.GetGUID();
    EXPECT_EQ(guid.GetLengthInByte(), 32U);
    EXPECT_EQ(guid, "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
}
