#include "Bytes.h"
#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKSimRpm_UUID.h"
#include "VUKSimUttOSFileException.h"

#include <memory>

namespace {

const std::string kC = bytes::Uuid('c');

// Whether `call` fails as every flush does once a sync has failed.
template <class Call>
bool FailsForEver(Call call)
{
    for (int i = 0; i < 2; ++i) {
        try {
            call();
            return false;
        } catch (const VUKSimUttOSFileException& raised) {
            if (raised.Operation() != std::string("flush") || raised.Line() != 223) {
                return false;
            }
        }
    }
    return true;
}

// The store, and `c.sim`, made by the same document and never flushed: one pool, `c`, with the data
// `fresh`.
class TwoFiles : public Operation
{
public:
    TwoFiles() : mCreated(Create()) { WriteTo(mCreated.Allocate(5), "fresh"); }

protected:
    // Whatever happened, all bytes are where they were.
    void ExpectBytes(Complaints& complaints) const
    {
        mStore.ExpectDisk(Store::TwoPools(), complaints);
        mStore.ExpectPools({{'c', "fresh"}}, complaints, "c.sim");
    }

    Store mStore;
    VUKSimRpm_File mCreated;

private:
    VUKSimRpm_File Create()
    {
        VUKSimRpm_UUID::TestForceUUID(kC.c_str());
        return mStore.Document().AddFile(mStore.Folder().File("c.sim"), VUKSimRpm_Document::Write);
    }
};

class FlushAFile : public Operation
{
public:
    void Run() override { mStore.File().Flush(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        mStore.ExpectDisk(Store::TwoPools(), complaints);
        mStore.ExpectGoesOn(outcome, {{'a', "frozen one"}, {'b', "growingnext"}}, complaints);
    }

private:
    Store mStore;
};

// With it the file's name becomes durable, once.
class FlushACreatedFile : public TwoFiles
{
public:
    void Run() override { mCreated.Flush(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        ExpectBytes(complaints);
        if (!outcome.syncFailed) {
            mCreated.Flush();
            mStore.Document().Close();
        } else if (!outcome.Manifold()) {
            complaints.Expect(FailsForEver([&] { mCreated.Flush(); }), "every flush fails");
        }
        mStore.Drop();
        ExpectBytes(complaints);
    }
};

class FlushADocument : public TwoFiles
{
public:
    void Run() override { mStore.Document().Flush(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        ExpectBytes(complaints);
        complaints.Expect(!mStore.File().Null() && !mCreated.Null(), "both files stay open");
        if (!outcome.syncFailed) {
            mStore.Document().Flush();
        } else if (!outcome.Manifold()) {
            complaints.Expect(FailsForEver([&] { mStore.Document().Flush(); }), "so do all others");
        }
        mStore.Drop();
        ExpectBytes(complaints);
    }
};

class CloseAFile : public Operation
{
public:
    CloseAFile() : mPool(mStore.File().Pool()) {}

    void Run() override
    {
        if (!mStore.File().Null()) {
            mStore.Document().Close(mStore.File());
        }
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mStore.File().Null(), !outcome.failed, "whether the file is gone");
        if (outcome.failed && !outcome.Manifold() && !outcome.Met(SystemCall::Close)) {
            complaints.Expect(!mPool.Null() && DataOf(mPool) == "growing", "it can be read");
        }
        if (outcome.syncFailed && !outcome.Manifold()) {
            complaints.Expect(FailsForEver([&] { Run(); }), "so does every other close");
            complaints.Expect(!mPool.Null() && DataOf(mPool) == "growing", "it can still be read");
        } else if (!outcome.syncFailed) {
            Run();
            complaints.Expect(mStore.File().Null() && mPool.Null(), "the second close closes it");
            const auto again =
                mStore.Document().AddFile(mStore.Folder().File("a.sim"), VUKSimRpm_Document::Read);
            complaints.Same(DataOf(again.Pool(1)), "growing", "what it reads when added again");
        }
        mStore.Drop();
        mStore.ExpectDisk(Store::TwoPools(), complaints);
    }

private:
    Store mStore;
    VUKSimRpm_Pool mPool;
};

// Stopped half way, it has closed the files before the failure and kept the others.
class CloseADocument : public TwoFiles
{
public:
    CloseADocument() : mStart(mStore.File().Start()) {}

    void Run() override { mStore.Document().Close(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        ExpectBytes(complaints);
        if (!outcome.failed) {
            complaints.Expect(mStart.Null(), "the locator is null");
        } else if (outcome.hits.size() == 1 && !outcome.Manifold()) {
            CheckStage(outcome.hits[0], complaints);
        }
        if (outcome.syncFailed && !outcome.Manifold()) {
            complaints.Expect(FailsForEver([&] { Run(); }), "so does every other close");
        } else if (!outcome.syncFailed) {
            Run();
            complaints.Expect(mStore.File().Null() && mCreated.Null() && mStart.Null(),
                              "the second close closes all");
            const auto again = mStore.Document().AddFile(mStore.Folder().File("c.sim"),
                                                         VUKSimRpm_Document::Update);
            complaints.Same(DataOf(again.Pool()), "fresh", "what a file reads when added again");
        }
        mStore.Drop();
        ExpectBytes(complaints);
    }

private:
    void CheckStage(const Hit& hit, Complaints& complaints)
    {
        complaints.Same(mStore.File().Null(), hit.file.ends_with("c.sim") || hit.folder,
                        "whether the first file is gone");
        complaints.Expect(!mCreated.Null(), "the second is not");
        complaints.Expect(!mStart.Null(), "the pool map is the same");
        if (hit.made.call != SystemCall::Close) {
            complaints.Same(DataOf(mCreated.Pool()), "fresh", "what the second reads");
        }
    }

    VUKSimRpm_Locator mStart;
};

// Its name goes with it.
class CloseATemporaryFile : public Operation
{
public:
    CloseATemporaryFile() : mFile(mDocument.CreateTemporary(mFolder.File("scratch"), true))
    {
        WriteTo(mFile.Allocate(5), "fresh");
    }

    void Run() override
    {
        if (!mFile.Null()) {
            mDocument.Close(mFile);
        }
    }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(mFile.Null(), !outcome.failed, "whether the file is gone");
        if (outcome.syncFailed || outcome.Manifold()) {
            return; // dropped with the document
        }
        if (outcome.failed && outcome.Met(SystemCall::Pwrite)) {
            complaints.Same(DataOf(mFile.Pool()), "fresh", "what the open file reads");
        }
        Run();
        complaints.Expect(mFile.Null(), "the second close closes it");
        complaints.Same(mFolder.Count(), NameStays(outcome) ? 1 : 0, "the number of files left");
    }

    [[nodiscard]] std::string LooksFor(const Hit&) const override { return "remove"; }

private:
    // It could not be looked up or removed, or was said not to be there.
    static bool NameStays(const Outcome& outcome)
    {
        return !outcome.hits.empty() && outcome.hits[0].trouble.flaw.errorNumber != EINTR &&
               (outcome.Met(SystemCall::Fstat) || outcome.Met(SystemCall::Stat) ||
                outcome.Met(SystemCall::Unlink));
    }

    TemporaryFolder mFolder;
    VUKSimRpm_Document mDocument{"TEST"};
    VUKSimRpm_File mFile;
};

// Nobody is told of a failure, since nothing of value can fail: nothing is written.
class DropADocument : public Operation
{
public:
    DropADocument()
        : mTemporary(mStore.Document().CreateTemporary(mStore.Folder().File("scratch"), true))
    {}

    void Run() override { mStore.Drop(); }

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Expect(!outcome.failed, "a document dies quietly");
        complaints.Expect(mStore.File().Null() && mTemporary.Null(), "its files die with it");
        mStore.ExpectDisk(Store::TwoPools(), complaints);
        mStore.ExpectPools(Store::Pools(), complaints);
    }

    [[nodiscard]] bool Passes(const Hit&) const override { return true; }

private:
    Store mStore;
    VUKSimRpm_File mTemporary;
};
} // namespace

std::vector<OperationEntry> ClosingOperations()
{
    return {
        Entry<FlushAFile>("FlushAFile", 2, 1),
        Entry<FlushACreatedFile>("FlushACreatedFile", 5, 2),
        Entry<FlushADocument>("FlushADocument", 7, 3),
        Entry<CloseAFile>("CloseAFile", 3, 1),
        Entry<CloseADocument>("CloseADocument", 9, 4),
        Entry<CloseATemporaryFile>("CloseATemporaryFile", 6, 1),
        Entry<DropADocument>("DropADocument", 5, 0),
    };
}
