#include "VUKSimRpm_File.h"

#include "Bytes.h"
#include "Failures.h"
#include "OnePool.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_FileImpl.h"

#include <gtest/gtest.h>

#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_File";
constexpr char kFileSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";

// `a.sim` holds pool `a`, 84 bytes, and the current pool `b`, 86 bytes; it is open for update.
class File : public testing::Test
{
protected:
    VUKSimRpm_File Open(VUKSimRpm_Document::AccessMode mode)
    {
        return mDocument.AddFile(mFolder.File("a.sim"), mode);
    }

    const bytes::Pool mStoredA{
        .length = "0000000000000084", .directory = {bytes::Uuid('a')}, .data = "1234"};
    const bytes::Pool mStoredB{.directory = {bytes::Uuid('b')}, .data = "abcdef"};
    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"TEST"};
    const VUKString mName = mFolder.Write("a.sim", bytes::File({mStoredA, mStoredB}));
    VUKSimRpm_File mFile = Open(VUKSimRpm_Document::Update);
};
} // namespace

// What it tells

TEST_F(File, IsNullWithoutAFile)
{
    EXPECT_TRUE(VUKSimRpm_File({}).Null());
    EXPECT_FALSE(mFile.Null());
}

TEST_F(File, IsNullOnceTheDocumentClosedTheFile)
{
    const VUKSimRpm_File copy = mFile;
    const VUKSimRpm_File again = Open(VUKSimRpm_Document::Read);
    const VUKSimRpm_Pool pool = mFile.Pool(0);
    mDocument.Close(mFile);
    EXPECT_TRUE(mFile.Null());
    EXPECT_TRUE(copy.Null());
    EXPECT_TRUE(again.Null());
    EXPECT_TRUE(pool.Null()); // the file is destroyed at once, with its pools
    Open(VUKSimRpm_Document::Read);
    EXPECT_TRUE(mFile.Null()); // for good
}

TEST_F(File, IsNullOnceTheWholeDocumentIsClosed)
{
    mDocument.Close();
    EXPECT_TRUE(mFile.Null());
}

TEST_F(File, LivesAsLongAsAnybodyHoldsTheFile)
{
    auto held = mFile.Impl().lock();
    mDocument.Close(mFile);
    EXPECT_FALSE(mFile.Null());
    EXPECT_EQ(mFile.PoolCount(), 2U);
    held.reset();
    EXPECT_TRUE(mFile.Null());
}

TEST_F(File, AddsOneWeakReferenceForEachCopy)
{
    const int before = mFile.Impl().WeakCount();
    {
        const VUKSimRpm_File copy = mFile;
        EXPECT_EQ(mFile.Impl().WeakCount(), before + 1);
    }
    EXPECT_EQ(mFile.Impl().WeakCount(), before);
    EXPECT_EQ(mFile.Impl().UseCount(), 1);
}

TEST_F(File, HasTheNameItWasOpenedWith)
{
    EXPECT_STREQ(mFile.FileName().UTF8(), mFolder.Path("a.sim").c_str());
}

TEST_F(File, IsReadOnlyWhenAddedForReading)
{
    EXPECT_FALSE(mFile.ReadOnly());
    mDocument.Close();
    EXPECT_TRUE(Open(VUKSimRpm_Document::Read).ReadOnly());
}

TEST_F(File, CountsItsPools)
{
    EXPECT_EQ(mFile.PoolCount(), 2U);
    mFile.NewPool(true, nullptr);
    EXPECT_EQ(mFile.PoolCount(), 3U);
}

TEST_F(File, HasOnePoolWhenJustCreated)
{
    const VUKSimRpm_File file =
        mDocument.AddFile(mFolder.File("new.sim"), VUKSimRpm_Document::Write);
    EXPECT_EQ(file.PoolCount(), 1U);
}

// Its pools

TEST_F(File, GivesPoolsByIndex)
{
    EXPECT_STREQ(mFile.Pool(0).GetGUID().UTF8(), "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
    EXPECT_STREQ(mFile.Pool(1).GetGUID().UTF8(), "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
}

TEST_F(File, RefusesAnIndexAtThePoolCount)
{
    EXPECT_TRUE(RaisesValidation([&] { (void)mFile.Pool(mFile.PoolCount()); },
                                 "index < mPools.size()", kFileSource, 277));
}

TEST_F(File, GivesTheCurrentPool)
{
    EXPECT_STREQ(mFile.Pool().GetGUID().UTF8(), "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
}

TEST_F(File, HasNoCurrentPoolWithoutPools)
{
    VUKSimRpm_File file =
        mDocument.AddFile(mFolder.Write("empty.sim", ""), VUKSimRpm_Document::Update);
    const char* text = "mCurrentPoolIndex >= 0";
    EXPECT_TRUE(RaisesAssertion([&] { (void)file.Pool(); }, text, kFileSource, 270));
    EXPECT_TRUE(RaisesAssertion([&] { (void)file.Start(); }, text, kFileSource, 270));
    EXPECT_TRUE(RaisesAssertion([&] { (void)file.End(); }, text, kFileSource, 270));
    EXPECT_TRUE(RaisesAssertion([&] { file.Allocate(1); }, text, kFileSource, 270));
    file.NewPool(true, nullptr);
    EXPECT_EQ(file.Pool().Length(), 0U);
}

TEST_F(File, BeginsAndEndsWithItsCurrentPoolsData)
{
    EXPECT_EQ(mFile.Start(), mFile.Pool(1).Start());
    EXPECT_EQ(mFile.End(), mFile.Pool(1).End());
    EXPECT_EQ(mFile.End() - mFile.Start(), 6U);
    EXPECT_EQ(ReadFrom(mFile.Start(), 6), "abcdef");
}

TEST_F(File, AllocatesInItsCurrentPool)
{
    const VUKSimRpm_Locator end = mFile.End();
    EXPECT_EQ(mFile.Allocate(4), end);
    EXPECT_EQ(mFile.Pool(1).Length(), 10U);
    EXPECT_EQ(mFile.Pool(0).Length(), 4U);
}

TEST_F(File, KeepsBytesThatAreAllocatedAndNotWrittenOffTheDisk)
{
    VUKSimRpm_File file = mDocument.CreateGenerated(mFolder.File("fresh"), "", true);
    file.Allocate(5);
    file.Flush();
    const std::string name = std::string(file.FileName().UTF8()).substr(mFolder.Path("").size());
    EXPECT_EQ(mFolder.Size(name), 80U);
}

TEST_F(File, AllocatesNothingWhenReadOnly)
{
    mDocument.Close();
    VUKSimRpm_File file = Open(VUKSimRpm_Document::Read);
    EXPECT_TRUE(Raises<VUKSimExcImmutablePool>([&] { file.Allocate(1); },
                                               "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl", 163));
    EXPECT_EQ(file.Pool().Length(), 6U);
}

TEST_F(File, AddsANewPool)
{
    mFile.NewPool(false, "0123456789abcdef0123456789abcdef");
    EXPECT_STREQ(mFile.Pool().GetGUID().UTF8(), "0123456789abcdef0123456789abcdef");
    EXPECT_EQ(mFile.Pool().DirectorySizeBytes(), 96U); // itself, `a` and `b`
    mFile.Allocate(1);
    mFile.NewPool(true, nullptr);
    EXPECT_EQ(mFile.Pool().DirectorySizeBytes(), 32U);
}

TEST_F(File, AddsNoPoolWhenReadOnly)
{
    mDocument.Close();
    VUKSimRpm_File file = Open(VUKSimRpm_Document::Read);
    EXPECT_TRUE(
        Raises<VUKSimExcNewPoolReadOnly>([&] { file.NewPool(true, nullptr); }, kFileSource, 101));
}

TEST_F(File, AppendsAPoolOfAnotherDocument)
{
    OnePool other("some data");
    mFile.AppendPool(other.Pool());
    EXPECT_EQ(mFile.PoolCount(), 3U);
    EXPECT_STREQ(mFile.Pool().GetGUID().UTF8(), other.Pool().GetGUID().UTF8());
    EXPECT_EQ(ReadFrom(mFile.Start(), 99), "some data");
    EXPECT_FALSE(other.Pool().Null());
}

TEST_F(File, AppendsNoPoolThatItHas)
{
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>([&] { mFile.AppendPool(mFile.Pool(0)); },
                                                  kFileSource, 153));
}

TEST_F(File, AppendsNoPoolThatIsGone)
{
    OnePool other("some data");
    const VUKSimRpm_Pool pool = other.Pool();
    other.CloseFile();
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { mFile.AppendPool(pool); }, kSource, 97));
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { mFile.AppendPool(VUKSimRpm_Pool({})); },
                                                  kSource, 97));
    EXPECT_EQ(mFile.PoolCount(), 2U);
}

TEST_F(File, FlushesItsCurrentPoolsHeader)
{
    bytes::Pool spoiled = mStoredB;
    spoiled.length = "0000000000000086";
    mFolder.Write("a.sim", bytes::File({mStoredA, spoiled}));
    mFile.Flush();
    EXPECT_EQ(mFolder.Read("a.sim"), bytes::File({mStoredA, mStoredB}));
}

// A file that is gone

TEST_F(File, SaysThatItsFileIsGoneInEveryMember)
{
    mDocument.Close(mFile);
    OnePool other;
    const auto gone = [&](auto call) { return Raises<VUKSimExcCantGetFile>(call, kSource, 20); };
    EXPECT_TRUE(gone([&] { (void)mFile.FileName(); }));
    EXPECT_TRUE(gone([&] { (void)mFile.ReadOnly(); }));
    EXPECT_TRUE(gone([&] { (void)mFile.PoolCount(); }));
    EXPECT_TRUE(gone([&] { (void)mFile.Pool(0); }));
    EXPECT_TRUE(gone([&] { (void)mFile.Pool(); }));
    EXPECT_TRUE(gone([&] { (void)mFile.Start(); }));
    EXPECT_TRUE(gone([&] { (void)mFile.End(); }));
    EXPECT_TRUE(gone([&] { mFile.Allocate(1); }));
    EXPECT_TRUE(gone([&] { mFile.NewPool(true, nullptr); }));
    EXPECT_TRUE(gone([&] { mFile.AppendPool(other.Pool()); }));
    EXPECT_TRUE(gone([&] { mFile.Flush(); }));
}
