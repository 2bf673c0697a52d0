#include "Bytes.h"
#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKSimExcImmutablePool.h"

namespace {

constexpr char kFileSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_FileImpl";
constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

// A pool `s` of 110 bytes, or of more, in a document of its own is copied into the store's file.
class ImportOperation : public Operation
{
public:
    // `whole` is the number of pools with the copy among them.
    ImportOperation(const std::string& stored, const std::string& data, unsigned int whole)
        : mStore(stored), mWhole(whole), mImported{.directory = {bytes::Uuid('s')}, .data = data},
          mSource(mSourceDocument.AddFile(mStore.Folder().Write("s.sim", mImported.Bytes()),
                                          VUKSimRpm_Document::Read))
    {}

    void Run() override
    {
        // The second time the copy may be there already, only not written to its end.
        if (mTries++ == 0 || mStore.File().PoolCount() < mWhole) {
            mStore.File().AppendPool(mSource.Pool(0));
        }
    }

    [[nodiscard]] bool Answers(const Hit& hit, const VUKBasException& raised) const override
    {
        if (!hit.Ends()) {
            return false;
        }
        if (hit.file.ends_with("s.sim")) {
            return IsFrom(raised, "VUKSimExcShortPool", kFileSource, 190);
        }
        return IsFrom(raised, "VUKSimExcCorruptHeader", kPoolSource, 78);
    }

protected:
    // The source stays as it was, in its own document.
    void CheckSource(Complaints& complaints)
    {
        mStore.ExpectDisk(mImported.Bytes(), complaints, "s.sim");
        complaints.Same(DataOf(mSource.Pool(0)).size(), mImported.data.size(), "the source");
    }

    Store mStore;
    unsigned int mWhole;
    int mTries = 0;
    bytes::Pool mImported;
    VUKSimRpm_Document mSourceDocument{"TEST"};
    VUKSimRpm_File mSource;
};

// Behind `b`. Until the copy is a pool its bytes belong, for whoever opens the file, to `b`.
class ImportBehindData : public ImportOperation
{
public:
    ImportBehindData() : ImportBehindData("thirty imported bytes of data.") {}

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        CheckSource(complaints);
        mStore.ExpectDataInPlace(complaints);
        if (outcome.retried) {
            GoOnBehindALeftOver(complaints);
            return;
        }
        if (outcome.Manifold()) {
            mStore.ExpectPoolsOrRefusal(complaints);
        } else if (!outcome.failed) {
            complaints.Expect(mStore.Folder().Read("a.sim") == Whole(), "the copy is whole");
        } else if (outcome.hits.size() == 1) {
            CheckStage(outcome.hits[0], complaints);
        }
        GoOn(outcome, complaints);
    }

protected:
    explicit ImportBehindData(const std::string& data) : ImportOperation(Store::TwoPools(), data, 3)
    {}

private:
    [[nodiscard]] std::vector<HeldPool> WithCopy() const
    {
        return {{'a', "frozen one"}, {'b', "growing"}, {'s', mImported.data}};
    }

    static std::vector<HeldPool> WithCopyInB(const std::string& data)
    {
        return {{'a', "frozen one"}, {'b', data, true}};
    }

    [[nodiscard]] std::string Whole() const
    {
        std::string bytes = Store::TwoPools() + mImported.Bytes();
        return bytes.replace(90 + 20, 16, "0000000000000119");
    }

    void CheckStage(const Hit& hit, Complaints& complaints)
    {
        const bool write = hit.made.call == SystemCall::Pwrite;
        const bool copyHeader = write && hit.made.position == 209 && hit.made.length == 80;
        const bool freezing = write && hit.made.position == 90;
        complaints.Same(mStore.File().PoolCount(), copyHeader ? 3U : 2U, "the number of pools");
        if (hit.made.call == SystemCall::Ftruncate) {
            mStore.ExpectDisk(Store::TwoPools(), complaints);
            mStore.ExpectPools(Store::Pools(), complaints);
            return;
        }
        complaints.Same(mStore.Folder().Size("a.sim"), 209 + mImported.Bytes().size(), "the size");
        if (copyHeader || (freezing && hit.trouble.flaw.moved >= 36)) {
            mStore.ExpectPools(WithCopy(), complaints);
        } else if (freezing && hit.trouble.flaw.moved >= 34) {
            mStore.ExpectPoolsOrRefusal(complaints); // cut within the length's digits
        } else {
            mStore.ExpectPools(WithCopyInB("growing"), complaints);
        }
    }

    // The second copy stands behind what the first has left, and no pool leads there: the file is
    // refused when it is opened again, or shows the first copy. Every byte is in it.
    void GoOnBehindALeftOver(Complaints& complaints)
    {
        mStore.ExpectPoolsOrRefusal(complaints);
        mStore.Document().Close();
        mStore.ExpectPoolsOrRefusal(complaints);
    }

    void GoOn(const Outcome& outcome, Complaints& complaints)
    {
        auto pools = WithCopy();
        if (mStore.File().PoolCount() == 3) {
            pools[2].data += "next";
        } else {
            pools = WithCopyInB("growingnext");
        }
        try {
            mStore.File().Allocate(0);
        } catch (const VUKSimExcImmutablePool&) {
            // Frozen for the copy that was not added: closed, the file shows both.
            mStore.Document().Close();
            mStore.ExpectPools(WithCopy(), complaints);
            return;
        }
        mStore.ExpectGoesOn(outcome, pools, complaints);
    }
};

// In several pieces of 262144 bytes, of which the first lies in memory that is mapped.
class ImportOfALongPool : public ImportBehindData
{
public:
    ImportOfALongPool() : ImportBehindData(Letters(262144 + 10000)) {}
};

// In the place of `b`, which is empty. From the moment that the file is given its new size the file
// is refused, or shows what was copied so far, until the copy is whole; `a` stays in its place.
class ImportInPlaceOfAnEmptyPool : public ImportOperation
{
public:
    ImportInPlaceOfAnEmptyPool()
        : ImportOperation(Store::WithAnEmptyPool(), "thirty imported bytes of data.", 2),
          mEmpty(mStore.File().Pool())
    {}

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        CheckSource(complaints);
        complaints.Expect(outcome.memory || mEmpty.Null(), "the empty pool is dropped");
        complaints.Same(DataOf(mStore.File().Pool(0)), "frozen one", "what the first pool reads");
        complaints.Same(mStore.Folder().Read("a.sim").substr(0, 90),
                        Store::TwoPools().substr(0, 90), "the first pool on disk");
        if (!outcome.failed && !outcome.retried) {
            mStore.ExpectPools({{'a', "frozen one"}, {'s', mImported.data}}, complaints);
            mStore.ExpectGoesOn(outcome, {{'a', "frozen one"}, {'s', mImported.data + "next"}},
                                complaints);
        } else {
            GoOn(complaints);
        }
    }

private:
    // The copy that failed stays where it is, and the next pool comes behind it, where no pool
    // leads to when the file is opened again. Every byte is in it.
    void GoOn(Complaints& complaints)
    {
        mStore.File().NewPool(true, bytes::Uuid('x').c_str());
        WriteTo(mStore.File().Allocate(4), "next");
        mStore.Document().Flush();
        complaints.Same(DataOf(mStore.File().Pool()), "next", "what the next pool reads");
        mStore.Document().Close();
        const std::string disk = mStore.Folder().Read("a.sim");
        complaints.Same(disk.substr(80, 10), "frozen one", "the first pool's data on disk");
        complaints.Expect(disk.find("next") != std::string::npos, "the next pool's is on disk");
    }

    VUKSimRpm_Pool mEmpty;
};
} // namespace

std::vector<OperationEntry> ImportOperations()
{
    return {
        Entry<ImportBehindData>("ImportBehindData", 6, 7),
        Entry<ImportOfALongPool>("ImportOfALongPool", 6, 7),
        Entry<ImportInPlaceOfAnEmptyPool>("ImportInPlaceOfAnEmptyPool", 6, 6),
    };
}
