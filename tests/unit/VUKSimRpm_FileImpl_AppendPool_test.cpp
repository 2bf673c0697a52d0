#include "VUKSimRpm_FileImpl.h"

#include "FileFixture.h"
#include "VUKSimRpm_UUID.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A source document with a file for update of three pools: `x`, 84 bytes, `y`, 116 bytes with a
// reference to `x`, and `z`, the current one, 83 bytes. And a target, a new file whose first pool,
// `a`, is empty.
class AppendPool : public FileFixture
{
protected:
    AppendPool()
    {
        mSource.OpenUpdate(mFolder.Write("source.sim", bytes::File(mStored)));
        VUKSimRpm_UUID::TestForceUUID(mA.c_str());
        mFile.OpenWrite(mFolder.File("a.sim"), true);
    }

    VUKSimRpm_PoolImpl& Source(unsigned int index) { return *mSource.Pool(index).lock(); }

    // Gives the target's pool `a` data: 82 bytes in all.
    void FillTarget()
    {
        mFile.Pool().lock()->Allocate(2);
        mFile.Pool().lock()->Write(0, 2, "AB");
    }

    [[nodiscard]] std::string Target() const { return mFolder.Read("a.sim"); }

    const std::string mA = bytes::Uuid('a');
    const bytes::Pool mFilled{.length = "0000000000000082", .directory = {mA}, .data = "AB"};
    const std::vector<bytes::Pool> mStored{
        {.length = "0000000000000084", .directory = {bytes::Uuid('x')}, .data = "xxxx"},
        {.length = "0000000000000116",
         .reserved1 = 0x11223344,
         .reserved2 = 0x55667788,
         .directory = {bytes::Uuid('y'), bytes::Uuid('x')},
         .data = "yyyy"},
        {.directory = {bytes::Uuid('z')}, .data = "zzz"}};
    VUKSimRpm_DocumentImpl mSourceDocument{"TEST"};
    VUKSimRpm_FileImpl mSource{mSourceDocument};
    VUKSimRpm_FileImpl mFile{mDocument};
};
} // namespace

// The copy

TEST_F(AppendPool, CopiesHeaderDirectoryAndDataBehindThePoolsThere)
{
    FillTarget();
    mFile.AppendPool(Source(1));
    bytes::Pool copy = mStored[1];
    copy.length = "0000000000000000"; // it is the current one now; its reserved words are kept
    EXPECT_EQ(Target(), bytes::File({mFilled, copy}));
}

TEST_F(AppendPool, MakesTheCopyTheCurrentPoolAndLetsItGrow)
{
    FillTarget();
    const auto before = mFile.Pool().lock();
    const auto copy = mFile.AppendPool(Source(0)).lock();
    EXPECT_EQ(mFile.PoolCount(), 2U);
    EXPECT_EQ(mFile.Pool().lock(), copy);
    EXPECT_EQ(copy->Position(), 82U);
    EXPECT_EQ(copy->Length(), 84U);
    EXPECT_FALSE(copy->Immutable());
    EXPECT_TRUE(before->Immutable());
    EXPECT_EQ(copy->Allocate(1), LocatorTo(1, 4));
    EXPECT_EQ(mFile.LogicalEnd(), 167U);
}

TEST_F(AppendPool, PutsTheCopyIntoASlotOfTheTargetsMap)
{
    const auto copy = mFile.AppendPool(Source(1)).lock();
    EXPECT_EQ(Map()->Length(), 3); // `a`, `y` and `x`, which is only referred to
    EXPECT_EQ(copy->OwnSlot(), 1);
    EXPECT_EQ(PoolIn(1), copy);
    EXPECT_FALSE(PoolIn(2));
    EXPECT_EQ(copy->Directory()->InternalizeReference(1), 2);
}

TEST_F(AppendPool, CopiesACurrentPoolWhoseLengthReadsZero)
{
    FillTarget();
    const auto copy = mFile.AppendPool(Source(2)).lock();
    EXPECT_EQ(copy->Length(), 83U);
    EXPECT_EQ(ReadPool(*copy, 0, 99), "zzz");
    EXPECT_EQ(Target(), bytes::File({mFilled, mStored[2]}));
}

TEST_F(AppendPool, CopiesAPoolOfAReadOnlyFile)
{
    VUKSimRpm_DocumentImpl document("TEST");
    VUKSimRpm_FileImpl source(document);
    source.OpenRead(mFolder.File("source.sim"));
    mFile.AppendPool(*source.Pool(0).lock());
    EXPECT_EQ(ReadPool(*mFile.Pool().lock(), 0, 99), "xxxx");
}

TEST_F(AppendPool, LeavesTheSourceAsItWas)
{
    mFile.AppendPool(Source(1));
    EXPECT_EQ(mFolder.Read("source.sim"), bytes::File(mStored));
    EXPECT_EQ(mSource.PoolCount(), 3U);
    EXPECT_TRUE(Source(1).Immutable());
    EXPECT_EQ(mSourceDocument.PoolMap().lock()->Pool(1).lock(), mSource.Pool(1).lock());
}

TEST_F(AppendPool, ReadsTheSourceAsItIsOnDisk)
{
    Source(0).Write(0, 4, "XXXX");
    mFile.AppendPool(Source(0));
    EXPECT_EQ(ReadPool(*mFile.Pool().lock(), 0, 99), "XXXX");
}

TEST_F(AppendPool, AppendsOnePoolAfterTheOther)
{
    mFile.AppendPool(Source(0));
    mFile.AppendPool(Source(1));
    mFile.AppendPool(Source(2));
    EXPECT_EQ(mFile.PoolCount(), 3U);
    EXPECT_EQ(Target(), bytes::File(mStored)); // in place of the empty first pool
}

TEST_F(AppendPool, GivesAnEmptyFileItsFirstPool)
{
    VUKSimRpm_FileImpl file(mDocument);
    file.OpenUpdate(mFolder.Write("empty.sim", ""));
    const auto copy = file.AppendPool(Source(2)).lock();
    EXPECT_EQ(file.PoolCount(), 1U);
    EXPECT_EQ(copy->Position(), 0U);
    EXPECT_EQ(mFolder.Read("empty.sim"), mStored[2].Bytes());
}

// An empty current pool

TEST_F(AppendPool, ReplacesAnEmptyPoolInItsPlace)
{
    const auto before = mFile.Pool();
    const auto copy = mFile.AppendPool(Source(2)).lock();
    EXPECT_TRUE(before.expired());
    EXPECT_FALSE(PoolIn(0));
    EXPECT_EQ(mFile.PoolCount(), 1U);
    EXPECT_EQ(copy->Position(), 0U);
    EXPECT_EQ(Target(), mStored[2].Bytes());
}

TEST_F(AppendPool, ShortensTheFileSoThatNoStaleBytesRemain)
{
    mFile.Write(80, 1000, std::string(1000, 's').c_str()); // behind the empty pool
    mFile.AppendPool(Source(2));
    EXPECT_EQ(mFolder.Size("a.sim"), 83U);
    EXPECT_EQ(mFile.LogicalEnd(), 83U);
}

TEST_F(AppendPool, CutsOffWhatLiesBehindAPoolWithDataToo)
{
    FillTarget();
    mFile.Write(82, 1000, std::string(1000, 's').c_str());
    mFile.AppendPool(Source(2));
    EXPECT_EQ(Target(), bytes::File({mFilled, mStored[2]}));
}

TEST_F(AppendPool, PlacesTheCopyBehindBytesThatWereAllocatedAndNeverWritten)
{
    FillTarget();
    mFile.Pool().lock()->Allocate(3);
    mFile.AppendPool(Source(2));
    bytes::Pool filled = mFilled;
    filled.length = "0000000000000085";
    filled.data = std::string("AB\0\0\0", 5);
    EXPECT_EQ(Target(), bytes::File({filled, mStored[2]}));
}
