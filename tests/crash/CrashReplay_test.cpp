// Every moment of real runs of the library, crashed in every way, opened again and gone on with.
#include "CrashImage.h"
#include "CrashOptions.h"
#include "ImageJudge.h"
#include "Scenarios.h"
#include "Tally.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

constexpr std::size_t kShown = 5; // broken promises that are printed per scenario

class CrashReplay : public testing::TestWithParam<Scenario>
{
protected:
    CrashReplay() { GetParam().run(mStore); }

    // Judges the images that come, and says which of them broke a promise.
    CrashVisitor Judge()
    {
        return [this](const CrashImage& image) {
            const Outcome outcome = mJudge.Judge(image);
            Tally::Total().Count(GetParam().name, image, outcome);
            if (!outcome.broken.empty() && ++mBroken <= kShown) {
                ADD_FAILURE() << NameOf(image.model) << ", behind event " << image.moment << " of "
                              << mStore.Log().Events().size() << ": " << image.choices << '\n'
                              << testing::PrintToString(outcome.broken);
            }
        };
    }

    WatchedStore mStore;
    ImageJudge mJudge{mStore.Deeds(), mStore.Log()};
    std::size_t mBroken = 0;
};
} // namespace

TEST_P(CrashReplay, RecordsAllThatIsOnTheDisk)
{
    const DiskState disk = mStore.Log().At(mStore.Log().Events().size());
    for (std::size_t i = 0; i < disk.size(); ++i) {
        EXPECT_EQ(disk[i].bytes, mStore.Folder().Read(mStore.Log().Names()[i]));
    }
    EXPECT_EQ(mStore.Folder().Count(), static_cast<int>(disk.size()));
}

TEST_P(CrashReplay, KeepsWhatWasWrittenWhenTheProcessIsKilled)
{
    VisitKilled(mStore.Log(), Judge());
    EXPECT_EQ(mBroken, 0U);
}

TEST_P(CrashReplay, KeepsWhatWasWrittenWhenTheProcessIsKilledInAWrite)
{
    VisitKilledInCall(mStore.Log(), Judge());
    EXPECT_EQ(mBroken, 0U);
}

TEST_P(CrashReplay, KeepsWhatWasFlushedWhenThePowerIsLost)
{
    VisitPowerLost(mStore.Log(), GetParam().powerLosses, CrashOptions::Current().seed, Judge());
    EXPECT_EQ(mBroken, 0U);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, CrashReplay, testing::ValuesIn(AllScenarios()));
