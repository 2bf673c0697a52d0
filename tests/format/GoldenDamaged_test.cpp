// Damaged golden files: each is refused in the same way for reading and for update, and stays as it
// is; or it opens, and what is wrong in its data is found when it is read.
#include "Golden.h"

#include "Failures.h"
#include "VUKSimRpm_BStreamReadLocator.h"
#include "VUKSimRpm_Pool.h"

#include <gtest/gtest.h>

#include <string>

namespace {
constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
constexpr char kDirectorySource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";
constexpr char kStreamSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadLocator";

class DamagedGoldenFile : public GoldenFixture
{
protected:
    // Whether both ways to open the file fail as `expected` says and leave it as it is.
    template <class Expected>
    void Fails(const std::string& name, Expected expected)
    {
        EXPECT_TRUE(expected([&] { Open(name, VUKSimRpm_Document::Read); }));
        EXPECT_TRUE(expected([&] { Open(name, VUKSimRpm_Document::Update); }));
        EXPECT_EQ(mFolder.Read(name), GoldenBytes(name));
    }

    template <class Exception>
    void FailsWith(const std::string& name, const char* path, int line)
    {
        Fails(name, [&](auto open) { return Raises<Exception>(open, path, line); });
    }

    void NeedsUpgrade(const std::string& name, unsigned int found)
    {
        Fails(name, [&](auto open) {
            return RaisesNeedUpgrade(open, 6, found, mFolder.Path(name), kPoolSource, 86);
        });
    }
};
} // namespace

TEST_F(DamagedGoldenFile, ShortHeaderIsCorrupt)
{
    FailsWith<VUKSimExcCorruptHeader>("short_header", kPoolSource, 78);
}

TEST_F(DamagedGoldenFile, NoSignatureIsAnotherKindOfFile)
{
    FailsWith<VUKSimExcNotSimFile>("no_signature", kPoolSource, 81);
}

TEST_F(DamagedGoldenFile, Version05IsTooOld)
{
    NeedsUpgrade("version_05", 5);
    EXPECT_EQ(VUKSimRpm_Document::GetFileType(mFolder.File("version_05")), 1);
    EXPECT_TRUE(VUKSimRpm_Document::UpgradeRequired(mFolder.File("version_05")));
}

TEST_F(DamagedGoldenFile, Version07IsTooNew)
{
    NeedsUpgrade("version_07", 7);
    EXPECT_EQ(VUKSimRpm_Document::GetFileType(mFolder.File("version_07")), 0);
    EXPECT_TRUE(VUKSimRpm_Document::DowngradeRequired(mFolder.File("version_07")));
}

TEST_F(DamagedGoldenFile, VersionFfIsBelowZero)
{
    NeedsUpgrade("version_ff", 4294967295);
    EXPECT_EQ(VUKSimRpm_Document::GetFileType(mFolder.File("version_ff")), 0);
    EXPECT_TRUE(VUKSimRpm_Document::UpgradeRequired(mFolder.File("version_ff")));
}

TEST_F(DamagedGoldenFile, OtherUserIsRefused)
{
    FailsWith<VUKSimExcUserSigMismatch>("other_user", kPoolSource, 89);
}

TEST_F(DamagedGoldenFile, ShortDirectoryIsCorrupt)
{
    FailsWith<VUKSimExcCorruptDirectory>("short_directory", kPoolSource, 106);
}

TEST_F(DamagedGoldenFile, HugeCountIsACorruptDirectory)
{
    FailsWith<VUKSimExcCorruptDirectory>("huge_count", kPoolSource, 106);
}

TEST_F(DamagedGoldenFile, WrappingCountIsACorruptDirectory)
{
    FailsWith<VUKSimExcCorruptDirectory>("wrapping_count", kPoolSource, 106);
}

TEST_F(DamagedGoldenFile, OverlappingDirectoriesAreCorrupt)
{
    FailsWith<VUKSimExcCorruptDirectory>("overlapping", kPoolSource, 106);
}

TEST_F(DamagedGoldenFile, NoDirectoryLeavesThePoolWithoutASlot)
{
    Fails("no_directory", [](auto open) { return RaisesRange(open, 0, 0); });
}

TEST_F(DamagedGoldenFile, SamePoolTwiceIsRefused)
{
    FailsWith<VUKSimExcPoolAlreadyInDoc>("same_pool_twice", kDirectorySource, 75);
}

TEST_F(DamagedGoldenFile, LeadsBackToAPoolThatIsOpen)
{
    FailsWith<VUKSimExcPoolAlreadyInDoc>("leads_back", kDirectorySource, 75);
}

TEST_F(DamagedGoldenFile, WrongLengthMissesTheNextSignature)
{
    FailsWith<VUKSimExcNotSimFile>("wrong_length", kPoolSource, 81);
}

TEST_F(DamagedGoldenFile, BadReferenceIsFoundWhenTheLocatorIsRead)
{
    const VUKSimRpm_Pool pool = OpenRead("bad_reference").Pool();
    const char* text = "slotInDirectory < mMapSlotList.Length()";
    for (const unsigned long long offset : {0ULL, 12ULL}) {
        VUKSimRpm_BStreamReadLocator stream(pool.Start() + offset, 0, 64);
        VUKSimRpm_Locator locator;
        EXPECT_TRUE(RaisesValidation([&] { locator.InternalizeImpl(stream); }, text,
                                     kDirectorySource, 130));
        EXPECT_TRUE(locator.Null());
    }
    VUKSimRpm_BStreamReadLocator stream(pool.Start() + 24, 0, 64);
    VUKSimRpm_Locator locator;
    locator.InternalizeImpl(stream);
    EXPECT_EQ(locator, pool.Start());
}

TEST_F(DamagedGoldenFile, EndlessStringIsFoundWhenItIsRead)
{
    const VUKSimRpm_Pool pool = OpenRead("endless_string").Pool();
    VUKString text = "before";
    VUKSimRpm_BStreamReadLocator unlimited(pool.Start(), 0, 64);
    EXPECT_TRUE(RaisesRequestTooBig([&] { unlimited.Read(text); }, 1048576, 4, kStreamSource, 62));
    VUKSimRpm_BStreamReadLocator limited(pool.Start(), 8, 64);
    EXPECT_TRUE(RaisesShortBuffer([&] { limited.Read(text); }, 1048580, 8, kStreamSource, 75));
    EXPECT_STREQ(text.UTF8(), "before");
}
