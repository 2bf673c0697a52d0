#include "Bytes.h"
#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKSimExcCantCreateFile.h"
#include "VUKSimRpm_UUID.h"

#include <optional>

namespace {

constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";
constexpr char kDirectorySource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolDirectoryImpl";

const std::string kC = bytes::Uuid('c');

class MakeADocument : public Operation
{
public:
    void Run() override { mDocument.emplace("TEST"); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mDocument.has_value(), !outcome.failed, "whether there is one");
        Run();
    }

private:
    std::optional<VUKSimRpm_Document> mDocument;
};

// Adds `a.sim`, which is on disk only, to a document with another file.
class AddAFile : public Operation
{
public:
    explicit AddAFile(VUKSimRpm_Document::AccessMode mode) : mMode(mode)
    {
        mFolder.Write("a.sim", Store::TwoPools());
        mOther = mDocument.AddFile(
            mFolder.Write("z.sim",
                          bytes::Pool{.directory = {bytes::Uuid('z')}, .data = "z"}.Bytes()),
            VUKSimRpm_Document::Read);
    }

    void Run() override { mFile = mDocument.AddFile(mName, mMode); }

    [[nodiscard]] bool Answers(const Hit& hit, const VUKBasException& raised) const override
    {
        return hit.Ends() && IsFrom(raised, "VUKSimExcCorruptHeader", kPoolSource, 78);
    }

    // A failed attempt leaves file and document alone, but for slots without pools.
    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mFile.has_value(), !outcome.failed, "whether it was added");
        complaints.Same(mFolder.Read("a.sim"), Store::TwoPools(), "the bytes of a.sim");
        Run();
        complaints.Same(mFile->PoolCount(), 2U, "the number of pools");
        complaints.Same(DataOf(mFile->Pool(0)), "frozen one", "the first pool's data");
        complaints.Same(DataOf(mFile->Pool(1)), "growing", "the second pool's data");
        complaints.Same(mFile->ReadOnly(), mMode == VUKSimRpm_Document::Read, "its mode");
        complaints.Same(DataOf(mOther->Pool(0)), "z", "the other file's data");
        mDocument.Close();
        complaints.Same(mFolder.Read("a.sim"), Store::TwoPools(), "the bytes of a.sim, closed");
    }

private:
    VUKSimRpm_Document::AccessMode mMode;
    TemporaryFolder mFolder;
    const VUKString mName = mFolder.File("a.sim");
    VUKSimRpm_Document mDocument{"TEST"};
    std::optional<VUKSimRpm_File> mOther;
    std::optional<VUKSimRpm_File> mFile;
};

class AddAFileForUpdate : public AddAFile
{
public:
    AddAFileForUpdate() : AddAFile(VUKSimRpm_Document::Update) {}
};

class AddAFileForReading : public AddAFile
{
public:
    AddAFileForReading() : AddAFile(VUKSimRpm_Document::Read) {}
};

// Adds a file whose second pool lies far behind the first, at 8,080: its header is read with one
// entry of its directory, the rest by itself.
class AddAFileOfDistantPools : public Operation
{
public:
    void Run() override { mFile = mDocument.AddFile(mName, VUKSimRpm_Document::Read); }

    [[nodiscard]] bool Answers(const Hit& hit, const VUKBasException& raised) const override
    {
        return hit.Ends() && (hit.made.position == 8128
                                  ? IsFrom(raised, "VUKSimExcCorruptDirectory", kPoolSource, 106)
                                  : IsFrom(raised, "VUKSimExcCorruptHeader", kPoolSource, 78));
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mFile.has_value(), !outcome.failed, "whether it was added");
        Run();
        complaints.Same(mFile->PoolCount(), 2U, "the number of pools");
        complaints.Same(DataOf(mFile->Pool(0)) == Letters(8000), true, "the first pool's data");
        complaints.Same(DataOf(mFile->Pool(1)), "far away", "the second pool's data");
    }

private:
    static std::string Bytes()
    {
        return bytes::File(
            {{.length = "0000000000008080", .directory = {bytes::Uuid('a')}, .data = Letters(8000)},
             {.directory = {bytes::Uuid('b'), bytes::Uuid('a'), kC}, .data = "far away"}});
    }

    TemporaryFolder mFolder;
    const VUKString mName = mFolder.Write("a.sim", Bytes());
    VUKSimRpm_Document mDocument{"TEST"};
    std::optional<VUKSimRpm_File> mFile;
};

// A file that is open comes back as it is, under another name too. Where that cannot be looked up
// it is taken for another file, and that its pools are open already saves it.
class AddAFileAgain : public Operation
{
public:
    void Run() override { mFile = mStore.Document().AddFile(mName, VUKSimRpm_Document::Update); }

    [[nodiscard]] bool Answers(const Hit& hit, const VUKBasException& raised) const override
    {
        return hit.made.call == SystemCall::Stat &&
               IsFrom(raised, "VUKSimExcPoolAlreadyInDoc", kDirectorySource, 75);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const bool unseen =
            !outcome.hits.empty() && outcome.hits[0].trouble.flaw.errorNumber != EINTR;
        complaints.Same(outcome.failed, unseen, "whether it was taken for another");
        mStore.ExpectDisk(Store::TwoPools(), complaints);
        Run();
        mFile->Allocate(1);
        complaints.Same(mStore.File().Pool().Length(), 8ULL, "the length of the one pool");
    }

private:
    Store mStore;
    const VUKString mName = mStore.Folder().File("./a.sim");
    std::optional<VUKSimRpm_File> mFile;
};

// Makes `c.sim` beside the store's file; there may have been one. What a failed attempt had made
// of the new pool, its slot, is named in the directory of the next.
class AddAFileForWriting : public Operation
{
public:
    AddAFileForWriting() = default;

    void Run() override
    {
        VUKSimRpm_UUID::TestForceUUID(mTries++ == 0 ? kC.c_str() : nullptr);
        mFile = mStore.Document().AddFile(mStore.Folder().File("c.sim"), VUKSimRpm_Document::Write);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (!outcome.failed) {
            complaints.Expect(mStore.Folder().Read("c.sim") == Fresh() || outcome.retried,
                              "the new file holds an empty pool");
            mFile->Allocate(1);
        } else {
            CheckLeftOver(outcome, complaints);
            Run();
            const unsigned int size = mFile->Pool().DirectorySizeBytes();
            if (outcome.memory || outcome.Manifold()) {
                complaints.Expect(size >= 96 && size <= 160, "its directory names every slot");
            } else {
                complaints.Same(size, outcome.Met(SystemCall::Pwrite) ? 128U : 96U,
                                "the size of its directory");
            }
        }
        complaints.Same(mFile->PoolCount(), 1U, "the number of pools");
        mStore.ExpectGoesOn(outcome, {{'a', "frozen one"}, {'b', "growingnext"}}, complaints);
    }

protected:
    explicit AddAFileForWriting(const std::string& before) : mBefore(before)
    {
        mStore.Folder().Write("c.sim", before);
    }

private:
    static std::string Fresh()
    {
        return bytes::Pool{.directory = {kC, bytes::Uuid('a'), bytes::Uuid('b')}}.Bytes();
    }

    // Up to the moment in which it is emptied the old file is whole.
    void CheckLeftOver(const Outcome& outcome, Complaints& complaints) const
    {
        const bool there = mStore.Folder().Has("c.sim");
        const std::string left = there ? mStore.Folder().Read("c.sim") : "";
        if (outcome.Manifold() || outcome.memory) {
            complaints.Expect(left.empty() || left == mBefore || Fresh().starts_with(left),
                              "what is left is old, or the beginning of the new");
            return;
        }
        const bool emptied = outcome.Met(SystemCall::Pwrite);
        complaints.Same(left, emptied ? "" : mBefore, "what is left of c.sim");
        complaints.Same(there, !mBefore.empty() || !outcome.Met(SystemCall::Open), "its name");
    }

    Store mStore;
    std::string mBefore; // of c.sim; empty for none
    int mTries = 0;
    std::optional<VUKSimRpm_File> mFile;
};

class AddAFileForWritingOverAnother : public AddAFileForWriting
{
public:
    AddAFileForWritingOverAnother() : AddAFileForWriting("what was there before") {}
};

// Is refused, also where it cannot be looked up. Only a system that says that the file is not there
// is believed, and then it is made anew.
class AddAFileForWritingTwice : public Operation
{
public:
    void Run() override
    {
        try {
            mStore.Document().AddFile(mName, VUKSimRpm_Document::Write);
        } catch (const VUKSimExcCantCreateFile& raised) {
            mRefused = raised.Line() == 44 && raised.FileName() == std::string(mName.UTF8());
        }
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        if (!outcome.hits.empty() && outcome.hits[0].trouble.flaw.errorNumber == ENOENT) {
            complaints.Expect(!mRefused, "it is made anew");
            return;
        }
        complaints.Expect(mRefused, "it is refused");
        mStore.ExpectDisk(Store::TwoPools(), complaints);
        mStore.ExpectGoesOn(outcome, {{'a', "frozen one"}, {'b', "growingnext"}}, complaints);
    }

private:
    Store mStore;
    const VUKString mName = mStore.Folder().File("a.sim");
    bool mRefused = false;
};

// A new file under a name of its own: a temporary one that failed leaves nothing, any other its
// empty file.
class CreateAFile : public Operation
{
public:
    explicit CreateAFile(bool temporary) : mTemporary(temporary) {}

    void Run() override
    {
        VUKSimRpm_UUID::TestForceUUID(mTries++ == 0 ? kC.c_str() : nullptr);
        mFile = mTemporary ? mDocument.CreateTemporary(mFolder.File("scratch"), true)
                           : mDocument.CreateGenerated(mFolder.File("result"), ".sim", true);
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mFile.has_value(), !outcome.failed, "whether there is a file");
        if (outcome.Manifold()) {
            return;
        }
        const bool left = !outcome.failed || (!mTemporary && outcome.Met(SystemCall::Pwrite));
        if (!outcome.memory || mTemporary) {
            complaints.Same(mFolder.Count(), left ? 1 : 0, "the number of files");
        }
        const int before = mFolder.Count();
        Run();
        complaints.Same(mFolder.Count(), before + 1, "the number of files after another");
        WriteTo(mFile->Allocate(4), "next");
        mFile->Flush();
        complaints.Same(DataOf(mFile->Pool()), "next", "what it reads");
        mDocument.Close();
        complaints.Same(mFolder.Count(), mTemporary ? 0 : before + 1, "the number, closed");
    }

private:
    bool mTemporary;
    int mTries = 0;
    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"TEST"};
    std::optional<VUKSimRpm_File> mFile;
};

class CreateATemporaryFile : public CreateAFile
{
public:
    CreateATemporaryFile() : CreateAFile(true) {}
};

class CreateAGeneratedFile : public CreateAFile
{
public:
    CreateAGeneratedFile() : CreateAFile(false) {}
};
} // namespace

std::vector<OperationEntry> DocumentOperations()
{
    return {
        Entry<MakeADocument>("MakeADocument", 0, 2),
        Entry<AddAFileForUpdate>("AddAFileForUpdate", 8, 10),
        Entry<AddAFileForReading>("AddAFileForReading", 7, 10),
        Entry<AddAFileOfDistantPools>("AddAFileOfDistantPools", 7, 11),
        Entry<AddAFileAgain>("AddAFileAgain", 2, 0),
        Entry<AddAFileForWriting>("AddAFileForWriting", 5, 8),
        Entry<AddAFileForWritingOverAnother>("AddAFileForWritingOverAnother", 8, 8),
        Entry<AddAFileForWritingTwice>("AddAFileForWritingTwice", 2, 0),
        Entry<CreateATemporaryFile>("CreateATemporaryFile", 2, 8),
        Entry<CreateAGeneratedFile>("CreateAGeneratedFile", 2, 8),
    };
}
