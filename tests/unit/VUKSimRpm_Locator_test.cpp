// Locators as values: nullness, arithmetic, comparison and what they tell of their pool.
#include "VUKSimRpm_Locator.h"

#include "Bytes.h"
#include "Failures.h"
#include "OnePool.h"
#include "VUKBasSharedPtr.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_PoolMap.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";

using Locator = VUKSimRpm_Locator;
using Map = VUKBasSharedPtr<VUKSimRpm_PoolMap>;

Map NewMap()
{
    return VUKBasMakeShared<VUKSimRpm_PoolMap>();
}

// A locator in slot 0 of a map that holds two slots, without pools.
class LocatorInAMap : public testing::Test
{
protected:
    LocatorInAMap()
    {
        map->NewSlot(bytes::Uuid('a').c_str());
        map->NewSlot(bytes::Uuid('b').c_str());
    }

    [[nodiscard]] Locator At(int slot, unsigned long long offset) const
    {
        return {map, slot, offset, nullptr};
    }

    Map map = NewMap();
};
} // namespace

TEST(Locator, IsAPlainValue)
{
    EXPECT_FALSE(std::is_polymorphic_v<Locator>);
    EXPECT_TRUE(std::is_copy_constructible_v<Locator>);
    EXPECT_TRUE(std::is_copy_assignable_v<Locator>);
}

TEST_F(LocatorInAMap, IsCopiedWithAllFieldsAndReleasesTheMapAgain)
{
    const OnePool store("0123456789");
    VUKSimRpm_MemoryPool image(store.Start(), 10, {}, nullptr);
    const VUKBasWeakPtr<VUKSimRpm_PoolMap> watch(map);
    {
        const Locator locator(map, 1, 7, &image);
        const Locator copy = locator;
        Locator assigned(NewMap(), 5, 9, nullptr);
        assigned = locator;
        EXPECT_EQ(watch.WeakCount(), 4); // the three, and the one that watches
        EXPECT_TRUE(copy == At(1, 7));
        EXPECT_EQ(copy.IMPool(), &image);
        EXPECT_TRUE(assigned == At(1, 7));
        EXPECT_EQ(assigned.IMPool(), &image);
    }
    EXPECT_EQ(watch.WeakCount(), 1);
}

TEST(Locator, IsNullByDefaultAndEqualToAnotherDefaultLocator)
{
    const Locator locator;
    EXPECT_TRUE(locator.Null());
    EXPECT_EQ(locator.IMPool(), nullptr);
    EXPECT_TRUE(locator == Locator());
}

TEST(Locator, HasSlotMinusOneAndOffsetZeroByDefault)
{
    EXPECT_TRUE(Locator() == Locator({}, -1, 0, nullptr));
    EXPECT_FALSE(Locator() == Locator({}, -2, 0, nullptr));
    EXPECT_FALSE(Locator() == Locator({}, 0, 0, nullptr));
    EXPECT_FALSE(Locator() == Locator({}, -1, 1, nullptr));
}

TEST_F(LocatorInAMap, IsNotNullWhateverItsOffset)
{
    EXPECT_FALSE(At(0, 0).Null());
    EXPECT_FALSE(At(1, 18446744073709551615ULL).Null());
}

TEST_F(LocatorInAMap, IsNullWithAnyNegativeSlot)
{
    EXPECT_TRUE(At(-1, 0).Null());
    EXPECT_TRUE(At(-2147483647 - 1, 7).Null());
}

TEST_F(LocatorInAMap, IsNullOnceItsPoolMapIsGoneAlthoughItsSlotIsNotNegative)
{
    const Locator locator = At(0, 5);
    ASSERT_FALSE(locator.Null());
    map.reset();
    EXPECT_TRUE(locator.Null());
}

TEST_F(LocatorInAMap, DoesNotKeepThePoolMapAlive)
{
    const Locator locator = At(0, 5);
    const Locator copy = locator;
    EXPECT_EQ(map.UseCount(), 1);
}

TEST_F(LocatorInAMap, DifferenceCountsBytesAndWraps)
{
    const Locator a = At(0, 1000);
    EXPECT_EQ((a + 10) - a, 10ULL);
    EXPECT_EQ(a - (a + 10), 18446744073709551606ULL); // 2^64 - 10
    EXPECT_EQ(a - a, 0ULL);
}

TEST_F(LocatorInAMap, ArithmeticWrapsAt64Bits)
{
    EXPECT_TRUE(At(0, 3) - 4 == At(0, 18446744073709551615ULL));
    EXPECT_TRUE(At(0, 18446744073709551615ULL) + 1 == At(0, 0));
    EXPECT_TRUE(Locator(At(0, 5), 18446744073709551615ULL) == At(0, 4));
    Locator moved = At(0, 18446744073709551615ULL);
    moved += 6;
    EXPECT_TRUE(moved == At(0, 5));
}

TEST_F(LocatorInAMap, PlusEqualsMovesInPlaceAndReturnsTheLocator)
{
    Locator locator = At(0, 1);
    EXPECT_EQ(&(locator += 4294967296ULL), &locator);
    EXPECT_TRUE(locator == At(0, 4294967297ULL));
}

TEST_F(LocatorInAMap, ArithmeticNeedsNoLivingMap)
{
    const Locator locator = At(0, 1);
    map.reset();
    EXPECT_TRUE(locator + 4 - 4 == locator);
    EXPECT_FALSE(locator + 4 == locator);
}

TEST_F(LocatorInAMap, OrdersByUnsignedOffset)
{
    const Locator low = At(0, 1);
    const Locator high = At(0, 9223372036854775808ULL); // negative, were it signed
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
    EXPECT_FALSE(low < low);
    EXPECT_TRUE(low <= high);
    EXPECT_TRUE(low <= low);
    EXPECT_FALSE(high <= low);
}

TEST_F(LocatorInAMap, ComparisonsInDifferentPoolsFailTheSamePoolAssertion)
{
    const Locator a = At(0, 1);
    const Locator b = At(1, 2);
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a < b); }, "SamePool(that)", kSource, 81));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a <= b); }, "SamePool(that)", kSource, 87));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a - b); }, "SamePool(that)", kSource, 93));
}

TEST_F(LocatorInAMap, ComparisonsWithANullOneOnEitherSideFailTheSamePoolAssertion)
{
    const Locator a = At(0, 1);
    const Locator null;
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a < null); }, "SamePool(that)", kSource, 81));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(null < a); }, "SamePool(that)", kSource, 81));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a <= null); }, "SamePool(that)", kSource, 87));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(null <= a); }, "SamePool(that)", kSource, 87));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a - null); }, "SamePool(that)", kSource, 93));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(null - a); }, "SamePool(that)", kSource, 93));
}

TEST(Locator, ComparisonsOfTwoNullLocatorsFailTheSamePoolAssertion)
{
    const Locator a;
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a < a); }, "SamePool(that)", kSource, 81));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a <= a); }, "SamePool(that)", kSource, 87));
    EXPECT_TRUE(RaisesAssertion([&] { (void)(a - a); }, "SamePool(that)", kSource, 93));
}

TEST_F(LocatorInAMap, IsInTheSamePoolAsAnotherOnlyWhenMapAndSlotAgreeAndNeitherIsNull)
{
    const Map other = NewMap();
    other->NewSlot(bytes::Uuid('a').c_str());
    EXPECT_TRUE(At(0, 1).SamePool(At(0, 2)));
    EXPECT_FALSE(At(0, 1).SamePool(At(1, 1)));
    EXPECT_FALSE(At(0, 1).SamePool(Locator(other, 0, 1, nullptr)));
    EXPECT_FALSE(At(-1, 1).SamePool(At(-1, 1)));
    EXPECT_FALSE(Locator().SamePool(Locator()));
    EXPECT_FALSE(At(0, 1).SamePool(Locator()));
    EXPECT_FALSE(Locator().SamePool(At(0, 1)));
}

TEST_F(LocatorInAMap, IsInNoPoolOnceItsMapIsGone)
{
    const Locator locator = At(0, 1);
    map.reset();
    EXPECT_FALSE(locator.SamePool(locator));
}

TEST_F(LocatorInAMap, EqualsAnotherWhenMapSlotAndOffsetAgree)
{
    const Map other = NewMap();
    EXPECT_TRUE(At(0, 7) == At(0, 7));
    EXPECT_FALSE(At(0, 7) == At(0, 8));
    EXPECT_FALSE(At(0, 7) == At(1, 7));
    EXPECT_FALSE(At(0, 7) == Locator(other, 0, 7, nullptr));
    EXPECT_FALSE(At(0, 7) == Locator({}, 0, 7, nullptr));
}

TEST_F(LocatorInAMap, EqualityTakesNoAccountOfNullness)
{
    EXPECT_FALSE(At(-1, 0) == At(-2, 0));
    EXPECT_TRUE(At(-2, 3) == At(-2, 3));
    EXPECT_FALSE(At(-1, 0) == Locator());
}

TEST_F(LocatorInAMap, EqualityCountsAGoneMapAsNone)
{
    Map other = NewMap();
    const Locator mine = At(0, 7);
    const Locator others(other, 0, 7, nullptr);
    map.reset();
    EXPECT_FALSE(mine == others);
    other.reset();
    EXPECT_TRUE(mine == others);
    EXPECT_TRUE(mine == Locator({}, 0, 7, nullptr));
}

TEST(Locator, ComparesEqualToOneThatDiffersOnlyInTheMemoryPool)
{
    const OnePool store(Letters(100));
    VUKSimRpm_MemoryPool image(store.Start(), 100, {}, nullptr);
    const Locator plain = store.Start() + 10;
    const Locator imaged(plain, image);
    EXPECT_TRUE(plain == imaged);
    EXPECT_TRUE(plain <= imaged);
    EXPECT_FALSE(plain < imaged);
    EXPECT_EQ(imaged - plain, 0ULL);
}

TEST(Locator, KeepsTheMemoryPoolInArithmeticButNotWhenBuiltFromABase)
{
    const OnePool store(Letters(100));
    VUKSimRpm_MemoryPool image(store.Start(), 100, {}, nullptr);
    const Locator base(store.Start(), image);
    EXPECT_EQ(base.IMPool(), &image);
    EXPECT_EQ((base + 0).IMPool(), &image);
    EXPECT_EQ((base - 0).IMPool(), &image);
    Locator moved = base;
    moved += 3;
    EXPECT_EQ(moved.IMPool(), &image);
    EXPECT_EQ(Locator(base, 0).IMPool(), nullptr);
    EXPECT_TRUE(Locator(base, 0) == base);
}

TEST(Locator, BuiltFromAnotherAndAMemoryPoolNamesTheSameByte)
{
    const OnePool store(Letters(100));
    VUKSimRpm_MemoryPool image(store.Start(), 100, {}, nullptr);
    VUKSimRpm_MemoryPool second(store.Start(), 50, {}, nullptr);
    const Locator imaged(store.Start() + 7, image);
    EXPECT_TRUE(Locator(imaged, second) == store.Start() + 7);
    EXPECT_EQ(Locator(imaged, second).IMPool(), &second);
}

TEST_F(LocatorInAMap, TellsThe32CharactersOfItsPool)
{
    EXPECT_TRUE(At(1, 9).GetGUID() == VUKString("bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb"));
}

TEST(Locator, TellsTheUuidOfAPoolWhoseFileIsClosed)
{
    OnePool store("x");
    const VUKString uuid = store.Pool().GetGUID();
    const Locator locator = store.Start();
    store.CloseFile();
    EXPECT_FALSE(locator.Null());
    EXPECT_TRUE(locator.GetGUID() == uuid);
}

TEST_F(LocatorInAMap, HasNoUuidOnceItIsNull)
{
    using Failure = VUKSimExcCantDerefLocator;
    const Locator dead = At(0, 0);
    EXPECT_TRUE(Raises<Failure>([] { (void)Locator().GetGUID(); }, kSource, 141));
    EXPECT_TRUE(Raises<Failure>([&] { (void)At(-1, 0).GetGUID(); }, kSource, 141));
    map.reset();
    EXPECT_TRUE(Raises<Failure>([&] { (void)dead.GetGUID(); }, kSource, 141));
}

TEST(Locator, SharesItsPoolsDirectory)
{
    const OnePool store("x");
    const auto directory = store.Start().Directory();
    EXPECT_EQ(directory.get(), (store.Pool().End() + 7).Directory().get());
    EXPECT_TRUE(directory->GetGUID() == store.Pool().GetGUID());
}

TEST_F(LocatorInAMap, WithoutAnOpenPoolHasNoDirectory)
{
    using Failure = VUKSimExcCantDerefLocator;
    const Locator locator = At(0, 0);
    EXPECT_TRUE(Raises<Failure>([] { (void)Locator().Directory(); }, kSource, 149));
    EXPECT_TRUE(Raises<Failure>([&] { (void)At(-1, 0).Directory(); }, kSource, 149));
    EXPECT_TRUE(Raises<Failure>([&] { (void)locator.Directory(); }, kSource, 149));
    map.reset();
    EXPECT_TRUE(Raises<Failure>([&] { (void)locator.Directory(); }, kSource, 149));
}

TEST(Locator, TellsWhetherItsFileIsReadOnly)
{
    OnePool store("x");
    const Locator locator = store.Start();
    EXPECT_FALSE(locator.ReadOnly());
    store.ReopenReadOnly();
    EXPECT_TRUE(locator.ReadOnly());
}

TEST_F(LocatorInAMap, WithoutAnOpenPoolCannotTellWhetherItIsReadOnly)
{
    using Failure = VUKSimExcCantDerefLocator;
    const Locator locator = At(0, 0);
    EXPECT_TRUE(Raises<Failure>([] { (void)Locator().ReadOnly(); }, kSource, 157));
    EXPECT_TRUE(Raises<Failure>([&] { (void)At(-1, 0).ReadOnly(); }, kSource, 157));
    EXPECT_TRUE(Raises<Failure>([&] { (void)locator.ReadOnly(); }, kSource, 157));
    map.reset();
    EXPECT_TRUE(Raises<Failure>([&] { (void)locator.ReadOnly(); }, kSource, 157));
}

TEST(Locator, TellsWhereItsByteLiesInTheFile)
{
    OnePool store("data"); // whose header takes 80 bytes
    EXPECT_EQ(store.Start().FilePosition(), 80U);
    EXPECT_EQ((store.Start() + 1000).FilePosition(), 1080U);
    store.File().NewPool(true, nullptr);
    EXPECT_EQ(store.File().Pool().Start().FilePosition(), 164U); // 84 and another header
    EXPECT_EQ((store.Start() - 1).FilePosition(), 79U);
}

TEST(Locator, HasNoFilePositionWhileItsPoolIsNotOpen)
{
    OnePool store("data");
    const Locator start = store.Start();
    store.CloseFile();
    EXPECT_EQ(start.FilePosition(), 0U);
    store.Document().Close();
    EXPECT_EQ(start.FilePosition(), 0U);
    EXPECT_EQ(Locator().FilePosition(), 0U);
}

TEST_F(LocatorInAMap, HasNoFilePositionInASlotThatDoesNotExist)
{
    EXPECT_EQ(Locator(map, 2, 10, nullptr).FilePosition(), 0U);
    EXPECT_EQ(Locator(map, -1, 10, nullptr).FilePosition(), 0U);
    EXPECT_EQ(Locator(map, 0, 10, nullptr).FilePosition(), 0U); // which has no pool
}
