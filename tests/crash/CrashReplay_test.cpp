// Every moment of real runs of the library, crashed in every way, opened again and gone on with.
#include "CrashImage.h"
#include "CrashOptions.h"
#include "ImageJudge.h"
#include "Scenarios.h"
#include "Tally.h"
#include "Unextended.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

constexpr std::size_t kShown = 5; // broken promises that are printed per scenario

// Judges the images of one log, each content at each moment once, and counts what becomes of them.
class Replay
{
public:
    Replay(const Scenario& scenario, const WatchedStore& store, const DiskLog& log,
           const std::vector<Tally*>& tallies)
        : mScenario(scenario), mLog(log), mTallies(tallies), mJudge(store.Deeds(), log)
    {}

    void Killed() { VisitKilled(mLog, Judge(1)); }
    void KilledInCall() { VisitKilledInCall(mLog, Judge(CrashOptions::Current().every)); }
    void PowerLost()
    {
        const CrashOptions& options = CrashOptions::Current();
        VisitPowerLost(mLog, mScenario.powerLosses, options.seed, Judge(options.every));
    }

    [[nodiscard]] std::size_t Broken() const noexcept { return mBroken; }
    [[nodiscard]] std::size_t PastEnd() const noexcept { return mPastEnd; }

private:
    CrashVisitor Judge(unsigned every)
    {
        return [this, every, number = 0U](const CrashImage& image) mutable {
            if (number++ % every != 0) {
                return;
            }
            if (mModel != image.model || mMoment != image.moment) {
                mSeen.clear();
                mModel = image.model;
                mMoment = image.moment;
            }
            if (mSeen.insert(HashOf(image.files)).second) {
                Count(image, mJudge.Judge(image));
            }
        };
    }

    void Count(const CrashImage& image, const Outcome& outcome)
    {
        for (Tally* tally : mTallies) {
            tally->Count(mScenario.row.empty() ? mScenario.name : mScenario.row, image, outcome);
        }
        mPastEnd += outcome.pastEnd ? 1 : 0;
        if (!outcome.broken.empty() && ++mBroken <= kShown) {
            ADD_FAILURE() << NameOf(image.model) << ", behind event " << image.moment << " of "
                          << mLog.Events().size() << ": " << image.choices << '\n'
                          << testing::PrintToString(outcome.broken);
        }
    }

    const Scenario& mScenario;
    const DiskLog& mLog;
    std::vector<Tally*> mTallies; // not owned
    ImageJudge mJudge;
    std::unordered_set<std::size_t> mSeen; // contents of the model and moment below
    std::optional<CrashModel> mModel;
    std::size_t mMoment = 0;
    std::size_t mBroken = 0;
    std::size_t mPastEnd = 0;
};

class CrashReplay : public testing::TestWithParam<Scenario>
{
protected:
    // A run that extends no file counts for both tallies.
    CrashReplay()
    {
        GetParam().run(mStore);
        mUnextended = WithoutExtensions(mStore.Log());
        std::vector<Tally*> tallies{&Tally::Total()};
        if (!mUnextended) {
            tallies.push_back(&Tally::Unextended());
        }
        mReplay.emplace(GetParam(), mStore, mStore.Log(), tallies);
    }

    WatchedStore mStore;
    std::optional<DiskLog> mUnextended;
    std::optional<Replay> mReplay;
};
} // namespace

TEST_P(CrashReplay, RecordsAllThatIsOnTheDisk)
{
    const DiskState disk = mStore.Log().At(mStore.Log().Events().size());
    int present = 0;
    for (std::size_t i = 0; i < disk.size(); ++i) {
        const std::string& name = mStore.Log().Names()[i];
        ASSERT_EQ(disk[i].present, mStore.Folder().Has(name));
        EXPECT_EQ(disk[i].bytes, disk[i].present ? mStore.Folder().Read(name) : "");
        present += disk[i].present ? 1 : 0;
    }
    EXPECT_EQ(mStore.Folder().Count(), present);
}

TEST_P(CrashReplay, KeepsWhatWasWrittenWhenTheProcessIsKilled)
{
    mReplay->Killed();
    EXPECT_EQ(mReplay->Broken(), 0U);
    EXPECT_EQ(mReplay->PastEnd(), 0U);
}

TEST_P(CrashReplay, KeepsWhatWasWrittenWhenTheProcessIsKilledInAWrite)
{
    mReplay->KilledInCall();
    EXPECT_EQ(mReplay->Broken(), 0U);
    EXPECT_EQ(mReplay->PastEnd(), 0U);
}

TEST_P(CrashReplay, KeepsWhatWasFlushedWhenThePowerIsLost)
{
    mReplay->PowerLost();
    EXPECT_EQ(mReplay->Broken(), 0U);
}

// What extending a file before a freeze is good for; nothing to compare where nothing was extended.
TEST_P(CrashReplay, KeepsThePromisesAlsoWhereFilesAreNotExtended)
{
    if (mUnextended) {
        Replay replay(GetParam(), mStore, *mUnextended, {&Tally::Unextended()});
        replay.Killed();
        EXPECT_GT(replay.PastEnd(), 0U);
        replay.KilledInCall();
        replay.PowerLost();
        EXPECT_EQ(replay.Broken(), 0U);
    }
}

INSTANTIATE_TEST_SUITE_P(Scenarios, CrashReplay, testing::ValuesIn(AllScenarios()));
