#include "StoredRun.h"

#include "HeatSolver.h"
#include "ModelStore.h"

#include "VUKSimRpm_Document.h"

#include <chrono>
#include <utility>

namespace heat {

namespace {

// Adds the time that it lives to a sum of seconds.
class Stopwatch
{
public:
    explicit Stopwatch(double& seconds) : mSeconds(seconds) {}
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;
    ~Stopwatch() { mSeconds += std::chrono::duration<double>(Clock::now() - mStart).count(); }

private:
    using Clock = std::chrono::steady_clock;

    double& mSeconds;
    Clock::time_point mStart = Clock::now();
};

// One run in progress: moves the field on and stores it, step by step.
class Runner
{
public:
    Runner(const StoredRunPlan& plan, const Model& model, FrameWriter& writer,
           StoredRunObserver& observer)
        : mPlan(plan), mModel(model), mWriter(writer), mObserver(observer), mSolver(model)
    {}

    // With `field` given, it is the one of the step before `first`.
    StoredRunReport Run(std::uint32_t first, std::vector<double> field)
    {
        mReport.firstStep = first;
        mReport.lastStep = mModel.steps;
        for (std::uint32_t step = first; step <= mModel.steps; ++step) {
            Compute(step, field);
            Store(step, field);
        }
        mReport.bytes = mWriter.Bytes();
        return mReport;
    }

private:
    void Compute(std::uint32_t step, std::vector<double>& field)
    {
        const Stopwatch watch(mReport.solving);
        if (step == 0) {
            field = mSolver.InitialField();
        } else {
            mSolver.Advance(field);
        }
    }

    void Store(std::uint32_t step, const std::vector<double>& field)
    {
        {
            const Stopwatch watch(mReport.storing);
            mWriter.Append(mModel.timeStep * step, field);
        }
        mObserver.Stored(step);
        if (step % mPlan.checkpointEvery == 0 || step == mModel.steps) {
            mObserver.BeforeCheckpoint(step);
            const Stopwatch watch(mReport.syncing);
            mWriter.Checkpoint();
        }
    }

    const StoredRunPlan& mPlan;
    const Model& mModel;
    FrameWriter& mWriter;
    StoredRunObserver& mObserver;
    HeatSolver mSolver;
    StoredRunReport mReport;
};

VUKString Name(const std::string& name)
{
    return VUKString(name.c_str());
}

StoppedRun Describe(const Model& model, const VUKSimRpm_File& results, const HistoryEnd& end)
{
    StoppedRun run;
    run.model = model;
    run.wholeFrames = end.frames;
    run.pools = results.PoolCount();
    for (unsigned index = 0; index < run.pools; ++index) {
        run.bytes += results.Pool(index).Length();
    }
    run.frameBytes = FrameBytes(model.mesh.nodes.size());
    run.leftover = end.leftover;
    run.leftoverState = end.leftoverState;
    return run;
}

} // namespace

StoredRunReport RunFromStart(const StoredRunPlan& plan, const Model& model,
                             StoredRunObserver& observer)
{
    VUKSimRpm_Document document(kSignature);
    VUKSimRpm_File modelFile = document.AddFile(Name(plan.modelFile), VUKSimRpm_Document::Write);
    const VUKSimRpm_Locator mesh = StoreModel(modelFile, model);
    modelFile.Flush();

    // The pools of the results name those that the document knows: the mesh comes first.
    const VUKSimRpm_File results =
        document.AddFile(Name(plan.resultsFile), VUKSimRpm_Document::Write);
    StoredRunReport report;
    {
        HistoryEnd nothing;
        nothing.next = results.Start();
        FrameWriter writer(results, mesh, plan.layout, nothing);
        report = Runner(plan, model, writer, observer).Run(0, {});
    }
    document.Close();
    return report;
}

StoredRunReport ResumeRun(const StoredRunPlan& plan, ResumeObserver& observer)
{
    VUKSimRpm_Document document(kSignature);
    const VUKSimRpm_File modelFile =
        document.AddFile(Name(plan.modelFile), VUKSimRpm_Document::Read);
    const VUKSimRpm_Locator mesh = ModelRecord(modelFile);
    const Model model = LoadModel(mesh);

    const VUKSimRpm_File results =
        document.AddFile(Name(plan.resultsFile), VUKSimRpm_Document::Update);
    StoredRunReport report;
    {
        HistoryEnd end = FindEndOfHistory(results, mesh, model.mesh.nodes.size());
        observer.Found(Describe(model, results, end));
        FrameWriter writer(results, mesh, plan.layout, end);
        report = Runner(plan, model, writer, observer).Run(end.frames, std::move(end.last.values));
    }
    document.Close();
    return report;
}

} // namespace heat
