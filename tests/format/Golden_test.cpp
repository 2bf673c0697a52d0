// Good golden files: what must be found in each, written out by hand.
#include "Golden.h"

#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_BStreamReadBuffer.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Pool.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_Swapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

class GoldenFile : public GoldenFixture
{
protected:
    // What a pool holds, up to the end of its data.
    static std::string DataOf(const VUKSimRpm_Pool& pool)
    {
        return ReadFrom(pool.Start(), pool.Length());
    }
};

// What the pool's data from `offset` on says when it is read as records.
VUKString StringAt(const VUKSimRpm_Pool& pool, unsigned long long offset)
{
    VUKSimRpm_BStreamReadLocator stream(pool.Start() + offset, 0, 64);
    VUKString text;
    stream.Read(text);
    return text;
}

VUKSimRpm_Locator LocatorAt(const VUKSimRpm_Pool& pool, unsigned long long offset)
{
    VUKSimRpm_BStreamReadLocator stream(pool.Start() + offset, 0, 64);
    VUKSimRpm_Locator locator;
    locator.InternalizeImpl(stream);
    return locator;
}

template <class Scalar>
Scalar ScalarAt(const VUKSimRpm_Pool& pool, unsigned long long offset)
{
    VUKSimRpm_BStreamReadLocator stream(pool.Start() + offset, 0, 64);
    Scalar scalar{};
    VUKSimRpm_Swapper::InternalizeScalarUnsafe(stream.PrepRead(sizeof scalar), &scalar,
                                               sizeof scalar);
    return scalar;
}
} // namespace

TEST(GoldenFiles, AreAllHere)
{
    EXPECT_THAT(GoldenNames(),
                testing::ElementsAre(
                    "bad_reference", "beyond_the_end", "empty", "endless_string", "fresh",
                    "huge_count", "leads_back", "length_of_letters", "mesh", "no_directory",
                    "no_signature", "one_pool", "other_user", "overlapping", "records",
                    "repeated_entries", "reserved", "results", "same_pool_twice", "short_directory",
                    "short_header", "three_pools", "version_05", "version_07", "version_ff",
                    "worked_example", "wrapping_count", "wrong_length"));
}

TEST_F(GoldenFile, EmptyHasNoPools)
{
    EXPECT_EQ(OpenRead("empty").PoolCount(), 0U);
}

TEST_F(GoldenFile, FreshHasOnePoolWithoutData)
{
    const VUKSimRpm_File file = OpenRead("fresh");
    ASSERT_EQ(file.PoolCount(), 1U);
    EXPECT_EQ(file.Pool(0).Length(), 0U);
    EXPECT_EQ(file.Pool(0).DirectorySizeBytes(), 32U);
    EXPECT_STREQ(file.Pool(0).GetGUID().UTF8(), "a0a1a2a3a4a5a6a7a8a9aaabacadaeaf");
}

TEST_F(GoldenFile, OnePoolHoldsFiveBytes)
{
    const VUKSimRpm_File file = OpenRead("one_pool");
    ASSERT_EQ(file.PoolCount(), 1U);
    EXPECT_EQ(DataOf(file.Pool()), "hello");
}

TEST_F(GoldenFile, ThreePoolsLieEndToEnd)
{
    const VUKSimRpm_File file = OpenRead("three_pools");
    ASSERT_EQ(file.PoolCount(), 3U);
    EXPECT_STREQ(file.Pool(0).GetGUID().UTF8(), "a0a1a2a3a4a5a6a7a8a9aaabacadaeaf");
    EXPECT_STREQ(file.Pool(1).GetGUID().UTF8(), "b0b1b2b3b4b5b6b7b8b9babbbcbdbebf");
    EXPECT_STREQ(file.Pool(2).GetGUID().UTF8(), "c0c1c2c3c4c5c6c7c8c9cacbcccdcecf");
    EXPECT_EQ(file.Pool(0).DirectorySizeBytes(), 32U);
    EXPECT_EQ(file.Pool(1).DirectorySizeBytes(), 64U);
    EXPECT_EQ(file.Pool(2).DirectorySizeBytes(), 96U);
    EXPECT_EQ(DataOf(file.Pool(0)), "1234");
    EXPECT_EQ(DataOf(file.Pool(1)), "5678");
    EXPECT_EQ(DataOf(file.Pool(2)), "90!!");
}

TEST_F(GoldenFile, ThreePoolsStayAsTheyAreWhenUpdated)
{
    Open("three_pools", VUKSimRpm_Document::Update);
    mDocument.Close();
    EXPECT_EQ(mFolder.Read("three_pools"), GoldenBytes("three_pools"));
}

TEST_F(GoldenFile, WorkedExampleHasALocatorToItsString)
{
    const VUKSimRpm_File file = OpenRead("worked_example");
    ASSERT_EQ(file.PoolCount(), 2U);
    EXPECT_STREQ(file.Pool(0).GetGUID().UTF8(), "00112233445546778899aabbccddeeff");
    EXPECT_STREQ(file.Pool(1).GetGUID().UTF8(), "f0e1d2c3b4a54697b8798a9bacbdcedf");
    EXPECT_STREQ(StringAt(file.Pool(0), 0).UTF8(), "plate");
    EXPECT_EQ(LocatorAt(file.Pool(1), 0), file.Pool(0).Start());
    EXPECT_TRUE(LocatorAt(file.Pool(1), 12).Null());
}

TEST_F(GoldenFile, RecordsAreStringsScalarsAndLocators)
{
    const VUKSimRpm_Pool pool = OpenRead("records").Pool();
    EXPECT_EQ(pool.Length(), 112U);
    EXPECT_STREQ(StringAt(pool, 4).UTF8(), "a");
    EXPECT_STREQ(StringAt(pool, 12).UTF8(), "abcd");
    EXPECT_STREQ(StringAt(pool, 20).UTF8(), "\xC3\xA4\xE2\x82\xAC!");
    EXPECT_EQ(ScalarAt<std::int16_t>(pool, 32), -2);
    EXPECT_EQ(ScalarAt<std::uint16_t>(pool, 34), 0x1234);
    EXPECT_EQ(ScalarAt<std::uint32_t>(pool, 36), 0x12345678U);
    EXPECT_EQ(ScalarAt<std::uint64_t>(pool, 40), 0x123456789ABCDEF0U);
    EXPECT_EQ(ScalarAt<float>(pool, 48), -1.5F);
    EXPECT_EQ(ScalarAt<double>(pool, 52), -0.25);
    EXPECT_EQ(LocatorAt(pool, 60), pool.Start() + 20);
    EXPECT_EQ(LocatorAt(pool, 72), pool.Start() + 0x19ABCDEF0);
    EXPECT_TRUE(LocatorAt(pool, 84).Null());
    EXPECT_EQ(ReadFrom(pool.Start() + 96, 99), "----------------");
}

TEST_F(GoldenFile, RecordsBeginWithAStringWithoutText)
{
    const VUKSimRpm_Pool pool = OpenRead("records").Pool();
    VUKString text = "before";
    VUKSimRpm_BStreamReadLocator stream(pool.Start(), 0, 64);
    stream.Read(text);
    EXPECT_TRUE(text.IsEmpty());
    stream.Read(text); // it took 4 bytes
    EXPECT_STREQ(text.UTF8(), "a");
}

TEST_F(GoldenFile, ReservedBytesAreClearedAndReservedWordsKept)
{
    EXPECT_EQ(DataOf(OpenRead("reserved").Pool()), "abc");
    EXPECT_EQ(mFolder.Read("reserved"), GoldenBytes("reserved"));
    mDocument.Close();

    Open("reserved", VUKSimRpm_Document::Update);
    std::string expected = GoldenBytes("reserved");
    expected.replace(9, 7, std::string(7, '\0'));
    expected.replace(20, 16, "0000000000000000");
    EXPECT_EQ(expected.substr(36, 8), "\x11\x22\x33\x44\x55\x66\x77\x88");
    EXPECT_EQ(mFolder.Read("reserved"), expected);
}

TEST_F(GoldenFile, LengthOfLettersLeadsToTheSecondPool)
{
    const VUKSimRpm_File file = OpenRead("length_of_letters");
    ASSERT_EQ(file.PoolCount(), 2U);
    EXPECT_EQ(DataOf(file.Pool(0)), "1234");
    EXPECT_EQ(DataOf(file.Pool(1)), "5678");
}

TEST_F(GoldenFile, RepeatedEntriesNameOnePool)
{
    const VUKSimRpm_Pool pool = OpenRead("repeated_entries").Pool();
    EXPECT_EQ(pool.DirectorySizeBytes(), 128U);
    const auto directory = pool.Start().Directory();
    const VUKSimRpm_Locator locator = LocatorAt(pool, 0); // stored as entry 3
    EXPECT_STREQ(locator.GetGUID().UTF8(), "b0b1b2b3b4b5b6b7b8b9babbbcbdbebf");
    EXPECT_EQ(directory->InternalizeReference(1), directory->InternalizeReference(3));
    EXPECT_EQ(directory->ExternalizeReference(directory->InternalizeReference(3)), 1);
}

TEST_F(GoldenFile, ResultsReferToTheMeshInWhicheverOrderTheyAreOpened)
{
    const VUKSimRpm_Locator early = LocatorAt(OpenRead("results").Pool(), 0);
    EXPECT_FALSE(early.Null());
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { ReadFrom(early, 5); },
                                                  "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator", 117));
    OpenRead("mesh");
    EXPECT_EQ(ReadFrom(early, 99), "ments");

    mDocument.Close();
    OpenRead("mesh");
    EXPECT_EQ(ReadFrom(LocatorAt(OpenRead("results").Pool(), 0), 99), "ments");
}

TEST_F(GoldenFile, BeyondTheEndIsNotHeldAgainstTheFile)
{
    const VUKSimRpm_File file = OpenRead("beyond_the_end");
    ASSERT_EQ(file.PoolCount(), 1U);
    EXPECT_EQ(file.Pool().Length(), 6442450944U);
    EXPECT_EQ(ReadFrom(file.Pool().Start(), 99), "1234");
}
