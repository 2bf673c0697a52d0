#include "VUKSimRpm_Pool.h"

#include "Bytes.h"
#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_PoolImpl.h"

#include <gtest/gtest.h>

#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

// `a.sim` holds pool `a`, 84 bytes, and the current pool `b`, 118 bytes, which names `a`.
class Pool : public testing::Test
{
protected:
    VUKSimRpm_File Open(VUKSimRpm_Document::AccessMode mode)
    {
        return mDocument.AddFile(mFolder.File("a.sim"), mode);
    }

    const bytes::Pool mStoredA{
        .length = "0000000000000084", .directory = {bytes::Uuid('a')}, .data = "1234"};
    const bytes::Pool mStoredB{.directory = {bytes::Uuid('b'), bytes::Uuid('a')}, .data = "abcdef"};
    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"TEST"};
    const VUKString mName = mFolder.Write("a.sim", bytes::File({mStoredA, mStoredB}));
    VUKSimRpm_File mFile = Open(VUKSimRpm_Document::Update);
    VUKSimRpm_Pool mA = mFile.Pool(0);
    VUKSimRpm_Pool mB = mFile.Pool(1);
};
} // namespace

TEST_F(Pool, IsNullWithoutAPool)
{
    EXPECT_TRUE(VUKSimRpm_Pool({}).Null());
    EXPECT_EQ(VUKSimRpm_Pool({}).HeaderSizeBytes(), 48U);
    EXPECT_FALSE(mA.Null());
}

TEST_F(Pool, IsNullForGoodOnceItsFileIsClosed)
{
    const VUKSimRpm_Pool copy = mB;
    mDocument.Close(mFile);
    EXPECT_TRUE(mA.Null());
    EXPECT_TRUE(mB.Null());
    EXPECT_TRUE(copy.Null());
    EXPECT_EQ(mA.HeaderSizeBytes(), 48U);
    Open(VUKSimRpm_Document::Read);
    EXPECT_TRUE(mA.Null());
}

TEST_F(Pool, IsNullOnceItIsDroppedForBeingEmpty)
{
    mFile.NewPool(true, nullptr);
    const VUKSimRpm_Pool empty = mFile.Pool();
    EXPECT_FALSE(empty.Null());
    mFile.NewPool(true, nullptr);
    EXPECT_TRUE(empty.Null());
    EXPECT_FALSE(mB.Null());
}

TEST_F(Pool, AddsOneWeakReferenceForEachCopyAndNoStrongOne)
{
    const int before = mA.Impl().WeakCount();
    {
        const VUKSimRpm_Pool copy = mA;
        EXPECT_EQ(mA.Impl().WeakCount(), before + 1);
    }
    EXPECT_EQ(mA.Impl().WeakCount(), before);
    EXPECT_EQ(mA.Impl().UseCount(), 1);
}

TEST_F(Pool, HoldsThePoolNoLongerThanACall)
{
    EXPECT_EQ(mB.Length(), 6U);
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { mA.Allocate(1); }, kSource, 163));
    EXPECT_EQ(mA.Impl().UseCount(), 1);
    EXPECT_EQ(mB.Impl().UseCount(), 1);
}

TEST_F(Pool, TellsTheSizesOfAFreshPool)
{
    mFile.NewPool(true, nullptr);
    EXPECT_EQ(mFile.Pool().Length(), 0U);
    EXPECT_EQ(mFile.Pool().DirectorySizeBytes(), 32U);
    EXPECT_EQ(mFile.Pool().HeaderSizeBytes(), 48U);
    EXPECT_EQ(mFile.Pool().Start(), mFile.Pool().End());
}

TEST_F(Pool, TellsSizesThatAddUpToThePool)
{
    EXPECT_EQ(mA.HeaderSizeBytes(), 48U);
    EXPECT_EQ(mA.DirectorySizeBytes(), 32U);
    EXPECT_EQ(mA.Length(), 4U);
    EXPECT_EQ(mB.HeaderSizeBytes(), 48U);
    EXPECT_EQ(mB.DirectorySizeBytes(), 64U);
    EXPECT_EQ(mB.Length(), 6U);
}

TEST_F(Pool, BeginsAndEndsWithItsData)
{
    EXPECT_EQ(ReadFrom(mA.Start(), 4), "1234");
    EXPECT_EQ(mA.End() - mA.Start(), 4U);
    EXPECT_EQ(mB.End() - mB.Start(), 6U);
    EXPECT_FALSE(mA.Start().SamePool(mB.Start()));
}

TEST_F(Pool, GivesItsUuidAsText)
{
    EXPECT_STREQ(mA.GetGUID().UTF8(), "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
    EXPECT_STREQ(mB.GetGUID().UTF8(), "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
}

TEST_F(Pool, IsNotReadOnlyInAWritableFileAlthoughItMayNotGrow)
{
    EXPECT_FALSE(mA.ReadOnly());
    EXPECT_FALSE(mB.ReadOnly());
}

TEST_F(Pool, IsReadOnlyInAReadOnlyFile)
{
    mDocument.Close();
    const VUKSimRpm_File file = Open(VUKSimRpm_Document::Read);
    EXPECT_TRUE(file.Pool(0).ReadOnly());
    EXPECT_TRUE(file.Pool(1).ReadOnly());
}

TEST_F(Pool, GrowsWhenItIsItsFilesCurrentPool)
{
    const VUKSimRpm_Locator end = mB.End();
    EXPECT_EQ(mB.Allocate(4), end);
    EXPECT_EQ(mB.Length(), 10U);
    EXPECT_EQ(mB.End() - end, 4U);
    EXPECT_EQ(mB.Allocate(0), mB.End());
}

TEST_F(Pool, DoesNotGrowOtherwise)
{
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { mA.Allocate(1); }, kSource, 163));
    mFile.NewPool(true, nullptr);
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { mB.Allocate(1); }, kSource, 163));
}

TEST_F(Pool, RefusesToGrowBeyond64Bits)
{
    EXPECT_TRUE(RaisesIOBounds([&] { mB.Allocate(0xFFFFFFFFFFFFFFFF); }, 6, 5, 6, kSource, 168));
    EXPECT_EQ(mB.Length(), 6U);
}
