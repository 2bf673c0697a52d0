#include "VUKSimRpm_PoolMap.h"

#include "Failures.h"
#include "PoolMapFixture.h"

#include <gtest/gtest.h>

#include <climits>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolMap";

class PoolMap : public testing::Test
{
protected:
    const std::string mA = bytes::Uuid('a');
    const std::string mB = bytes::Uuid('b');
    PoolMaker mPools;
    VUKSimRpm_PoolMap mMap;
};
} // namespace

TEST_F(PoolMap, StartsWithoutSlots)
{
    EXPECT_EQ(mMap.Length(), 0);
    EXPECT_EQ(mMap.LookupByUUID(mA.c_str()), -1);
    EXPECT_FALSE(mMap.IsDuplicate(mA.c_str()));
}

TEST_F(PoolMap, CountsSlotsUpFromZero)
{
    EXPECT_EQ(NewSlot(mMap, mA), 0);
    EXPECT_EQ(NewSlot(mMap, mB), 1);
    EXPECT_EQ(mMap.Length(), 2);
    EXPECT_EQ(UuidOf(mMap, 0), "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
    EXPECT_EQ(UuidOf(mMap, 1), "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
}

TEST_F(PoolMap, MakesSlotsWithoutAPool)
{
    NewSlot(mMap, mA);
    EXPECT_FALSE(mMap.Pool(0).lock());
    EXPECT_EQ(mMap.Pool(0).WeakCount(), 0);
}

TEST_F(PoolMap, TakesUuidsOfAnyBytesAndKnowsThemByAll32)
{
    std::string binary = bytes::Uuid('\xFF');
    binary[0] = '\0';
    std::string other = binary;
    other[31] = '\0';
    EXPECT_EQ(NewSlot(mMap, binary), 0);
    EXPECT_EQ(NewSlot(mMap, other), 1);
    EXPECT_EQ(mMap.LookupByUUID(binary.c_str()), 0);
    EXPECT_EQ(mMap.LookupByUUID(other.c_str()), 1);
    EXPECT_EQ(UuidOf(mMap, 1), other);
}

TEST_F(PoolMap, LooksUpTheSlotOfAUuidOrMinusOne)
{
    NewSlot(mMap, mA);
    NewSlot(mMap, mB);
    EXPECT_EQ(mMap.LookupByUUID(mB.c_str()), 1);
    EXPECT_EQ(mMap.LookupByUUID(bytes::Uuid('c').c_str()), -1);
}

TEST_F(PoolMap, StillFindsTheSlotOfARemovedPool)
{
    const auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    NewSlot(mMap, mB);
    mMap.SetPool(1, pool);
    mMap.Remove(1);
    EXPECT_EQ(mMap.LookupByUUID(mB.c_str()), 1);
    EXPECT_EQ(mMap.Length(), 2);
    EXPECT_EQ(UuidOf(mMap, 1), mB);
}

TEST_F(PoolMap, CallsAUuidADuplicateOnlyWhileItsPoolIsOpen)
{
    auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    EXPECT_FALSE(mMap.IsDuplicate(mA.c_str())); // met, but not open

    mMap.SetPool(0, pool);
    EXPECT_TRUE(mMap.IsDuplicate(mA.c_str()));

    mMap.Remove(0);
    EXPECT_FALSE(mMap.IsDuplicate(mA.c_str()));

    mMap.SetPool(0, pool);
    pool.reset();
    EXPECT_FALSE(mMap.IsDuplicate(mA.c_str())); // attached, but dead
}

TEST_F(PoolMap, RefusesASecondSlotForAnOpenPoolAndStaysAsItIs)
{
    const auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    mMap.SetPool(0, pool);
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { NewSlot(mMap, mA); }, kSource, 21));
    EXPECT_EQ(mMap.Length(), 1);
    EXPECT_EQ(mMap.LookupByUUID(mA.c_str()), 0);
    EXPECT_EQ(mMap.Pool(0).lock(), pool);
}

TEST_F(PoolMap, KeepsTheOldSlotWhenARemovedUuidComesBack)
{
    const auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    mMap.SetPool(0, pool);
    mMap.Remove(0);
    EXPECT_EQ(NewSlot(mMap, mA), 1);
    EXPECT_EQ(mMap.Length(), 2);
    EXPECT_EQ(UuidOf(mMap, 1), mA);
    EXPECT_EQ(mMap.LookupByUUID(mA.c_str()), 0);

    // The later slot is reached by its number alone: a pool in it makes no duplicate.
    mMap.SetPool(1, pool);
    EXPECT_EQ(mMap.Pool(1).lock(), pool);
    EXPECT_FALSE(mMap.IsDuplicate(mA.c_str()));
    EXPECT_EQ(NewSlot(mMap, mA), 2);
    EXPECT_EQ(mMap.LookupByUUID(mA.c_str()), 0);
}

TEST_F(PoolMap, GivesAUuidItsSlotOrMakesOne)
{
    EXPECT_EQ(mMap.SlotOf(mA.c_str()), 0);
    EXPECT_EQ(mMap.SlotOf(mB.c_str()), 1);
    EXPECT_EQ(mMap.SlotOf(mA.c_str()), 0);
    EXPECT_EQ(mMap.Length(), 2);
    EXPECT_EQ(UuidOf(mMap, 1), "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
    EXPECT_FALSE(mMap.Pool(1).lock());
}

TEST_F(PoolMap, GivesTheFirstSlotOfAUuidWhetherItsPoolIsOpenOrNot)
{
    const auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    NewSlot(mMap, mA);
    EXPECT_EQ(mMap.SlotOf(mA.c_str()), 0);
    mMap.SetPool(0, pool);
    EXPECT_EQ(mMap.SlotOf(mA.c_str()), 0);
    EXPECT_EQ(mMap.Length(), 2);
}

TEST_F(PoolMap, RefersToPoolsWeakly)
{
    auto pool = mPools.NewPool();
    const VUKBasWeakPtr<VUKSimRpm_PoolImpl> watch(pool);
    NewSlot(mMap, mA);
    mMap.SetPool(0, pool);
    EXPECT_EQ(watch.UseCount(), 1);
    EXPECT_EQ(watch.WeakCount(), 2); // this one and the slot's

    pool.reset();
    EXPECT_FALSE(mMap.Pool(0).lock());
    EXPECT_EQ(mMap.Length(), 1);
    EXPECT_EQ(UuidOf(mMap, 0), mA);
}

TEST_F(PoolMap, DropsItsWeakReferenceOnRemoveReplacementAndDeath)
{
    const auto pool = mPools.NewPool();
    const auto other = mPools.NewPool();
    const VUKBasWeakPtr<VUKSimRpm_PoolImpl> watch(pool);
    {
        VUKSimRpm_PoolMap map;
        NewSlot(map, mA);
        NewSlot(map, mB);
        map.SetPool(0, pool);
        map.SetPool(1, pool);
        EXPECT_EQ(watch.WeakCount(), 3);
        map.Remove(0);
        EXPECT_EQ(watch.WeakCount(), 2);
        map.SetPool(1, other);
        EXPECT_EQ(watch.WeakCount(), 1);
        map.SetPool(0, pool);
        EXPECT_EQ(watch.WeakCount(), 2);
    }
    EXPECT_EQ(watch.WeakCount(), 1);
}

TEST_F(PoolMap, GivesACopyOfASlotsPointer)
{
    const auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    mMap.SetPool(0, pool);
    const VUKBasWeakPtr<VUKSimRpm_PoolImpl> copy = mMap.Pool(0);
    EXPECT_EQ(copy.WeakCount(), 2);
    mMap.Remove(0);
    EXPECT_EQ(copy.lock(), pool);
    EXPECT_EQ(copy.WeakCount(), 1);
}

TEST_F(PoolMap, PutsItsOwnPointerBackIntoTheSameSlot)
{
    const auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    mMap.SetPool(0, pool);
    mMap.SetPool(0, mMap.Pool(0));
    EXPECT_EQ(mMap.Pool(0).lock(), pool);
}

TEST_F(PoolMap, TakesAnEmptyPointerAndRemovesTwice)
{
    const auto pool = mPools.NewPool();
    NewSlot(mMap, mA);
    mMap.SetPool(0, pool);
    mMap.SetPool(0, {});
    EXPECT_FALSE(mMap.Pool(0).lock());
    mMap.Remove(0);
    mMap.Remove(0);
    EXPECT_FALSE(mMap.Pool(0).lock());
}

TEST_F(PoolMap, RemembersADirectoryIndexByItsPairOfSlots)
{
    AddSlots(mMap, 3);
    EXPECT_EQ(mMap.GetDirectoryIndex(1, 2), -1);
    mMap.AddReference(1, 2, 5);
    EXPECT_EQ(mMap.GetDirectoryIndex(1, 2), 5);
    EXPECT_EQ(mMap.GetDirectoryIndex(2, 1), -1);
    EXPECT_EQ(mMap.GetDirectoryIndex(1, 1), -1);

    mMap.AddReference(1, 2, 0); // replaces
    EXPECT_EQ(mMap.GetDirectoryIndex(1, 2), 0);
    mMap.AddReference(1, 2, -1);
    EXPECT_EQ(mMap.GetDirectoryIndex(1, 2), -1);
}

TEST_F(PoolMap, NeverForgetsADirectoryIndex)
{
    const auto pool = mPools.NewPool();
    AddSlots(mMap, 2);
    mMap.SetPool(0, pool);
    mMap.SetPool(1, pool);
    mMap.AddReference(0, 1, 7);
    mMap.Remove(0);
    EXPECT_EQ(mMap.GetDirectoryIndex(0, 1), 7);
    mMap.Remove(1);
    EXPECT_EQ(mMap.GetDirectoryIndex(0, 1), 7);
    mMap.SetPool(0, pool);
    EXPECT_EQ(mMap.GetDirectoryIndex(0, 1), 7);
}

TEST_F(PoolMap, ChecksASlotAgainstZeroFirst)
{
    NewSlot(mMap, mA);
    for (const int slot : {-1, INT_MIN}) {
        EXPECT_TRUE(RaisesAssertion([&] { mMap.SetPool(slot, {}); }, "slot >= 0", kSource, 50));
        EXPECT_TRUE(RaisesAssertion([&] { (void)mMap.Pool(slot); }, "slot >= 0", kSource, 58));
        EXPECT_TRUE(RaisesAssertion([&] { (void)mMap.UUID(slot); }, "slot >= 0", kSource, 66));
        EXPECT_TRUE(RaisesAssertion([&] { mMap.Remove(slot); }, "slot >= 0", kSource, 109));
    }
}

// The cache has room for 64 slots by then, which play no part.
TEST_F(PoolMap, ChecksASlotAgainstTheNumberOfSlots)
{
    constexpr char kText[] = "slot < mItemList.size()";
    EXPECT_TRUE(RaisesAssertion([&] { (void)mMap.Pool(0); }, kText, kSource, 59));
    NewSlot(mMap, mA);
    for (const int slot : {1, 63, 64, INT_MAX}) {
        EXPECT_TRUE(RaisesAssertion([&] { mMap.SetPool(slot, {}); }, kText, kSource, 51));
        EXPECT_TRUE(RaisesAssertion([&] { (void)mMap.Pool(slot); }, kText, kSource, 59));
        EXPECT_TRUE(RaisesAssertion([&] { (void)mMap.UUID(slot); }, kText, kSource, 67));
        EXPECT_TRUE(RaisesAssertion([&] { mMap.Remove(slot); }, kText, kSource, 110));
    }
}

TEST_F(PoolMap, ChecksTheSlotsThatAreToBeRemembered)
{
    NewSlot(mMap, mA);
    const auto add = [&](int src, int dst) {
        return [=, this] { mMap.AddReference(src, dst, 3); };
    };
    EXPECT_TRUE(RaisesAssertion(add(-1, 0), "srcSlot >= 0", kSource, 74));
    EXPECT_TRUE(RaisesAssertion(add(1, 0), "srcSlot < mItemList.size()", kSource, 75));
    EXPECT_TRUE(RaisesAssertion(add(0, -1), "dstSlot >= 0", kSource, 76));
    EXPECT_TRUE(RaisesAssertion(add(0, 1), "dstSlot < mItemList.size()", kSource, 77));
    // The source comes first.
    EXPECT_TRUE(RaisesAssertion(add(-1, -1), "srcSlot >= 0", kSource, 74));
    EXPECT_TRUE(RaisesAssertion(add(1, -1), "srcSlot < mItemList.size()", kSource, 75));
    EXPECT_EQ(mMap.GetDirectoryIndex(0, 0), -1);
}

TEST_F(PoolMap, ChecksTheSlotsWhoseIndexIsAskedFor)
{
    NewSlot(mMap, mA);
    const auto get = [&](int src, int dst) {
        return [=, this] { (void)mMap.GetDirectoryIndex(src, dst); };
    };
    EXPECT_TRUE(RaisesAssertion(get(-1, 0), "srcSlot >= 0", kSource, 84));
    EXPECT_TRUE(RaisesAssertion(get(1, 0), "srcSlot < mItemList.size()", kSource, 85));
    EXPECT_TRUE(RaisesAssertion(get(0, -1), "dstSlot >= 0", kSource, 86));
    EXPECT_TRUE(RaisesAssertion(get(0, 1), "dstSlot < mItemList.size()", kSource, 87));
    // The source comes first.
    EXPECT_TRUE(RaisesAssertion(get(-1, -1), "srcSlot >= 0", kSource, 84));
    EXPECT_TRUE(RaisesAssertion(get(1, -1), "srcSlot < mItemList.size()", kSource, 85));
}

TEST_F(PoolMap, ChangesNothingWhenASlotIsRefused)
{
    const auto pool = mPools.NewPool();
    const VUKBasWeakPtr<VUKSimRpm_PoolImpl> watch(pool);
    NewSlot(mMap, mA);
    EXPECT_TRUE(
        RaisesAssertion([&] { mMap.SetPool(1, pool); }, "slot < mItemList.size()", kSource, 51));
    EXPECT_EQ(mMap.Length(), 1);
    EXPECT_EQ(watch.WeakCount(), 1);
}
