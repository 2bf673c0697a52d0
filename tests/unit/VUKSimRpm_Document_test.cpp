#include "VUKSimRpm_Document.h"

#include "Bytes.h"
#include "Failures.h"
#include "LimitedMemory.h"
#include "OnePool.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Document";

// The file `a.sim` is on disk with one pool of five bytes, `hello`.
class Document : public testing::Test
{
protected:
    Document() { mFolder.Write("a.sim", mStored.Bytes()); }

    VUKSimRpm_File Add(VUKSimRpm_Document& document, VUKSimRpm_Document::AccessMode mode) const
    {
        return document.AddFile(mFolder.File("a.sim"), mode);
    }

    const bytes::Pool mStored{.directory = {bytes::Uuid('a')}, .data = "hello"};
    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"TEST"};
};
} // namespace

// Moving

TEST_F(Document, IsMovableAndNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible_v<VUKSimRpm_Document>);
    EXPECT_FALSE(std::is_copy_assignable_v<VUKSimRpm_Document>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<VUKSimRpm_Document>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<VUKSimRpm_Document>);
}

TEST_F(Document, TakesItsFilesAlongWhenItMoves)
{
    const VUKSimRpm_File file = Add(mDocument, VUKSimRpm_Document::Read);
    const VUKSimRpm_Locator start = file.Start();
    VUKSimRpm_Document moved(std::move(mDocument));
    EXPECT_FALSE(file.Null());
    EXPECT_EQ(ReadFrom(start, 5), "hello");
    EXPECT_EQ(Add(moved, VUKSimRpm_Document::Read).PoolCount(), 1U);
    moved.Close(file);
    EXPECT_TRUE(file.Null());
}

TEST_F(Document, ReleasesItsFilesWithoutWritingWhenAnotherIsMovedIntoIt)
{
    VUKSimRpm_File file = Add(mDocument, VUKSimRpm_Document::Update);
    file.Allocate(100);
    VUKSimRpm_Document other("TEST");
    mDocument = std::move(other);
    EXPECT_TRUE(file.Null());
    EXPECT_EQ(mFolder.Size("a.sim"), 85U);
    EXPECT_EQ(Add(mDocument, VUKSimRpm_Document::Read).PoolCount(), 1U);
}

TEST_F(Document, KeepsItsFilesWhenMovedIntoItself)
{
    const VUKSimRpm_File file = Add(mDocument, VUKSimRpm_Document::Read);
    VUKSimRpm_Document& same = mDocument;
    mDocument = std::move(same);
    EXPECT_FALSE(file.Null());
}

TEST_F(Document, ChecksForAnImplementationInEveryMember)
{
    VUKSimRpm_Document taken(std::move(mDocument));
    const VUKSimRpm_File file = Add(taken, VUKSimRpm_Document::Read);
    const VUKString name = mFolder.File("new.sim");

    EXPECT_TRUE(Raises<VUKSimExcValidationFailure>(
        [&] { mDocument.AddFile(name, VUKSimRpm_Document::Write); }, kSource, 24));
    EXPECT_TRUE(Raises<VUKSimExcValidationFailure>(
        [&] { mDocument.CreateGenerated(name, ".sim", true); }, kSource, 33));
    EXPECT_TRUE(Raises<VUKSimExcValidationFailure>([&] { mDocument.CreateTemporary(name, true); },
                                                   kSource, 41));
    EXPECT_TRUE(Raises<VUKSimExcValidationFailure>([&] { mDocument.Flush(); }, kSource, 49));
    EXPECT_TRUE(Raises<VUKSimExcValidationFailure>([&] { mDocument.Close(); }, kSource, 58));
    EXPECT_TRUE(Raises<VUKSimExcValidationFailure>([&] { mDocument.Close(file); }, kSource, 67));
    EXPECT_EQ(mFolder.Count(), 1);
    EXPECT_FALSE(file.Null());
}

TEST_F(Document, ServesAgainWhenAnotherIsMovedIntoIt)
{
    VUKSimRpm_Document taken(std::move(mDocument));
    mDocument = VUKSimRpm_Document("TEST");
    EXPECT_EQ(Add(mDocument, VUKSimRpm_Document::Read).PoolCount(), 1U);
}

TEST_F(Document, IsNotMadeWithoutMemory)
{
    EXPECT_TRUE(RaisesBadAlloc([] {
        const LimitedMemory none(0);
        const VUKSimRpm_Document document("TEST");
    }));
}

// What it forwards

TEST_F(Document, MarksItsPoolsWithTheFirstFourCharacters)
{
    VUKSimRpm_Document document("FEM4 of 2026");
    document.AddFile(mFolder.File("new.sim"), VUKSimRpm_Document::Write);
    EXPECT_EQ(mFolder.Read("new.sim").substr(16, 4), "FEM4");
    EXPECT_TRUE(Raises<VUKSimExcUserSigMismatch>([&] { Add(document, VUKSimRpm_Document::Read); },
                                                 "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl", 89));
}

TEST_F(Document, AddsFilesInEachMode)
{
    EXPECT_TRUE(Add(mDocument, VUKSimRpm_Document::Read).ReadOnly());
    mDocument.Close();
    EXPECT_FALSE(Add(mDocument, VUKSimRpm_Document::Update).ReadOnly());
    mDocument.Close();
    EXPECT_EQ(Add(mDocument, VUKSimRpm_Document::Write).Pool().Length(), 0U);
}

TEST_F(Document, CreatesTemporaryFiles)
{
    const VUKSimRpm_File file = mDocument.CreateTemporary(mFolder.File("scratch"), true);
    EXPECT_EQ(file.Pool().DirectorySizeBytes(), 32U);
    EXPECT_EQ(mFolder.Count(), 2);
    mDocument.Close();
    EXPECT_EQ(mFolder.Count(), 1);
}

TEST_F(Document, CreatesGeneratedFiles)
{
    const VUKSimRpm_File file = mDocument.CreateGenerated(mFolder.File("run"), ".sim", true);
    EXPECT_TRUE(std::string(file.FileName().UTF8()).ends_with(".sim"));
    mDocument.Close();
    EXPECT_EQ(mFolder.Count(), 2);
}

TEST_F(Document, FlushesItsFiles)
{
    VUKSimRpm_File file = Add(mDocument, VUKSimRpm_Document::Update);
    mFolder.Write("a.sim", bytes::Pool({.length = "0000000000000099",
                                        .directory = {bytes::Uuid('a')},
                                        .data = "hello"})
                               .Bytes());
    mDocument.Flush();
    EXPECT_EQ(mFolder.Read("a.sim"), mStored.Bytes());
    EXPECT_FALSE(file.Null());
}

TEST_F(Document, RefusesToCloseAFileTwice)
{
    const VUKSimRpm_File file = Add(mDocument, VUKSimRpm_Document::Read);
    mDocument.Close(file);
    EXPECT_TRUE(Raises<VUKSimExcCantGetFile>([&] { mDocument.Close(file); },
                                             "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl", 138));
}

TEST_F(Document, AnswersTheVersionQueriesWithoutAnImplementation)
{
    const VUKString name = mFolder.Write("b.sim", bytes::Pool{.version = 7}.Header());
    EXPECT_EQ(VUKSimRpm_Document::GetFileType(name), 0);
    EXPECT_FALSE(VUKSimRpm_Document::UpgradeRequired(name));
    EXPECT_TRUE(VUKSimRpm_Document::DowngradeRequired(name));
    EXPECT_TRUE(VUKSimRpm_Document::BinaryUpgradeRequired(name));
    EXPECT_EQ(VUKSimRpm_Document::GetFileType(mFolder.File("a.sim")), 1);
}

TEST_F(Document, AnswersTheVersionQueriesForAFileThatItHasOpen)
{
    Add(mDocument, VUKSimRpm_Document::Update);
    EXPECT_EQ(VUKSimRpm_Document::GetFileType(mFolder.File("a.sim")), 1);
    EXPECT_FALSE(VUKSimRpm_Document::UpgradeRequired(mFolder.File("a.sim")));
}

TEST_F(Document, WritesNothingWhenItDies)
{
    {
        VUKSimRpm_Document document("TEST");
        VUKSimRpm_File file = document.AddFile(mFolder.File("a.sim"), VUKSimRpm_Document::Update);
        file.Allocate(100);
        mFolder.Write("a.sim", "spoiled");
    }
    EXPECT_EQ(mFolder.Read("a.sim"), "spoiled");
}

// Locators

TEST_F(Document, LetsLocatorsRestWhileTheirFileIsClosed)
{
    const VUKSimRpm_File file = Add(mDocument, VUKSimRpm_Document::Read);
    const VUKSimRpm_Locator start = file.Start();
    mDocument.Close(file);
    EXPECT_FALSE(start.Null());
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { ReadFrom(start, 5); },
                                                  "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator", 117));

    mFolder.Write("other.sim", bytes::Pool({.directory = {bytes::Uuid('b')}}).Bytes());
    mDocument.AddFile(mFolder.File("other.sim"), VUKSimRpm_Document::Read);
    EXPECT_FALSE(start.Null());
    Add(mDocument, VUKSimRpm_Document::Read);
    EXPECT_EQ(ReadFrom(start, 5), "hello");
}

TEST_F(Document, MakesLocatorsNullWhenItCloses)
{
    const VUKSimRpm_Locator start = Add(mDocument, VUKSimRpm_Document::Read).Start();
    mDocument.Close();
    EXPECT_TRUE(start.Null());
    Add(mDocument, VUKSimRpm_Document::Read);
    EXPECT_TRUE(start.Null());
    EXPECT_TRUE(Raises<VUKSimExcCantDerefLocator>([&] { ReadFrom(start, 5); },
                                                  "VUKSim/VUKSimRpm.m/src/VUKSimRpm_Locator", 117));
}
