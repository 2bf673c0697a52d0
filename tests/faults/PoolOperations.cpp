#include "Bytes.h"
#include "OnePool.h"
#include "Operations.h"
#include "Store.h"
#include "VUKSimExcImmutablePool.h"

namespace {

constexpr char kPoolSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_PoolImpl";

// Whether the current pool, once frozen for a successor that never came, refuses to grow.
bool CurrentPoolIsFrozen(Store& store)
{
    try {
        store.File().Allocate(0);
        return false;
    } catch (const VUKSimExcImmutablePool& raised) {
        return raised.Path() == std::string(kPoolSource) && raised.Line() == 163;
    }
}

// NewPool on one file, with another UUID each time that it is tried.
class NewPoolOperation : public Operation
{
public:
    explicit NewPoolOperation(const std::string& stored) : mStore(stored) {}

    void Run() override { mStore.File().NewPool(true, bytes::Uuid(mNext++).c_str()); }

protected:
    // With a pool that grows again something is appended and the file closed; it holds `before`,
    // then the current pool. A frozen one needs one more pool first.
    void ExpectGoesOn(const Outcome& outcome, std::vector<HeldPool> before, Complaints& complaints,
                      bool staleBytes = false)
    {
        if (CurrentPoolIsFrozen(mStore)) {
            Run();
        }
        const std::string uuid = mStore.File().Pool().GetGUID().UTF8();
        if (!before.empty() && uuid[0] == before.back().uuid) {
            before.back().data += "next";
        } else {
            before.push_back({uuid[0], "next", staleBytes});
        }
        mStore.ExpectGoesOn(outcome, before, complaints);
    }

    // The bytes of the write that went wrong first stand on disk up to where it was cut.
    static std::string Cut(std::string before, const Hit& hit, const std::string& header)
    {
        return before.replace(hit.made.position, hit.trouble.flaw.moved,
                              header.substr(0, hit.trouble.flaw.moved));
    }

    // The first header tells a wrong length when it is cut within the digits that have changed.
    static bool CutsDigits(const Hit& hit)
    {
        return hit.trouble.flaw.moved >= 34 && hit.trouble.flaw.moved < 36;
    }

    Store mStore;
    char mNext = 'n';
};

// Behind `b`, whose last bytes may never have been written.
class NewPoolBehindData : public NewPoolOperation
{
public:
    NewPoolBehindData() : NewPoolBehindData("0000000000000119", "") {}

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        mStore.ExpectDataInPlace(complaints);
        if (outcome.Manifold()) {
            mStore.ExpectPoolsOrRefusal(complaints);
        } else if (outcome.hits.size() == 1 && outcome.failed) {
            CheckStage(outcome.hits[0], complaints);
        } else {
            mStore.ExpectPools(outcome.failed ? PoolsOnDisk() : WithNew(), complaints);
            complaints.Expect(outcome.failed || mStore.Folder().Read("a.sim") == Whole(),
                              "the file holds three whole pools");
        }
        ExpectGoesOn(outcome, Pools(), complaints);
    }

protected:
    NewPoolBehindData(const std::string& length, const std::string& tail)
        : NewPoolOperation(Store::TwoPools()), mTail(tail), mEnd(209 + tail.size())
    {
        mFrozenB.length = length;
        mFrozenB.data += tail;
    }

private:
    [[nodiscard]] std::vector<HeldPool> Pools() const
    {
        return {{'a', "frozen one"}, {'b', "growing" + mTail}};
    }

    // A tail that was never written is there once the file was given its length.
    [[nodiscard]] std::vector<HeldPool> PoolsOnDisk() const
    {
        return mStore.Folder().Size("a.sim") == 209 ? Store::Pools() : Pools();
    }

    [[nodiscard]] std::vector<HeldPool> WithNew() const
    {
        auto pools = Pools();
        pools.push_back({'n', ""});
        return pools;
    }

    [[nodiscard]] std::string Frozen() const
    {
        return Store::TwoPools().substr(0, 90) + mFrozenB.Bytes();
    }
    [[nodiscard]] std::string Whole() const
    {
        const bytes::Pool fresh{.directory = {bytes::Uuid('n')}};
        return Frozen() + fresh.Bytes();
    }

    void CheckStage(const Hit& hit, Complaints& complaints)
    {
        const bool newHeader = hit.made.call == SystemCall::Pwrite && hit.made.position >= mEnd;
        const bool oldHeader = hit.made.call == SystemCall::Pwrite && !newHeader;
        complaints.Same(mStore.File().PoolCount(), newHeader ? 3U : 2U, "the number of pools");
        complaints.Same(CurrentPoolIsFrozen(mStore), oldHeader, "whether the pool is frozen");
        if (newHeader) {
            mStore.ExpectDisk(Frozen(), complaints); // cut back to where the pool begins
        } else if (oldHeader) {
            const std::string header = Frozen().substr(90, 112);
            mStore.ExpectDisk(Cut(Store::TwoPools() + mTail, hit, header), complaints);
        } else {
            mStore.ExpectDisk(Store::TwoPools(), complaints);
        }
        if (oldHeader && CutsDigits(hit)) {
            mStore.ExpectPoolsOrRefusal(complaints);
        } else {
            mStore.ExpectPools(PoolsOnDisk(), complaints);
        }
    }

    bytes::Pool mFrozenB{.directory = {bytes::Uuid('b'), bytes::Uuid('a')}, .data = "growing"};
    std::string mTail; // zeros
    unsigned long long mEnd;
};

class NewPoolBehindAnUnwrittenTail : public NewPoolBehindData
{
public:
    NewPoolBehindAnUnwrittenTail() : NewPoolBehindData("0000000000000124", std::string(5, '\0'))
    {
        mStore.File().Allocate(5);
    }
};

// In the place of `b`, in which nothing was ever allocated. What it had in the file and the new
// pool does not cover becomes data of the new pool.
class NewPoolInPlaceOfAnEmptyOne : public NewPoolOperation
{
public:
    NewPoolInPlaceOfAnEmptyOne()
        : NewPoolOperation(Store::WithAnEmptyPool()), mEmpty(mStore.File().Pool())
    {}

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        const bool written = mStore.File().PoolCount() == 2;
        if (!outcome.failed) {
            complaints.Expect(written && mEmpty.Null(),
                              "the new pool has taken the old one's place");
            const char newest = static_cast<char>(mNext - 1);
            mStore.ExpectPools({{'a', "frozen one"}, {newest, "", true}}, complaints);
        } else if (outcome.hits.size() == 1 && !outcome.Manifold()) {
            complaints.Same(written, outcome.hits[0].made.position == 90, "whether it is there");
            complaints.Expect(mEmpty.Null(), "the empty pool is dropped");
            mStore.ExpectDisk(Disk(outcome.hits[0]), complaints);
        }
        complaints.Same(mStore.Folder().Read("a.sim").substr(80, 10), "frozen one", "the data");
        ExpectGoesOn(outcome, {{'a', "frozen one"}}, complaints, true);
    }

private:
    static std::string Disk(const Hit& hit)
    {
        const std::string before = Store::WithAnEmptyPool();
        const bytes::Pool fresh{.directory = {bytes::Uuid('n')}};
        return hit.made.call == SystemCall::Pwrite && hit.made.position == 90
                   ? Cut(before, hit, fresh.Bytes())
                   : before; // the length of `a` is written over itself
    }

    VUKSimRpm_Pool mEmpty;
};

// The 65th slot of its document, for which the map makes room for more.
class NewPoolThatGrowsTheMap : public NewPoolOperation
{
public:
    NewPoolThatGrowsTheMap() : NewPoolOperation(Stored()) {}

    void Check(const Outcome& outcome, Complaints& complaints) override
    {
        complaints.Same(DataOf(mStore.File().Pool(0)), "growing", "the data of the first pool");
        if (!outcome.failed) {
            complaints.Same(mStore.File().PoolCount(), 2U, "the number of pools");
            complaints.Same(mStore.File().Pool().DirectorySizeBytes(), 32U, "the directory");
        }
        if (!outcome.Manifold()) {
            ExpectGoesOn(outcome, {{'!', "growing"}}, complaints);
        }
    }

private:
    static std::string Stored()
    {
        bytes::Pool pool{.data = "growing"};
        pool.directory.resize(64);
        char letter = '!';
        for (std::string& uuid : pool.directory) {
            uuid.assign(32, letter++);
        }
        return pool.Bytes();
    }
};

// Room is only counted: neither disk nor heap is asked.
class RoomInAPool : public Operation
{
public:
    void Run() override
    {
        mFirst = mStore.File().Allocate(1000);
        mSecond = mStore.File().Pool().Allocate(0);
    }

    void Check(const Outcome&, Complaints& complaints) override
    {
        complaints.Same(mFirst - mStore.File().Start(), 7ULL, "where the room begins");
        complaints.Same(mSecond - mStore.File().Start(), 1007ULL, "where it ends");
        mStore.ExpectDisk(Store::TwoPools(), complaints);
    }

private:
    Store mStore;
    VUKSimRpm_Locator mFirst;
    VUKSimRpm_Locator mSecond;
};
} // namespace

std::vector<OperationEntry> PoolOperations()
{
    return {
        Entry<NewPoolBehindData>("NewPoolBehindData", 2, 6),
        Entry<NewPoolBehindAnUnwrittenTail>("NewPoolBehindAnUnwrittenTail", 4, 6),
        Entry<NewPoolInPlaceOfAnEmptyOne>("NewPoolInPlaceOfAnEmptyOne", 2, 5),
        Entry<NewPoolThatGrowsTheMap>("NewPoolThatGrowsTheMap", 2, 8),
        Entry<RoomInAPool>("RoomInAPool", 0, 0),
    };
}
