#pragma once

#include "FrameWriter.h"
#include "Model.h"

#include <cstdint>
#include <string>

namespace heat {

/// Where and how a run is stored.
struct StoredRunPlan
{
    std::string modelFile;
    std::string resultsFile;
    FrameLayout layout;
    std::uint32_t checkpointEvery = 10; // steps
};

/// Told how a stored run gets on; the default looks on without a word.
class StoredRunObserver
{
public:
    virtual ~StoredRunObserver() = default;

    /// `step` was computed and given to the writer.
    virtual void Stored(std::uint32_t step) { static_cast<void>(step); }

    /// Everything up to `step` is about to be made durable.
    virtual void BeforeCheckpoint(std::uint32_t step) { static_cast<void>(step); }
};

/// What a run did, and how long it took: seconds by the clock on the wall.
struct StoredRunReport
{
    std::uint32_t firstStep = 0; // stored by this run; the steps before were there already
    std::uint32_t lastStep = 0;
    unsigned long long bytes = 0; // of frame records stored by this run
    double solving = 0.0;         // s
    double storing = 0.0;         // s, appending
    double syncing = 0.0;         // s, at checkpoints
};

/// The first four characters of every file's signature.
inline constexpr char kSignature[] = "HEAT";

/// Creates both files, in place of what they held, stores the model in one and every field of its
/// run in the other.
StoredRunReport RunFromStart(const StoredRunPlan& plan, const Model& model,
                             StoredRunObserver& observer);

/// How a run was found that somebody stopped.
struct StoppedRun
{
    Model model;                   // as stored
    std::uint32_t wholeFrames = 0; // steps 0 to wholeFrames - 1
    unsigned pools = 0;            // of the results
    unsigned long long bytes = 0;  // data in them
    unsigned long long frameBytes = 0;
    unsigned long long leftover = 0; // bytes behind the last whole frame
    FrameState leftoverState = FrameState::Cut;
};

/// Told once, before a stopped run goes on.
class ResumeObserver : public StoredRunObserver
{
public:
    virtual void Found(const StoppedRun& run) = 0;
};

/// Opens both files of a stopped run, which are all that it needs, and goes on behind the last
/// whole frame to the end.
/// \throws std::runtime_error when the files do not hold such a run.
StoredRunReport ResumeRun(const StoredRunPlan& plan, ResumeObserver& observer);

} // namespace heat
