#include "VUKSimRpm_DocumentImpl.h"

#include "Failures.h"
#include "FileFixture.h"
#include "ScriptedSystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

namespace {
constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_DocumentImpl";
using Mode = VUKSimRpm_Document::AccessMode;
constexpr Mode kWrite = VUKSimRpm_Document::Write;
constexpr Mode kUpdate = VUKSimRpm_Document::Update;
constexpr Mode kRead = VUKSimRpm_Document::Read;
constexpr Mode kUnknown = static_cast<Mode>(3);

// The file `a.sim` is on disk, with one pool, `a`; the document has no files.
class AddFile : public FileFixture
{
protected:
    AddFile() { mFolder.Write("a.sim", mStored.Bytes()); }

    VUKBasSharedPtr<VUKSimRpm_FileImpl> Add(const std::string& name, Mode mode)
    {
        return mDocument.AddFile(mFolder.File(name), mode).lock();
    }

    const bytes::Pool mStored{.directory = {bytes::Uuid('a')}, .data = "hello"};
};
} // namespace

// The three modes

TEST_F(AddFile, HasItsModesByTheirNumbers)
{
    EXPECT_EQ(int{kWrite}, 0);
    EXPECT_EQ(int{kUpdate}, 1);
    EXPECT_EQ(int{kRead}, 2);
}

TEST_F(AddFile, OpensAFileForReading)
{
    const auto file = Add("a.sim", kRead);
    EXPECT_TRUE(file->ReadOnly());
    EXPECT_EQ(file->PoolCount(), 1U);
    EXPECT_EQ(PoolIn(0), file->Pool(0).lock());
}

TEST_F(AddFile, OpensAFileForUpdate)
{
    const auto file = Add("a.sim", kUpdate);
    EXPECT_FALSE(file->ReadOnly());
    EXPECT_EQ(ReadPool(*file->Pool().lock(), 0, 99), "hello");
    EXPECT_FALSE(file->Pool().lock()->Immutable());
}

TEST_F(AddFile, MakesAFileForWritingWhoseFirstPoolNamesEverySlot)
{
    Map()->NewSlot(bytes::Uuid('x').c_str());
    const auto file = Add("new.sim", kWrite);
    EXPECT_FALSE(file->ReadOnly());
    EXPECT_EQ(file->PoolCount(), 1U);
    EXPECT_EQ(mFolder.Size("new.sim"), 112U); // the pool itself and `x`
}

TEST_F(AddFile, OverwritesAFileThatIsOnlyOnDisk)
{
    const auto file = Add("a.sim", kWrite);
    EXPECT_EQ(mFolder.Size("a.sim"), 80U);
    EXPECT_NE(mFolder.Read("a.sim").substr(48, 32), bytes::Uuid('a'));
}

TEST_F(AddFile, HoldsTheFile)
{
    const auto weak = mDocument.AddFile(mFolder.File("a.sim"), kRead);
    EXPECT_FALSE(weak.expired());
    EXPECT_EQ(weak.lock().UseCount(), 2); // the document's and this one
}

// A file that is open already

TEST_F(AddFile, ReturnsAnOpenFileAndDoesNotOpenItAgain)
{
    const auto first = Add("a.sim", kRead);
    const ScriptedSystemCalls calls;
    EXPECT_EQ(Add("a.sim", kRead), first);
    EXPECT_EQ(calls.Count(SystemCall::Open), 0);
    EXPECT_EQ(calls.Count(SystemCall::Pread), 0);
}

TEST_F(AddFile, ReturnsAFileOpenForReadingAsItIsWhenAskedToUpdate)
{
    const auto first = Add("a.sim", kRead);
    EXPECT_EQ(Add("a.sim", kUpdate), first);
    EXPECT_TRUE(first->ReadOnly());
}

TEST_F(AddFile, ReturnsAFileOpenForUpdateAsItIsWhenAskedToRead)
{
    const auto first = Add("a.sim", kUpdate);
    EXPECT_EQ(Add("a.sim", kRead), first);
    EXPECT_FALSE(first->ReadOnly());
}

TEST_F(AddFile, ReturnsAFileThatItCreated)
{
    const auto made = mDocument.CreateGenerated(mFolder.File("run"), ".sim", true).lock();
    EXPECT_EQ(mDocument.AddFile(made->FileName(), kUpdate).lock(), made);
}

TEST_F(AddFile, KnowsAFileByIdentityWhateverTheName)
{
    const auto first = Add("a.sim", kRead);
    std::filesystem::create_symlink("a.sim", mFolder.Path("symlink.sim"));
    std::filesystem::create_hard_link(mFolder.Path("a.sim"), mFolder.Path("link.sim"));
    EXPECT_EQ(Add("./a.sim", kRead), first);
    EXPECT_EQ(Add("symlink.sim", kRead), first);
    EXPECT_EQ(Add("link.sim", kUpdate), first);
}

TEST_F(AddFile, LooksAnOpenFileUpByTheNameItWasOpenedWith)
{
    const auto first = Add("a.sim", kRead);
    std::filesystem::rename(mFolder.Path("a.sim"), mFolder.Path("moved.sim"));
    mFolder.Write("a.sim", bytes::Pool({.directory = {bytes::Uuid('b')}}).Bytes());
    EXPECT_EQ(Add("a.sim", kRead), first); // although the name leads to another file now
    EXPECT_TRUE(Raises<VUKSimExcPoolAlreadyInDoc>(
        [&] { Add("moved.sim", kRead); }, "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl",
        75));
}

TEST_F(AddFile, RefusesToOverwriteAFileOfTheDocument)
{
    const auto first = Add("a.sim", kRead);
    EXPECT_TRUE(
        RaisesCantCreateFile([&] { Add("a.sim", kWrite); }, mFolder.Path("a.sim"), kSource, 44));
    EXPECT_EQ(mFolder.Read("a.sim"), mStored.Bytes());
    EXPECT_EQ(Add("a.sim", kRead), first);
}

TEST_F(AddFile, NamesTheFileThatItWillNotOverwriteAsItWasGiven)
{
    Add("a.sim", kUpdate);
    std::filesystem::create_hard_link(mFolder.Path("a.sim"), mFolder.Path("link.sim"));
    EXPECT_TRUE(RaisesCantCreateFile([&] { Add("link.sim", kWrite); }, mFolder.Path("link.sim"),
                                     kSource, 44));
    std::string name = mFolder.Path("");
    while (name.size() < 1100) {
        name += "./";
    }
    name += "a.sim";
    EXPECT_TRUE(RaisesCantCreateFile([&] { mDocument.AddFile(name.c_str(), kWrite); },
                                     name.substr(0, 1023), kSource, 44));
}

TEST_F(AddFile, MakesAFileAnewWhoseNameWasRemovedFromDisk)
{
    const auto first = Add("a.sim", kRead);
    std::filesystem::remove(mFolder.Path("a.sim"));
    const auto second = Add("a.sim", kWrite);
    EXPECT_NE(second, first);
    EXPECT_EQ(second->PoolCount(), 1U);
    EXPECT_EQ(first->PoolCount(), 1U);
}

TEST_F(AddFile, OverwritesAFileThatWasClosed)
{
    mDocument.Close(Add("a.sim", kRead));
    const auto file = Add("a.sim", kWrite);
    EXPECT_EQ(file->Pool().lock()->DataLength(), 0U);
}

// An unknown mode

TEST_F(AddFile, ReturnsAnOpenFileForAnUnknownMode)
{
    const auto first = Add("a.sim", kRead);
    EXPECT_EQ(Add("a.sim", kUnknown), first);
}

TEST_F(AddFile, FailsForAnUnknownModeWhenTheFileIsNotOpen)
{
    const char* text = "!\"Bad mode.\"";
    EXPECT_TRUE(RaisesAssertion([&] { Add("a.sim", kUnknown); }, text, kSource, 73));
    EXPECT_TRUE(RaisesAssertion([&] { Add("new.sim", kUnknown); }, text, kSource, 73));
    EXPECT_FALSE(mFolder.Has("new.sim"));
    EXPECT_EQ(mFolder.Read("a.sim"), mStored.Bytes());
}

// An open that fails

TEST_F(AddFile, PassesOnWhatTheSystemSays)
{
    EXPECT_TRUE(RaisesFileError([&] { Add("none.sim", kRead); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { Add("none.sim", kUpdate); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { Add("none/a.sim", kWrite); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { mDocument.AddFile("", kRead); }, "open", ENOENT));
    EXPECT_TRUE(RaisesFileError([&] { mDocument.AddFile("", kWrite); }, "open", ENOENT));
}

TEST_F(AddFile, PassesOnWhatIsWrongWithAPoolAndDropsTheFile)
{
    bytes::Pool bad = mStored;
    bad.userSignature = "ELSE";
    mFolder.Write("a.sim", bad.Bytes());
    EXPECT_TRUE(Raises<VUKSimExcUserSigMismatch>([&] { Add("a.sim", kRead); },
                                                 "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl", 89));

    mFolder.Write("a.sim", mStored.Bytes()); // in place: it is the same file on disk
    EXPECT_EQ(Add("a.sim", kRead)->PoolCount(), 1U);
}

TEST_F(AddFile, KeepsTheSlotsOfPoolsThatWereLoadedBeforeTheFailure)
{
    mFolder.Write("b.sim",
                  bytes::File({{.length = "0000000000000080", .directory = {bytes::Uuid('p')}},
                               {.version = 5, .directory = {bytes::Uuid('q')}}}));
    EXPECT_TRUE(RaisesNeedUpgrade([&] { Add("b.sim", kRead); }, 6, 5, mFolder.Path("b.sim"),
                                  "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl", 86));
    EXPECT_EQ(Map()->Length(), 1);
    EXPECT_EQ(Map()->LookupByUUID(bytes::Uuid('p').c_str()), 0);
    EXPECT_FALSE(PoolIn(0)); // it died with its file

    mFolder.Write("b.sim", bytes::Pool({.directory = {bytes::Uuid('p')}}).Bytes());
    Add("b.sim", kRead);
    EXPECT_TRUE(PoolIn(0)); // its slot again
}

TEST_F(AddFile, LeavesTheOtherFilesWhenOneFails)
{
    const auto first = Add("a.sim", kRead);
    EXPECT_TRUE(RaisesFileError([&] { Add("none.sim", kRead); }, "open", ENOENT));
    EXPECT_EQ(Add("a.sim", kRead), first);
}
