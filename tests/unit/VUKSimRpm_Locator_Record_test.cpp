// The stored form of a locator: 12 bytes, offset (8) and index in the storing pool's directory (4).
#include "VUKSimRpm_Locator.h"

#include "Bytes.h"
#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_BStreamWriteBuffer.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator";
constexpr char kDirectorySource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";
constexpr char kReadSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadBuffer";
constexpr char kWriteSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamWriteBuffer";

using Locator = VUKSimRpm_Locator;
using testing::ElementsAre;

std::string Record(unsigned long long offset, int reference)
{
    return bytes::LongWord(offset) + bytes::Word(static_cast<unsigned int>(reference));
}

// What `locator` becomes in `pool`.
std::string Stored(const Locator& locator, const VUKSimRpm_Pool& pool)
{
    std::string record(12, '?');
    VUKSimRpm_BStreamWriteBuffer stream(record.data(), record.size(), pool);
    locator.ExternalizeImpl(stream);
    return record;
}

// What `locator` becomes in no pool at all.
std::string StoredUnbound(const Locator& locator)
{
    std::string record(12, '?');
    VUKSimRpm_BStreamWriteBuffer stream(record.data(), record.size());
    locator.ExternalizeImpl(stream);
    return record;
}

// Two pools in one file. The directory of the first names itself alone, that of the second names
// itself and then the first.
class TwoPools
{
public:
    TwoPools() { mStore.File().NewPool(false, nullptr); }

    [[nodiscard]] VUKSimRpm_Pool First() { return mStore.File().Pool(0); }
    [[nodiscard]] VUKSimRpm_Pool Second() { return mStore.File().Pool(1); }
    [[nodiscard]] OnePool& Store() { return mStore; }

private:
    OnePool mStore{"0123456789"};
};

// Streams that note the order in which a record asks them for things.
class NotingWrite final : public VUKSimRpm_BStreamWrite
{
public:
    explicit NotingWrite(const Locator& context) : mContext(context) {}

    char* PrepWrite(unsigned long length) override
    {
        notes.push_back("PrepWrite " + std::to_string(length));
        return mRoom;
    }
    void Write(const char*, unsigned int) override { notes.emplace_back("Write"); }
    VUKSimRpm_PoolDirectoryImpl* SourceDir() const override
    {
        notes.emplace_back("SourceDir");
        return mContext.Directory().get();
    }
    VUKSimRpm_MemoryPool* IMPool() const override { return nullptr; }

    mutable std::vector<std::string> notes;

private:
    Locator mContext;
    char mRoom[12] = {};
};
} // namespace

// Writing

TEST(LocatorRecord, OfALocatorWithoutAPoolHoldsItsOffsetAndMinusOne)
{
    const std::string record("\x05\x00\x00\x00\x00\x00\x00\x00\xFF\xFF\xFF\xFF", 12);
    EXPECT_EQ(StoredUnbound(Locator({}, -1, 5, nullptr)), record);
}

TEST(LocatorRecord, OfADefaultLocatorIsEightZerosAndMinusOne)
{
    EXPECT_EQ(StoredUnbound(Locator()),
              std::string("\x00\x00\x00\x00\x00\x00\x00\x00\xFF\xFF\xFF\xFF", 12));
}

TEST(LocatorRecord, OfEachNegativeSlotHoldsMinusOne)
{
    EXPECT_EQ(StoredUnbound(Locator({}, -7, 5, nullptr)), Record(5, -1));
    EXPECT_EQ(StoredUnbound(Locator({}, -2147483647 - 1, 5, nullptr)), Record(5, -1));
}

TEST(LocatorRecord, IsLittleEndian)
{
    TwoPools pools;
    const Locator locator = pools.First().Start() + 0x0102030405060708ULL;
    EXPECT_EQ(Stored(locator, pools.Second()),
              std::string("\x08\x07\x06\x05\x04\x03\x02\x01\x01\x00\x00\x00", 12));
}

TEST(LocatorRecord, NamesTheStoringPoolWithIndexZero)
{
    TwoPools pools;
    EXPECT_EQ(Stored(pools.First().End(), pools.First()), Record(10, 0));
    EXPECT_EQ(Stored(pools.Second().End(), pools.Second()), Record(0, 0));
}

TEST(LocatorRecord, AsksForItsRoomBeforeTheReferenceIsTranslated)
{
    TwoPools pools;
    NotingWrite stream(pools.First().Start());
    pools.First().Start().ExternalizeImpl(stream);
    EXPECT_THAT(stream.notes, ElementsAre("PrepWrite 12", "SourceDir"));
}

TEST(LocatorRecord, AsksNoDirectoryForANegativeSlot)
{
    TwoPools pools;
    NotingWrite stream(pools.First().Start());
    Locator({}, -1, 5, nullptr).ExternalizeImpl(stream);
    EXPECT_THAT(stream.notes, ElementsAre("PrepWrite 12"));
}

TEST(LocatorRecord, OfAPoolThatTheDirectoryDoesNotNameIsRefused)
{
    TwoPools pools;
    const Locator second = pools.Second().Start();
    EXPECT_TRUE(Raises<VUKSimExcCantExternalizeLoc>([&] { Stored(second, pools.First()); },
                                                    kDirectorySource, 123));
}

TEST(LocatorRecord, HasTakenItsRoomWhenTheReferenceIsRefused)
{
    TwoPools pools;
    const Locator second = pools.Second().Start();
    std::string room(23, '?');
    VUKSimRpm_BStreamWriteBuffer stream(room.data(), room.size(), pools.First());
    EXPECT_TRUE(Raises<VUKSimExcCantExternalizeLoc>([&] { second.ExternalizeImpl(stream); },
                                                    kDirectorySource, 123));
    // 11 are left, and that is said before the reference is looked at again.
    EXPECT_TRUE(
        RaisesShortBuffer([&] { second.ExternalizeImpl(stream); }, 12, 11, kWriteSource, 40));
    EXPECT_EQ(room, std::string(23, '?'));
}

TEST(LocatorRecord, CannotNameAPoolInAnUnboundStream)
{
    const OnePool store("x");
    EXPECT_TRUE(
        Raises<VUKSimExcCantExternalizeLoc>([&] { StoredUnbound(store.Start()); }, kSource, 166));
}

TEST(LocatorRecord, IsWrittenByTheSlotAloneEvenOfANullLocator)
{
    const OnePool store("x");
    const Locator gone({}, 0, 9, nullptr);
    ASSERT_TRUE(gone.Null());
    EXPECT_EQ(Stored(gone, store.Pool()), Record(9, 0));
}

TEST(LocatorRecord, CannotNameAPoolInAStreamWhoseDocumentHasClosed)
{
    OnePool store("x");
    const Locator locator = store.Start();
    std::string record(12, '?');
    VUKSimRpm_BStreamWriteBuffer stream(record.data(), record.size(), store.Pool());
    store.Document().Close();
    EXPECT_TRUE(
        Raises<VUKSimExcCantDerefLocator>([&] { locator.ExternalizeImpl(stream); }, kSource, 169));
}

// Reading

TEST(LocatorRecord, GivesPoolMapSlotAndOffset)
{
    TwoPools pools;
    const std::string record = Record(4294967303ULL, 1); // beyond 2^32
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size(), pools.Second());
    Locator locator;
    locator.InternalizeImpl(stream);
    EXPECT_TRUE(locator == pools.First().Start() + 4294967303ULL);
    EXPECT_FALSE(locator.Null());
    EXPECT_EQ(locator.IMPool(), nullptr);
}

TEST(LocatorRecord, ReplacesMapSlotOffsetAndMemoryPoolOfTheLocatorItIsReadInto)
{
    TwoPools pools;
    const OnePool other("abcdefghij");
    VUKSimRpm_MemoryPool image(other.Start(), 10, {}, nullptr);
    Locator locator(other.Start() + 3, image);
    const std::string record = Record(6, 0);
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size(), pools.Second());
    locator.InternalizeImpl(stream);
    EXPECT_TRUE(locator == pools.Second().Start() + 6);
    EXPECT_EQ(locator.IMPool(), nullptr);
}

TEST(LocatorRecord, WithANegativeReferenceKeepsMapAndSlotAndZeroesTheOffset)
{
    for (const int reference : {-1, -2, -2147483647 - 1}) {
        TwoPools pools;
        Locator locator = pools.First().Start() + 8;
        const std::string record = Record(5, reference);
        VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size(), pools.Second());
        locator.InternalizeImpl(stream);
        EXPECT_TRUE(locator == pools.First().Start()) << reference;
    }
}

TEST(LocatorRecord, WithANegativeReferenceLeavesADefaultLocatorNull)
{
    const std::string record = Record(5, -1);
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
    Locator locator;
    locator.InternalizeImpl(stream);
    EXPECT_TRUE(locator.Null());
    EXPECT_TRUE(locator == Locator());
}

TEST(LocatorRecord, WithANegativeReferenceTakesTheMemoryPoolOfTheStream)
{
    const OnePool store(Record(5, -1) + Record(7, -1));
    VUKSimRpm_MemoryPool image(store.Start(), 24, {}, nullptr);
    Locator locator = store.Start() + 8;
    VUKSimRpm_BStreamReadLocator imaged(Locator(store.Start(), image), 0, 64);
    locator.InternalizeImpl(imaged);
    EXPECT_TRUE(locator == store.Start());
    EXPECT_EQ(locator.IMPool(), &image);

    VUKSimRpm_BStreamReadLocator plain(store.Start() + 12, 0, 64);
    locator.InternalizeImpl(plain);
    EXPECT_TRUE(locator == store.Start());
    EXPECT_EQ(locator.IMPool(), nullptr);
}

TEST(LocatorRecord, ReadThroughAMemoryPoolReadsAndWritesThroughItFromThenOn)
{
    const OnePool store(Record(16, 0) + "....0123456789");
    VUKSimRpm_MemoryPool image(store.Start(), 26, {}, nullptr);
    VUKSimRpm_BStreamReadLocator stream(Locator(store.Start(), image), 0, 64);
    Locator locator;
    locator.InternalizeImpl(stream);
    EXPECT_EQ(locator.IMPool(), &image);
    WriteTo(store.Start() + 16, "??????????"); // behind the image's back
    EXPECT_EQ(ReadFrom(locator, 4), "0123");
    WriteTo(locator, "ab");
    EXPECT_EQ(ReadFrom(locator, 4), "ab23");
    EXPECT_EQ(store.Stored().substr(16), "ab????????");
}

TEST(LocatorRecord, OutsideTheDirectoryFailsValidationAndLeavesTheLocatorAsItWas)
{
    TwoPools pools;
    const std::string record = Record(5, 2) + Record(5, 2147483647);
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size(), pools.Second());
    VUKSimRpm_MemoryPool image(pools.First().Start(), 10, {}, nullptr);
    Locator locator(pools.First().Start() + 8, image);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(RaisesValidation([&] { locator.InternalizeImpl(stream); },
                                     "slotInDirectory < mMapSlotList.Length()", kDirectorySource,
                                     130));
        EXPECT_TRUE(locator == pools.First().Start() + 8);
        EXPECT_EQ(locator.IMPool(), &image);
    }
}

TEST(LocatorRecord, CutShortLeavesTheLocatorAsItWas)
{
    TwoPools pools;
    const std::string record = Record(5, 0);
    VUKSimRpm_BStreamReadBuffer stream(record.data(), 11, pools.Second());
    Locator locator = pools.First().Start() + 8;
    EXPECT_TRUE(
        RaisesShortBuffer([&] { locator.InternalizeImpl(stream); }, 12, 11, kReadSource, 40));
    EXPECT_TRUE(locator == pools.First().Start() + 8);
}

TEST(LocatorRecord, ThatNamesAPoolCannotBeReadFromAnUnboundStream)
{
    const OnePool store("x");
    const std::string record = Record(5, 0);
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size());
    Locator locator = store.Start() + 8;
    EXPECT_TRUE(Raises<VUKSimExcCantExternalizeLoc>([&] { locator.InternalizeImpl(stream); },
                                                    kSource, 178));
    EXPECT_TRUE(locator == store.Start() + 8);
}

TEST(LocatorRecord, ThatNamesAPoolCannotBeReadFromAStreamWhoseDocumentHasClosed)
{
    OnePool store("x");
    const std::string record = Record(5, 0);
    VUKSimRpm_BStreamReadBuffer stream(record.data(), record.size(), store.Pool());
    store.Document().Close();
    Locator locator;
    EXPECT_TRUE(
        Raises<VUKSimExcCantDerefLocator>([&] { locator.InternalizeImpl(stream); }, kSource, 181));
    EXPECT_TRUE(locator == Locator());
}

TEST(LocatorRecord, GoesThroughAPoolAndComesBack)
{
    TwoPools pools;
    pools.Second().Allocate(36);
    {
        VUKSimRpm_BStreamWriteLocator out(pools.Second().Start(), 0, 64);
        (pools.First().Start() + 4).ExternalizeImpl(out);
        (pools.Second().Start() + 6).ExternalizeImpl(out);
        Locator().ExternalizeImpl(out);
    }
    EXPECT_EQ(ReadFrom(pools.Second().Start(), 36), Record(4, 1) + Record(6, 0) + Record(0, -1));
    VUKSimRpm_BStreamReadLocator in(pools.Second().Start(), 0, 64);
    std::vector<Locator> locators(3);
    for (Locator& locator : locators) {
        locator.InternalizeImpl(in);
    }
    EXPECT_TRUE(locators[0] == pools.First().Start() + 4);
    EXPECT_TRUE(locators[1] == pools.Second().Start() + 6);
    EXPECT_TRUE(locators[2].Null());
}
