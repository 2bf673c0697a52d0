#include "HeatSolver.h"
#include "KilledWriter.h"
#include "ReadBack.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace heat {
namespace {

StoredRunPlan PlanIn(const TemporaryFolder& folder)
{
    StoredRunPlan plan;
    plan.modelFile = folder.Path("model.sim");
    plan.resultsFile = folder.Path("results.sim");
    plan.layout = {10, 4096};
    plan.checkpointEvery = 5;
    return plan;
}

std::vector<std::vector<double>> Undisturbed(const Model& model)
{
    HeatSolver solver(model);
    std::vector<std::vector<double>> fields{solver.InitialField()};
    for (std::uint32_t step = 1; step <= model.steps; ++step) {
        fields.push_back(fields.back());
        solver.Advance(fields.back());
    }
    return fields;
}

class Noted final : public ResumeObserver
{
public:
    void Found(const StoppedRun& run) override { found = run; }

    StoppedRun found;
};

TEST(KilledWriter, RunGoesOnToTheSameBitsWhereverItWasKilled)
{
    const Model model = PlateModel({12, 8, 6, 30}); // 40 * 7 nodes: frames of 2304 bytes
    const std::vector<std::vector<double>> expected = Undisturbed(model);
    for (const std::uint32_t killStep : {1u, 4u, 6u, 9u, 13u, 17u, 21u, 24u, 28u, 29u}) {
        const TemporaryFolder folder;
        const StoredRunPlan plan = PlanIn(folder);
        std::uint32_t heard = 0;
        const KillReport kill =
            KillWriterAt(killStep, plan, model, [&](std::uint32_t step) { heard = step; });
        EXPECT_EQ(heard, killStep);
        EXPECT_EQ(kill.announcedStep, killStep);
        EXPECT_EQ(kill.checkpointStep, killStep - killStep % 5);

        Noted noted;
        const StoredRunReport report = ResumeRun(plan, noted);
        EXPECT_TRUE(noted.found.model == model);
        EXPECT_GT(noted.found.wholeFrames, kill.checkpointStep); // none lost that was flushed
        // It would have had to ask before the next checkpoint.
        EXPECT_LE(noted.found.wholeFrames, kill.checkpointStep + 6);
        EXPECT_LT(noted.found.leftover, 2304u);
        EXPECT_EQ(report.firstStep, noted.found.wholeFrames);
        EXPECT_EQ(report.lastStep, 30u);

        const History history = ReadHistory(plan);
        EXPECT_EQ(history.frames.size(), 31u);
        EXPECT_EQ(FirstDifference(history.frames, expected), -1) << "killed at " << killStep;
        EXPECT_TRUE(history.model == model);
    }
}

TEST(KilledWriter, RefusesToKillAtACheckpointOrOutsideTheRun)
{
    const TemporaryFolder folder;
    const Model model = PlateModel({4, 2, 1, 30});
    for (const std::uint32_t step : {0u, 5u, 30u, 31u}) {
        EXPECT_THROW(
            static_cast<void>(KillWriterAt(step, PlanIn(folder), model, [](std::uint32_t) {})),
            std::invalid_argument);
    }
}

TEST(KilledWriter, SaysSoWhenTheWriterFails)
{
    const TemporaryFolder folder;
    StoredRunPlan plan = PlanIn(folder);
    plan.resultsFile = folder.Path("no such folder/results.sim");
    try {
        static_cast<void>(KillWriterAt(7, plan, PlateModel({4, 2, 1, 30}), [](std::uint32_t) {}));
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the writer ended by itself after step 0");
    }
}

TEST(StoredRun, FindsNothingToDoInARunThatReachedItsEnd)
{
    const TemporaryFolder folder;
    const StoredRunPlan plan = PlanIn(folder);
    const Model model = PlateModel({4, 2, 1, 12});
    StoredRunObserver quiet;
    EXPECT_EQ(RunFromStart(plan, model, quiet).bytes, 13u * 256u);
    const std::string whole = FileBytes(plan.resultsFile);

    Noted noted;
    EXPECT_EQ(ResumeRun(plan, noted).bytes, 0u);
    EXPECT_EQ(noted.found.wholeFrames, 13u);
    EXPECT_EQ(FileBytes(plan.resultsFile), whole);
}

TEST(FirstDifference, ComparesByBits)
{
    Frame frame;
    frame.values = {0.0, 1.0};
    EXPECT_EQ(FirstDifference({frame, frame}, {{0.0, 1.0}, {0.0, 1.0}}), -1);
    EXPECT_EQ(FirstDifference({frame, frame}, {{0.0, 1.0}, {-0.0, 1.0}}), 1);
    EXPECT_EQ(FirstDifference({frame}, {{0.0}}), 0);
    EXPECT_EQ(FirstDifference({frame}, {{0.0, 1.0}, {0.0, 1.0}}), 1);
}

TEST(ReadHistory, SaysWhereTheChainIsBroken)
{
    const TemporaryFolder folder;
    StoredRunPlan plan = PlanIn(folder);
    plan.layout.framesInPool = 40; // all in one
    StoredRunObserver quiet;
    RunFromStart(plan, PlateModel({4, 2, 1, 12}), quiet); // 24 nodes: frames of 256 bytes
    std::string bytes = FileBytes(plan.resultsFile);
    bytes[bytes.size() - 612] ^= 1; // in step 10, which ends 512 bytes before the end
    WriteFileBytes(plan.resultsFile, bytes);
    try {
        static_cast<void>(ReadHistory(plan));
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "step 11 refers back to a place that holds no whole frame");
    }
}

} // namespace
} // namespace heat
