#include "FaultyCalls.h"

#include <filesystem>

namespace {

bool IsSync(SystemCall call)
{
    return call == SystemCall::Fdatasync || call == SystemCall::Fsync || call == SystemCall::Syncfs;
}
} // namespace

NoSyncs::NoSyncs() : mBefore(VUKSimUttSystemCalls::Current())
{
    VUKSimUttSystemCalls& table = VUKSimUttSystemCalls::Current();
    table.fdatasync = table.fsync = table.syncfs = [](int) { return 0; };
}

NoSyncs::~NoSyncs()
{
    VUKSimUttSystemCalls::Current() = mBefore;
}

FaultyCalls::FaultyCalls(const std::vector<Place>& places, Choice choice)
    : mPlaces(places), mChoice(choice)
{
    mCalls.AnswerBy([this](const ScriptedSystemCalls::Made& made) {
        KeepName(made);
        const CallAnswer answer = Answer(made);
        if (made.call == SystemCall::Close) {
            mNames.erase(made.descriptor);
        }
        mSyncFailed = mSyncFailed || (IsSync(made.call) && answer.errorNumber != 0 &&
                                      answer.errorNumber != EINTR && answer.errorNumber != EINVAL);
        return answer;
    });
}

CallAnswer FaultyCalls::Answer(const ScriptedSystemCalls::Made& made)
{
    if (mCutDue && made.call == mHits.back().made.call) {
        mCutDue = false;
        mHits.back().struck = true;
        return Fails(mHits.back().trouble.flaw.errorNumber);
    }
    for (const Hit& hit : mHits) {
        const Trouble& trouble = hit.trouble;
        if (trouble.reach == Reach::Dead) {
            return Fails(EIO);
        }
        if (trouble.reach == Reach::Sticky && made.call == hit.made.call) {
            return trouble.flaw.errorNumber != 0 ? Fails(trouble.flaw.errorNumber)
                                                 : Moves(trouble.flaw.moved);
        }
    }
    if (mHits.size() < mPlaces.size() && ++mCount == mPlaces[mHits.size()].number) {
        mCount = 0;
        return Strike(made);
    }
    return Passes();
}

CallAnswer FaultyCalls::Strike(const ScriptedSystemCalls::Made& made)
{
    const std::vector<Trouble> troubles = mChoice(made);
    const Trouble trouble = troubles.at(mPlaces[mHits.size()].trouble);
    Hit hit{.made = made, .trouble = trouble, .file = made.path};
    if (const auto name = mNames.find(made.descriptor); name != mNames.end()) {
        hit.file = name->second;
        hit.folder = std::filesystem::is_directory(name->second);
    }
    hit.before.assign(mCalls.Calls().begin(), mCalls.Calls().end() - 1);
    mHits.push_back(hit);
    mHits.back().struck = trouble.flaw.moved == 0 || trouble.flaw.errorNumber == 0;
    mTroubles = mHits.size() == mPlaces.size() ? troubles.size() : 0;
    if (trouble.flaw.errorNumber == 0) {
        return Moves(trouble.flaw.moved);
    }
    mCutDue = trouble.flaw.moved > 0;
    return mCutDue ? Moves(trouble.flaw.moved) : Fails(trouble.flaw.errorNumber);
}

// A descriptor is seen open at least once before it is closed, but for files opened for reading
// before all this began.
void FaultyCalls::KeepName(const ScriptedSystemCalls::Made& made)
{
    if (made.descriptor == -1 || made.call == SystemCall::Close ||
        mNames.count(made.descriptor) != 0) {
        return;
    }
    std::error_code error;
    const auto name =
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(made.descriptor), error);
    if (!error) {
        mNames[made.descriptor] = name.string();
    }
}
