// How the pool map grows, what it costs, and what is left when memory runs out.
#include "VUKSimRpm_PoolMap.h"

#include "Failures.h"
#include "LimitedMemory.h"
#include "PoolMapFixture.h"
#include "ResidentBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::Pair;

// Whether all that `map` holds is its `length` numbered slots and index 9 for the pair (0, 0).
testing::AssertionResult HoldsNumberedSlots(const VUKSimRpm_PoolMap& map, int length)
{
    if (map.Length() != length) {
        return testing::AssertionFailure() << map.Length() << " slots";
    }
    for (int slot = 0; slot < length; ++slot) {
        if (UuidOf(map, slot) != NumberedUuid(slot) ||
            map.LookupByUUID(NumberedUuid(slot).c_str()) != slot) {
            return testing::AssertionFailure() << "slot " << slot;
        }
    }
    if (length > 0 && map.GetDirectoryIndex(0, 0) != 9) {
        return testing::AssertionFailure() << "index " << map.GetDirectoryIndex(0, 0);
    }
    return testing::AssertionSuccess();
}

// Gives a map of `length` numbered slots ever more memory for one slot more, and holds it against
// what it was after each failure. Returns the number of failures before the slot came off.
int FailuresBeforeOneMoreSlot(int length)
{
    const std::string next = NumberedUuid(length);
    for (int allowed = 0;; ++allowed) {
        VUKSimRpm_PoolMap map;
        AddSlots(map, length);
        if (length > 0) {
            map.AddReference(0, 0, 9);
        }
        bool ranOut = false;
        {
            const LimitedMemory memory(allowed);
            ranOut = RaisesBadAlloc([&] { map.NewSlot(next.c_str()); });
        }
        if (!ranOut) {
            EXPECT_EQ(map.LookupByUUID(next.c_str()), length);
            return allowed;
        }
        EXPECT_TRUE(HoldsNumberedSlots(map, length)) << "with " << allowed << " allocations";
        EXPECT_EQ(map.LookupByUUID(next.c_str()), -1);
        EXPECT_EQ(map.NewSlot(next.c_str()), length); // with memory again
    }
}
} // namespace

// Each cache has a zeroed word for a row, and 4 bytes for an entry.
TEST(PoolMapMemory, GrowsToTheSumOfOldSizeAndNeedInMultiplesOf64)
{
    VUKSimRpm_PoolMap map;
    const CacheRequests requests;
    std::vector<std::pair<int, std::size_t>> growths; // by the number of slots then
    while (map.Length() < 4100) {
        AddSlots(map, 1);
        if (requests.Sizes().size() > growths.size()) {
            growths.emplace_back(map.Length(), requests.Sizes().back());
        }
    }
    EXPECT_EQ(requests.Sizes().size(), 7U);
    EXPECT_THAT(growths, ElementsAre(Pair(1, 512U),        // 64 by 64
                                     Pair(65, 1536U),      // 192
                                     Pair(193, 3584U),     // 448
                                     Pair(449, 7680U),     // 960
                                     Pair(961, 15872U),    // 1984
                                     Pair(1985, 32256U),   // 4032
                                     Pair(4033, 65024U))); // 8128
}

TEST(PoolMapMemory, GrowsForAStatedNeedAndOnlyBeyondItsAllocation)
{
    VUKSimRpm_PoolMap map;
    const CacheRequests requests;
    map.GrowAllocation(0);
    map.GrowAllocation(-5);
    EXPECT_THAT(requests.Sizes(), ElementsAre());

    map.GrowAllocation(65);
    EXPECT_THAT(requests.Sizes(), ElementsAre(1024U)); // 128 by 128
    map.GrowAllocation(128);
    AddSlots(map, 128);
    EXPECT_THAT(requests.Sizes(), ElementsAre(1024U));

    map.GrowAllocation(129);
    EXPECT_THAT(requests.Sizes(), ElementsAre(1024U, 2560U)); // 320 by 320
    EXPECT_EQ(map.Length(), 128);
}

TEST(PoolMapMemory, KeepsEveryCachedIndexWhenItGrows)
{
    VUKSimRpm_PoolMap map;
    AddSlots(map, 64);
    for (int src = 0; src < 64; ++src) {
        for (int dst = 0; dst < 64; ++dst) {
            map.AddReference(src, dst, 100 * src + dst);
        }
    }
    AddSlots(map, 1); // to 192
    for (int src = 0; src < 65; ++src) {
        for (int dst = 0; dst < 65; ++dst) {
            const int expected = src < 64 && dst < 64 ? 100 * src + dst : -1;
            ASSERT_EQ(map.GetDirectoryIndex(src, dst), expected) << src << ", " << dst;
        }
    }
    AddSlots(map, 128); // to 448
    EXPECT_EQ(map.GetDirectoryIndex(63, 62), 6362);
    EXPECT_EQ(map.GetDirectoryIndex(0, 192), -1);
    EXPECT_EQ(map.GetDirectoryIndex(192, 0), -1);
}

TEST(PoolMapMemory, KeepsPoolsWhenItsItemsMove)
{
    PoolMaker pools;
    const auto pool = pools.NewPool();
    const VUKBasWeakPtr<VUKSimRpm_PoolImpl> watch(pool);
    VUKSimRpm_PoolMap map;
    AddSlots(map, 64);
    map.SetPool(3, pool);
    AddSlots(map, 1);
    EXPECT_EQ(map.Pool(3).lock(), pool);
    EXPECT_EQ(watch.WeakCount(), 2);
}

TEST(PoolMapMemory, TakesAUuidOutOfItsOwnItemsThoughTheyMove)
{
    VUKSimRpm_PoolMap map;
    AddSlots(map, 64);
    // The first slot's: freed memory does not keep its beginning.
    EXPECT_EQ(map.NewSlot(map.UUID(0)), 64);
    EXPECT_EQ(UuidOf(map, 64), "00000000000000000000000000000000");
    EXPECT_EQ(map.LookupByUUID("00000000000000000000000000000000"), 0);
}

// The list, the cache, twice, and the index need memory for the first slot and for the 65th, the
// index alone for all between.
TEST(PoolMapMemory, AddsNoSlotWhenMemoryRunsOut)
{
    EXPECT_EQ(FailuresBeforeOneMoreSlot(0), 4);
    EXPECT_EQ(FailuresBeforeOneMoreSlot(10), 1);
    EXPECT_EQ(FailuresBeforeOneMoreSlot(64), 4);
}

// Room in the list comes first, then the cache: whichever fails, growth starts anew.
TEST(PoolMapMemory, KeepsItsOldCacheUntilAllOfItsGrowthIsThere)
{
    for (const int allowed : {0, 1, 2}) {
        VUKSimRpm_PoolMap map;
        AddSlots(map, 64);
        {
            const LimitedMemory memory(allowed);
            EXPECT_TRUE(RaisesBadAlloc([&] { map.GrowAllocation(65); }));
        }
        const CacheRequests requests;
        map.GrowAllocation(64); // what it has
        EXPECT_THAT(requests.Sizes(), ElementsAre());
        map.GrowAllocation(65);
        EXPECT_THAT(requests.Sizes(), ElementsAre(1536U)); // 192 by 192, once more
    }
}

TEST(PoolMapMemory, GrowsForASlotThatItMakesButNotForOneThatItHas)
{
    VUKSimRpm_PoolMap map;
    AddSlots(map, 64);
    const CacheRequests requests;
    EXPECT_EQ(map.SlotOf(NumberedUuid(63).c_str()), 63);
    EXPECT_THAT(requests.Sizes(), ElementsAre());
    EXPECT_EQ(map.SlotOf(NumberedUuid(64).c_str()), 64);
    EXPECT_THAT(requests.Sizes(), ElementsAre(1536U)); // 192 by 192
}

TEST(PoolMapMemory, MakesNoSlotForAUuidWhenMemoryRunsOut)
{
    VUKSimRpm_PoolMap map;
    AddSlots(map, 10);
    map.AddReference(0, 0, 9);
    {
        const LimitedMemory none(0);
        EXPECT_TRUE(RaisesBadAlloc([&] { map.SlotOf(NumberedUuid(10).c_str()); }));
        EXPECT_EQ(map.SlotOf(NumberedUuid(9).c_str()), 9);
    }
    EXPECT_TRUE(HoldsNumberedSlots(map, 10));
    EXPECT_EQ(map.SlotOf(NumberedUuid(10).c_str()), 10);
}

TEST(PoolMapMemory, GivesBackItsIndexThenItsItemsThenItsCache)
{
    static mem_Functions real;
    static std::vector<void*> allocated;
    static std::vector<void*> released;
    real = mem_CurrentFunctions();
    allocated.clear();
    released.clear();
    mem_CurrentFunctions() = {[](std::size_t size) {
                                  allocated.push_back(real.allocate(size));
                                  return allocated.back();
                              },
                              [](std::size_t size) {
                                  allocated.push_back(real.allocateZeroed(size));
                                  return allocated.back();
                              },
                              [](void* block) {
                                  released.push_back(block);
                                  real.release(block);
                              }};
    {
        VUKSimRpm_PoolMap map;
        AddSlots(map, 1);
    }
    mem_CurrentFunctions() = real;
    ASSERT_EQ(allocated.size(), 4U); // room for items, two of the cache, a node of the index
    EXPECT_THAT(released, ElementsAre(allocated[3], allocated[0], allocated[2], allocated[1]));
}

TEST(PoolMapMemory, RefusesMoreThan46336SlotsBeforeAnyChange)
{
    VUKSimRpm_PoolMap empty;
    VUKSimRpm_PoolMap some;
    AddSlots(some, 64);
    some.AddReference(0, 0, 9);

    const LimitedMemory none(0);
    for (const int required : {46337, 65536, INT_MAX - 63, INT_MAX}) {
        EXPECT_TRUE(RaisesBadAlloc([&] { empty.GrowAllocation(required); })) << required;
        EXPECT_TRUE(RaisesBadAlloc([&] { some.GrowAllocation(required); })) << required;
    }
    // What counts is the dimension that the rule asks for: 64 + 46,273, rounded up.
    EXPECT_TRUE(RaisesBadAlloc([&] { some.GrowAllocation(46273); }));
    EXPECT_FALSE(none.RanOut());
    EXPECT_EQ(empty.Length(), 0);
    EXPECT_TRUE(HoldsNumberedSlots(some, 64));
}

TEST(PoolMapMemory, AsksForADimensionOf46336AtMost)
{
    static std::vector<std::size_t> refused;
    static mem_Functions real;
    refused.clear();
    real = mem_CurrentFunctions();
    VUKSimRpm_PoolMap empty;
    VUKSimRpm_PoolMap some;
    AddSlots(some, 64);
    mem_CurrentFunctions().allocate = [](std::size_t size) {
        if (size < 1'000'000'000) {
            return real.allocate(size);
        }
        refused.push_back(size);
        return static_cast<void*>(nullptr);
    };
    EXPECT_TRUE(RaisesBadAlloc([&] { empty.GrowAllocation(46336); }));
    EXPECT_TRUE(RaisesBadAlloc([&] { some.GrowAllocation(46272); })); // 64 more than that
    mem_CurrentFunctions() = real;

    EXPECT_THAT(refused, ElementsAre(8588099584U, 8588099584U)); // 4 * 46,336^2
    EXPECT_EQ(some.NewSlot(NumberedUuid(64).c_str()), 64);
}

// The cache has 1.6 GB of addresses.
TEST(PoolMapMemory, ACacheThatNobodyTouchedCostsNoMemory)
{
    const long long before = ResidentBytes();
    VUKSimRpm_PoolMap map;
    map.GrowAllocation(20000);
    AddSlots(map, 20000);
    EXPECT_EQ(map.GetDirectoryIndex(0, 0), -1);
    EXPECT_EQ(map.GetDirectoryIndex(10000, 5), -1);
    EXPECT_EQ(map.GetDirectoryIndex(19999, 19999), -1);
    EXPECT_LT(ResidentBytes() - before, 64 * 1024 * 1024);
}

// The cache of 200 slots has 800 KB: with a C library that clears what it gives out once more, a
// document after the other would touch all of it.
TEST(PoolMapMemory, ACacheWritesNothingButTheEntriesInUse)
{
    static mem_Functions real;
    static std::vector<char*> caches;
    real = mem_CurrentFunctions();
    caches.clear();
    VUKSimRpm_PoolMap map;
    mem_CurrentFunctions().allocate = [](std::size_t size) {
        void* const block = real.allocate(size);
        if (size == 802'816) { // 4 * 448^2
            std::memset(block, 'd', size);
            caches.push_back(static_cast<char*>(block));
        }
        return block;
    };
    AddSlots(map, 200);
    mem_CurrentFunctions() = real;
    map.AddReference(7, 199, 3);
    EXPECT_EQ(map.GetDirectoryIndex(7, 199), 3);
    EXPECT_EQ(map.GetDirectoryIndex(7, 198), -1);
    EXPECT_EQ(map.GetDirectoryIndex(8, 199), -1);

    ASSERT_EQ(caches.size(), 1U);
    // In row 7, entry 199 and the seven that share its piece.
    EXPECT_EQ(std::count(caches[0], caches[0] + 802'816, 'd'), 802'816 - 8 * 4);
}

// The caches have 164 MB of addresses, and then 655 MB.
TEST(PoolMapMemory, AGrowingCacheTakesMemoryForTheRowsInUseAlone)
{
    const long long before = ResidentBytes();
    VUKSimRpm_PoolMap map;
    map.GrowAllocation(6400);
    AddSlots(map, 6400);
    map.AddReference(10, 6399, 4);
    map.AddReference(6399, 0, 5);
    AddSlots(map, 1);
    EXPECT_EQ(map.GetDirectoryIndex(10, 6399), 4);
    EXPECT_EQ(map.GetDirectoryIndex(6399, 0), 5);
    EXPECT_EQ(map.GetDirectoryIndex(6400, 6400), -1);
    EXPECT_LT(ResidentBytes() - before, 64 * 1024 * 1024);
}
