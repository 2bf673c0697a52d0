#include "Demo.h"

#include "FieldDrawing.h"
#include "HeatSolver.h"
#include "KilledWriter.h"
#include "Progress.h"
#include "ReadBack.h"
#include "RodCheck.h"
#include "StoredRun.h"
#include "Text.h"

#include "VUKSimPoolManager.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace heat {

namespace {

constexpr unsigned kRodCells = 60;
constexpr unsigned kRodSteps = 200;
constexpr double kRodLimit = 0.01; // of the peak

class LibraryInUse
{
public:
    LibraryInUse() { VUKSimPoolManager_initialize(mModules); }
    LibraryInUse(const LibraryInUse&) = delete;
    LibraryInUse& operator=(const LibraryInUse&) = delete;
    ~LibraryInUse() { VUKSimPoolManager_finalize(mModules); }

private:
    int mModules = 0;
};

std::string Seconds(double seconds)
{
    return Decimal(seconds, 2) + " s";
}

// Megabytes of 10^6 bytes in a second.
std::string Rate(unsigned long long bytes, double seconds)
{
    return Decimal(static_cast<double>(bytes) / 1e6 / std::max(seconds, 1e-9), 0) + " MB/s";
}

class Demo
{
public:
    Demo(const DemoOptions& options, std::ostream& out)
        : mOptions(options), mOut(out), mModel(PlateModel(options.plate))
    {
        const std::filesystem::path folder(options.folder);
        mPlan.modelFile = (folder / "model.sim").string();
        mPlan.resultsFile = (folder / "results.sim").string();
        mPlan.layout = options.layout;
        mPlan.checkpointEvery = options.checkpointEvery;
        mPictureFile = (folder / "field.svg").string();
    }

    void Run()
    {
        std::filesystem::create_directories(mOptions.folder);
        mOut << "Heat in a plate with a hole: a simulation that is killed and goes on\n";
        CheckSolver();
        RunUndisturbed();
        RunAndKill();
        Resume();
        const History history = ReadAndCompare();
        Draw(history);
        Summarise(history);
    }

private:
    class Resumed;

    void CheckSolver();
    void RunUndisturbed();
    void RunAndKill();
    void Resume();
    History ReadAndCompare();
    void Draw(const History& history);
    void Summarise(const History& history);

    void Heading(int number, const std::string& text)
    {
        mOut << "\n" << number << "  " << text << "\n";
    }

    [[nodiscard]] Progress NewProgress() { return Progress(mOut, mOptions.terminal, mModel.steps); }

    const DemoOptions& mOptions;
    std::ostream& mOut;
    Model mModel;
    StoredRunPlan mPlan;
    std::string mPictureFile;
    RodCheckResult mRod;
    std::vector<std::vector<double>> mExpected; // every field of the undisturbed run
    KillReport mKill;
    std::uint32_t mResumedAt = 0;
};

void Demo::CheckSolver()
{
    Heading(1, "The solver against an exact solution");
    mRod = CheckAgainstRod(kRodCells, kRodSteps);
    mOut << "   A rod with fixed ends, " << mRod.steps << " steps: the peak falls to "
         << Decimal(mRod.peak, 3) << ", and no value was ever further off than\n   "
         << Decimal(mRod.largestError * 100.0, 2) << " % of the peak; 1 % is allowed.\n";
    if (!(mRod.largestError < kRodLimit)) {
        throw std::runtime_error("the solver misses the exact solution of the rod");
    }
}

void Demo::RunUndisturbed()
{
    Heading(2, "A run that nobody disturbs, kept in memory");
    mOut << "   " << Counted(mModel.mesh.nodes.size(), "node") << ", "
         << Counted(mModel.mesh.elements.size(), "element") << ", " << Counted(mModel.steps, "step")
         << " of " << Decimal(mModel.timeStep, 1) << " s\n";
    Progress progress = NewProgress();
    const auto start = std::chrono::steady_clock::now();
    HeatSolver solver(mModel);
    mExpected.push_back(solver.InitialField());
    unsigned long long iterations = 0;
    for (std::uint32_t step = 1; step <= mModel.steps; ++step) {
        mExpected.push_back(mExpected.back());
        iterations += solver.Advance(mExpected.back());
        progress.Show(step);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    progress.Finish(Seconds(taken.count()) + ", " + Grouped(iterations) + " solver iterations");
}

void Demo::RunAndKill()
{
    Heading(3, "The same run, stored by a process that will not live to see its end");
    mOut << "   A checkpoint every " << mPlan.checkpointEvery << " steps, a new pool every "
         << mPlan.layout.framesInPool << " frames.\n";
    Progress progress = NewProgress();
    mKill = KillWriterAt(mOptions.killStep, mPlan, mModel,
                         [&](std::uint32_t step) { progress.Show(step); });
    progress.Finish("SIGKILL");
    mOut << "   Process " << mKill.process << " is gone. Step " << mKill.checkpointStep
         << " was its last checkpoint; it had announced step " << mKill.announcedStep << ":\n   "
         << Counted(mKill.announcedStep - mKill.checkpointStep, "frame") << " without a flush.\n";
}

// Tells how the killed run was found, and lets it go on.
class Demo::Resumed final : public ResumeObserver
{
public:
    explicit Resumed(Demo& demo) : mDemo(demo), mProgress(demo.NewProgress()) {}

    void Found(const StoppedRun& run) override
    {
        if (run.wholeFrames <= mDemo.mKill.checkpointStep) {
            throw std::runtime_error("frames were lost that a checkpoint had covered");
        }
        mDemo.mResumedAt = run.wholeFrames;
        mDemo.mOut << "   results.sim: " << Counted(run.pools, "pool") << ", " << Grouped(run.bytes)
                   << " bytes of data. Whole: " << Counted(run.wholeFrames, "frame")
                   << ", steps 0 to " << run.wholeFrames - 1 << ".\n   " << Leftover(run)
                   << "\n   Going on with step " << run.wholeFrames
                   << ", from the stored model and field alone.\n";
    }

    void Stored(std::uint32_t step) override { mProgress.Show(step); }

    void Finish(const StoredRunReport& report)
    {
        mProgress.Finish("");
        mDemo.mOut << "   " << Counted(report.lastStep - report.firstStep + 1, "frame") << ", "
                   << Grouped(report.bytes) << " bytes: stored in " << Seconds(report.storing)
                   << " (" << Rate(report.bytes, report.storing) << "), made durable in "
                   << Seconds(report.syncing) << ", solved in " << Seconds(report.solving) << ".\n";
    }

private:
    static std::string Leftover(const StoppedRun& run)
    {
        if (run.leftover == 0) {
            return "Nothing is left over behind them.";
        }
        return "Behind them " + Grouped(run.leftover) + " of " + Grouped(run.frameBytes) +
               " bytes of the next frame, which is " +
               (run.leftoverState == FrameState::Cut ? "cut" : "damaged") +
               " and will be written over.";
    }

    Demo& mDemo;
    Progress mProgress;
};

void Demo::Resume()
{
    Heading(4, "Reopened for update");
    Resumed resumed(*this);
    resumed.Finish(ResumeRun(mPlan, resumed));
}

History Demo::ReadAndCompare()
{
    Heading(5, "Read back in a new document, results.sim first, model.sim second");
    History history = ReadHistory(mPlan);
    mOut << "   " << Counted(history.frames.size() - 1, "locator")
         << " followed from the last step back to the first, "
         << Counted(history.poolChanges, "time") << " into another pool;\n   "
         << Counted(history.frames.size(), "locator") << " lead to one mesh in the other file.\n   "
         << Grouped(history.bytes) << " bytes of frames in " << Seconds(history.seconds) << " ("
         << Rate(history.bytes, history.seconds) << ", checksums included).\n";
    if (!(history.model == mModel)) {
        throw std::runtime_error("the stored model is not the one that was computed");
    }
    const long long difference = FirstDifference(history.frames, mExpected);
    if (difference >= 0) {
        throw std::runtime_error("the stored field of step " + std::to_string(difference) +
                                 " differs from the undisturbed run");
    }
    mOut << "   " << Counted(history.frames.size(), "field") << " of "
         << Counted(mModel.mesh.nodes.size(), "value")
         << ": every bit equals the undisturbed run.\n";
    return history;
}

void Demo::Draw(const History& history)
{
    Heading(6, "The last field, drawn from what is stored");
    const Frame& last = history.frames.back();
    const std::string svg = DrawField(history.model, last.step, last.time, last.values);
    std::ofstream file(mPictureFile, std::ios::binary);
    file << svg;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + mPictureFile);
    }
    mOut << "   " << mPictureFile << "\n";
}

void Demo::Summarise(const History& history)
{
    const auto line = [&](const std::string& name, unsigned pools, const std::string& content) {
        mOut << "   " << name << ": " << Grouped(std::filesystem::file_size(name)) << " bytes, "
             << Counted(pools, "pool") << ", " << content << "\n";
    };
    mOut << "\nFiles\n";
    line(mPlan.modelFile, history.modelPools,
         Counted(mModel.mesh.nodes.size(), "node") + ", " +
             Counted(mModel.mesh.elements.size(), "element") + ", " +
             Grouped(mModel.mesh.boundaries.size()) + " named boundaries");
    line(mPlan.resultsFile, history.resultsPools, Counted(history.frames.size(), "frame"));

    mOut << "\nProved: killed when it had announced step " << mKill.announcedStep
         << ", the run went on at step " << mResumedAt << ", and all " << history.frames.size()
         << " stored fields\nequal those of an undisturbed run bit for "
         << "bit; the solver is within " << Decimal(mRod.largestError * 100.0, 2)
         << " % of an exact solution." << std::endl;
}

} // namespace

void RunDemo(const DemoOptions& options, std::ostream& out)
{
    const LibraryInUse library;
    Demo(options, out).Run();
}

} // namespace heat
