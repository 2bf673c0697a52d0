#include "VUKSimRpm_DocumentImpl.h"

#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl";

// The files `a.sim` and `b.sim` are on disk, with one pool each.
class DocumentImpl : public FileFixture
{
protected:
    DocumentImpl()
    {
        mFolder.Write("a.sim", mStoredA.Bytes());
        mFolder.Write("b.sim", mStoredB.Bytes());
    }

    VUKBasWeakPtr<VUKSimRpm_FileImpl> Update(const std::string& name)
    {
        return mDocument.AddFile(mFolder.File(name), VUKSimRpm_Document::Update);
    }

    // Writes over the current pool's length in the file, which a flush will put right.
    static void Spoil(const VUKBasWeakPtr<VUKSimRpm_FileImpl>& file)
    {
        file.lock()->Write(20, 16, "################");
    }

    [[nodiscard]] bool Spoiled(const std::string& name) const
    {
        return mFolder.Read(name).substr(20, 16) == "################";
    }

    const bytes::Pool mStoredA{.directory = {bytes::Uuid('a')}, .data = "aaaa"};
    const bytes::Pool mStoredB{.directory = {bytes::Uuid('b')}, .data = "bbbb"};
};

bool HasSignature(const VUKSimRpm_DocumentImpl& document, const std::string& four)
{
    return std::memcmp(&document.Sig(), four.data(), 4) == 0;
}
} // namespace

// Birth

TEST_F(DocumentImpl, TakesFourCharactersOfItsSignatureAsTheyLieInMemory)
{
    EXPECT_TRUE(HasSignature(VUKSimRpm_DocumentImpl("FEM4"), "FEM4"));
    EXPECT_TRUE(HasSignature(VUKSimRpm_DocumentImpl("FEM4 and more"), "FEM4"));
    EXPECT_TRUE(HasSignature(VUKSimRpm_DocumentImpl("\xFF\x80\x01z"), "\xFF\x80\x01z"));
}

TEST_F(DocumentImpl, FillsAShortSignatureWithZeros)
{
    EXPECT_TRUE(HasSignature(VUKSimRpm_DocumentImpl("ab\0xyz"), std::string("ab\0\0", 4)));
    EXPECT_TRUE(HasSignature(VUKSimRpm_DocumentImpl(""), std::string(4, '\0')));
    EXPECT_TRUE(HasSignature(VUKSimRpm_DocumentImpl(nullptr), std::string(4, '\0')));
}

TEST_F(DocumentImpl, StartsWithAnEmptyPoolMap)
{
    EXPECT_EQ(Map()->Length(), 0);
    EXPECT_EQ(Map().UseCount(), 2); // the document's and the one looking
}

TEST_F(DocumentImpl, MakesDirectoriesOnItsPoolMapThatNameEverySlot)
{
    Update("a.sim");
    Update("b.sim");
    const auto directory = mDocument.NewDirectory();
    EXPECT_EQ(directory->Map().lock(), Map());
    EXPECT_EQ(directory->Length(), 3);
    EXPECT_EQ(directory->OwnSlot(), 2);
    EXPECT_EQ(directory->InternalizeReference(1), 0);
    EXPECT_EQ(directory->InternalizeReference(2), 1);
    EXPECT_EQ(Map()->Length(), 3);
}

// Created files

TEST_F(DocumentImpl, HoldsATemporaryFileUntilItIsClosed)
{
    const auto file = mDocument.CreateTemporary(mFolder.File("scratch"), true);
    ASSERT_FALSE(file.expired());
    EXPECT_EQ(file.lock()->PoolCount(), 1U);
    EXPECT_EQ(mFolder.Count(), 3);
    mDocument.Close(file);
    EXPECT_TRUE(file.expired());
    EXPECT_EQ(mFolder.Count(), 2);
}

TEST_F(DocumentImpl, KeepsAGeneratedFileOnDisk)
{
    const auto file = mDocument.CreateGenerated(mFolder.File("run"), ".sim", true);
    ASSERT_FALSE(file.expired());
    mDocument.Close(file);
    EXPECT_EQ(mFolder.Count(), 3);
}

TEST_F(DocumentImpl, CreatesAnotherFileEachTime)
{
    const auto first = mDocument.CreateGenerated(mFolder.File("run"), ".sim", true).lock();
    const auto second = mDocument.CreateGenerated(mFolder.File("run"), ".sim", true).lock();
    EXPECT_NE(first, second);
    EXPECT_STRNE(first->FileName().UTF8(), second->FileName().UTF8());
}

TEST_F(DocumentImpl, HandsTheFlagToTheFirstPoolOfACreatedFile)
{
    Update("a.sim");
    const auto own = mDocument.CreateTemporary(mFolder.File("own"), true).lock();
    EXPECT_EQ(own->Pool().lock()->HeaderSize(), 80U);
    const auto all = mDocument.CreateTemporary(mFolder.File("all"), false).lock();
    EXPECT_EQ(all->Pool().lock()->HeaderSize(), 144U);
    const auto generated = mDocument.CreateGenerated(mFolder.File("all"), "", false).lock();
    EXPECT_EQ(generated->Pool().lock()->HeaderSize(), 176U);
}

TEST_F(DocumentImpl, AddsNoFileThatItCouldNotCreate)
{
    const VUKString name = mFolder.File("none/scratch");
    EXPECT_TRUE(RaisesFileError([&] { mDocument.CreateTemporary(name, true); }, "create", ENOENT));
    EXPECT_TRUE(
        RaisesFileError([&] { mDocument.CreateGenerated(name, ".sim", true); }, "create", ENOENT));
    const ScriptedSystemCalls calls;
    mDocument.Flush();
    EXPECT_TRUE(calls.Calls().empty());
}

TEST_F(DocumentImpl, AddsNoFileWhoseFirstPoolItCouldNotWrite)
{
    const VUKString name = mFolder.File("new");
    {
        ScriptedSystemCalls calls;
        calls.FailAlways(SystemCall::Pwrite, ENOSPC);
        EXPECT_TRUE(
            RaisesFileError([&] { mDocument.CreateTemporary(name, true); }, "write", ENOSPC));
        EXPECT_TRUE(RaisesFileError([&] { mDocument.CreateGenerated(name, ".sim", true); }, "write",
                                    ENOSPC));
    }
    const ScriptedSystemCalls calls;
    mDocument.Flush();
    EXPECT_TRUE(calls.Calls().empty());
    EXPECT_EQ(mFolder.Count(), 3); // `a`, `b` and the generated one, which is kept though empty
    EXPECT_EQ(Map()->Length(), 2); // the slots were made before and stay
    EXPECT_FALSE(PoolIn(0));
    EXPECT_FALSE(PoolIn(1));
}

// Flush

TEST_F(DocumentImpl, FlushesEveryFileInTheOrderTheyWereAdded)
{
    const auto b = Update("b.sim");
    const auto a = Update("a.sim");
    Spoil(a);
    Spoil(b);
    ScriptedSystemCalls calls;
    calls.Script(SystemCall::Pwrite, {Passes(), Fails(ENOSPC)});
    EXPECT_TRUE(RaisesFileError([&] { mDocument.Flush(); }, "write", ENOSPC));
    EXPECT_FALSE(Spoiled("b.sim")); // the first
    EXPECT_TRUE(Spoiled("a.sim"));
    mDocument.Flush();
    EXPECT_FALSE(Spoiled("a.sim"));
}

TEST_F(DocumentImpl, FlushesNoFileThatIsClosed)
{
    const auto a = Update("a.sim");
    Update("b.sim");
    mDocument.Close(a);
    const ScriptedSystemCalls calls;
    mDocument.Flush();
    EXPECT_EQ(calls.Count(SystemCall::Fdatasync), 1);
}

// Close of one file

TEST_F(DocumentImpl, FlushesAndDestroysTheFileThatItCloses)
{
    const auto a = Update("a.sim");
    const auto b = Update("b.sim");
    const auto pool = a.lock()->Pool();
    Spoil(a);
    Spoil(b);
    mDocument.Close(a);
    EXPECT_TRUE(a.expired());
    EXPECT_TRUE(pool.expired());
    EXPECT_FALSE(b.expired());
    EXPECT_FALSE(Spoiled("a.sim"));
    EXPECT_TRUE(Spoiled("b.sim"));
}

TEST_F(DocumentImpl, KeepsTheMapAndItsSlotsWhenItClosesAFile)
{
    const auto map = mDocument.PoolMap();
    mDocument.Close(Update("a.sim"));
    EXPECT_EQ(Map(), map.lock());
    EXPECT_EQ(Map()->Length(), 1);
    EXPECT_FALSE(PoolIn(0));
    Update("a.sim");
    EXPECT_EQ(Map()->Length(), 1);
    EXPECT_TRUE(PoolIn(0));
}

TEST_F(DocumentImpl, RefusesToCloseAFileTwice)
{
    const auto a = Update("a.sim");
    const auto held = a.lock(); // the object lives on, but not in the document
    mDocument.Close(a);
    EXPECT_TRUE(Raises<VUKSimExcCantGetFile>([&] { mDocument.Close(a); }, kSource, 138));
}

TEST_F(DocumentImpl, RefusesToCloseAFileThatIsGone)
{
    const auto a = Update("a.sim");
    mDocument.Close(a);
    EXPECT_TRUE(a.expired()); // and the document's entry for it is null, too
    EXPECT_TRUE(Raises<VUKSimExcCantGetFile>([&] { mDocument.Close(a); }, kSource, 138));
    EXPECT_TRUE(Raises<VUKSimExcCantGetFile>([&] { mDocument.Close({}); }, kSource, 138));
}

TEST_F(DocumentImpl, RefusesToCloseAFileOfAnotherDocument)
{
    VUKSimRpm_DocumentImpl other("TEST");
    const auto file = other.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Read);
    const auto own = Update("a.sim");
    EXPECT_TRUE(Raises<VUKSimExcCantGetFile>([&] { mDocument.Close(file); }, kSource, 138));
    EXPECT_FALSE(file.expired());
    EXPECT_FALSE(own.expired());
}

TEST_F(DocumentImpl, KeepsAFileThatItCannotFlush)
{
    const auto a = Update("a.sim");
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Pwrite, {Fails(ENOSPC)});
        EXPECT_TRUE(RaisesFileError([&] { mDocument.Close(a); }, "write", ENOSPC));
    }
    ASSERT_FALSE(a.expired());
    EXPECT_TRUE(PoolIn(0));
    mDocument.Close(a);
    EXPECT_TRUE(a.expired());
}

TEST_F(DocumentImpl, ReleasesAFileThatTheSystemFailedToCloseWhenItIsClosedAgain)
{
    const auto a = Update("a.sim");
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Close, {Fails(EIO)});
        EXPECT_TRUE(RaisesFileError([&] { mDocument.Close(a); }, "close", EIO));
    }
    EXPECT_FALSE(a.expired());
    mDocument.Close(a);
    EXPECT_TRUE(a.expired());
}

// Close of all

TEST_F(DocumentImpl, FlushesAndDestroysAllItsFiles)
{
    const auto a = Update("a.sim");
    const auto b = Update("b.sim");
    Spoil(a);
    Spoil(b);
    mDocument.Close();
    EXPECT_TRUE(a.expired());
    EXPECT_TRUE(b.expired());
    EXPECT_FALSE(Spoiled("a.sim"));
    EXPECT_FALSE(Spoiled("b.sim"));
}

TEST_F(DocumentImpl, ClosesWithOneFileAlreadyClosed)
{
    const auto a = Update("a.sim");
    const auto b = Update("b.sim");
    mDocument.Close(a);
    mDocument.Close();
    EXPECT_TRUE(b.expired());
}

TEST_F(DocumentImpl, ReplacesItsMapWhenItCloses)
{
    Update("a.sim");
    const auto map = mDocument.PoolMap();
    mDocument.Close();
    EXPECT_TRUE(map.expired());
    EXPECT_EQ(Map()->Length(), 0);
}

TEST_F(DocumentImpl, TakesNewFilesAfterItClosed)
{
    Update("a.sim");
    mDocument.Close();
    const auto again = Update("a.sim");
    EXPECT_EQ(again.lock()->PoolCount(), 1U);
    EXPECT_EQ(Map()->Length(), 1);
    mDocument.Close();
    mDocument.Close(); // with nothing to do
}

TEST_F(DocumentImpl, KeepsTheFilesFromTheOneOnThatItCannotFlush)
{
    const auto a = Update("a.sim");
    const auto b = Update("b.sim");
    const auto map = mDocument.PoolMap();
    {
        ScriptedSystemCalls calls;
        calls.Script(SystemCall::Pwrite, {Passes(), Fails(ENOSPC)});
        EXPECT_TRUE(RaisesFileError([&] { mDocument.Close(); }, "write", ENOSPC));
    }
    EXPECT_TRUE(a.expired());
    EXPECT_FALSE(b.expired());
    EXPECT_FALSE(map.expired());
    mDocument.Close();
    EXPECT_TRUE(b.expired());
}

// Death

TEST_F(DocumentImpl, WritesNothingWhenItDies)
{
    {
        VUKSimRpm_DocumentImpl document("TEST");
        const auto file = document.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Update);
        file.lock()->Pool().lock()->Allocate(100);
        Spoil(file);
    }
    EXPECT_TRUE(Spoiled("a.sim"));
    EXPECT_EQ(mFolder.Size("a.sim"), 84U);
}

TEST_F(DocumentImpl, ReleasesItsFilesWhenItDies)
{
    VUKBasWeakPtr<VUKSimRpm_FileImpl> file;
    VUKBasWeakPtr<VUKSimRpm_PoolMap> map;
    {
        VUKSimRpm_DocumentImpl document("TEST");
        file = document.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Update);
        map = document.PoolMap();
    }
    EXPECT_TRUE(file.expired());
    EXPECT_TRUE(map.expired());
}
