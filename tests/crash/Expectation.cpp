#include "Expectation.h"

#include <algorithm>

namespace {

using Deed = Ledger::Deed;

// A file's bytes: those that are certain, those that are open, and all others, of which nobody said
// anything.
class ByteMap
{
public:
    void Certain(unsigned long long position, const std::string& bytes)
    {
        Reach(position + bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            mAllowed[position + i] = {bytes[i]};
            mCertain[position + i] = true;
            mMayMiss[position + i] = false;
        }
    }

    // What was there before may stay. Where nothing was certain it is one of `old` and zero, or the
    // byte is missing; without `old` nothing is said of such a byte.
    void Uncertain(unsigned long long position, const std::string& bytes, const std::string* old)
    {
        Reach(position + bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::size_t at = position + i;
            if (mAllowed[at].empty()) {
                if (old == nullptr) {
                    continue;
                }
                mAllowed[at] = {'\0', at < old->size() ? (*old)[at] : '\0'};
                mAllowed[at] += mForgotten[at];
                mMayMiss[at] = true;
            }
            mAllowed[at] += bytes[i];
            mCertain[at] = false;
        }
    }

    // Nobody needs these bytes any more; what may still stand there counts as old.
    void Forget(unsigned long long position)
    {
        for (std::size_t at = position; at < mAllowed.size(); ++at) {
            mForgotten[at] += mAllowed[at];
            mAllowed[at].clear();
            mCertain[at] = false;
        }
    }

    void Fill(FileExpectation& expectation) const
    {
        for (std::size_t i = 0; i < mAllowed.size(); ++i) {
            if (mCertain[i]) {
                if (i == 0 || !mCertain[i - 1]) {
                    expectation.exact.push_back({i, {}});
                }
                expectation.exact.back().bytes += mAllowed[i];
            } else if (!mAllowed[i].empty()) {
                expectation.open.push_back({i, mAllowed[i], mMayMiss[i]});
            }
        }
    }

private:
    void Reach(std::size_t end)
    {
        if (mAllowed.size() < end) {
            mAllowed.resize(end);
            mForgotten.resize(end);
            mCertain.resize(end, false);
            mMayMiss.resize(end, false);
        }
    }

    std::vector<std::string> mAllowed; // by position; empty: free
    std::vector<std::string> mForgotten;
    std::vector<bool> mCertain;
    std::vector<bool> mMayMiss;
};

std::size_t SizeAt(const DiskLog& log, int file, std::size_t moment)
{
    return log.At(moment)[static_cast<std::size_t>(file)].bytes.size();
}

// The moment behind the file's last sync; 0 when there was none.
std::size_t LastSync(const DiskLog& log, int file, std::size_t moment)
{
    while (moment > 0 && (log.Events()[moment - 1].kind != DiskEvent::Kind::Sync ||
                          log.Events()[moment - 1].file != file)) {
        --moment;
    }
    return moment;
}

// A file is there once a byte of it has to be, until the call that removes it.
bool MayBeGone(const Ledger& ledger, int file, std::size_t started,
               const FileExpectation& expectation)
{
    const auto removed = ledger.removed.find(file);
    return (removed != ledger.removed.end() && removed->second < started) ||
           (expectation.exact.empty() && std::ranges::all_of(expectation.open, &OpenByte::mayMiss));
}

// `started` is the first moment that is too late to have begun, `settled` the one up to which calls
// had to be finished for their pools to be certain.
void AddPools(const Ledger& ledger, const DiskLog& log, int file, std::size_t started,
              std::size_t settled, FileExpectation& expectation)
{
    for (const Ledger::Pool& pool : ledger.pools) {
        if (pool.file == file && pool.begin < started) {
            expectation.known.push_back(&pool);
            if (pool.end <= settled && pool.dropped >= started) {
                expectation.sure.push_back(&pool);
            }
        }
    }
    for (const Ledger::PoolCall& call : ledger.poolCalls) {
        if (call.file == file && call.begin < started && call.end > settled &&
            !expectation.inPoolCall) {
            expectation.inPoolCall = true;
            expectation.quietSize = SizeAt(log, file, call.begin);
        }
    }
}
} // namespace

FileExpectation ExpectAfterKill(const Ledger& ledger, const DiskLog& log, int file,
                                std::size_t moment, bool inCall)
{
    const std::size_t started = inCall ? moment + 1 : moment;
    ByteMap bytes;
    for (const Deed& deed : ledger.deeds) {
        if (deed.file != file || deed.begin >= started) {
            continue;
        }
        if (deed.kind == Deed::Kind::Forgotten) {
            bytes.Forget(deed.position);
        } else if (deed.kind == Deed::Kind::Written && deed.end <= moment) {
            bytes.Certain(deed.position, deed.bytes);
        } else if (deed.kind == Deed::Kind::Written) {
            bytes.Uncertain(deed.position, deed.bytes, nullptr);
        }
    }
    FileExpectation expectation;
    bytes.Fill(expectation);
    expectation.mayBeGone = MayBeGone(ledger, file, started, expectation);
    AddPools(ledger, log, file, started, moment, expectation);
    return expectation;
}

FileExpectation ExpectAfterPowerLoss(const Ledger& ledger, const DiskLog& log, int file,
                                     std::size_t moment)
{
    std::size_t promised = 0; // when the last flush that returned in time was called
    for (const Deed& deed : ledger.deeds) {
        if (deed.file == file && deed.kind == Deed::Kind::Flushed && deed.end <= moment) {
            promised = deed.begin;
        }
    }
    const std::size_t sync = LastSync(log, file, moment);
    const std::string old = log.At(sync)[static_cast<std::size_t>(file)].bytes;
    ByteMap bytes;
    for (const Deed& deed : ledger.deeds) {
        if (deed.file != file || deed.begin >= moment) {
            continue;
        }
        if (deed.kind == Deed::Kind::Forgotten) {
            bytes.Forget(deed.position);
        } else if (deed.kind == Deed::Kind::Written && deed.end <= promised) {
            bytes.Certain(deed.position, deed.bytes);
        } else if (deed.kind == Deed::Kind::Written) {
            bytes.Uncertain(deed.position, deed.bytes, &old);
        }
    }
    FileExpectation expectation;
    bytes.Fill(expectation);
    expectation.mayBeGone = MayBeGone(ledger, file, moment, expectation);
    AddPools(ledger, log, file, moment, sync, expectation);
    return expectation;
}
