#pragma once

#include "HistoryEnd.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Locator.h"

#include <optional>
#include <vector>

namespace heat {

/// How frames are spread over pools.
struct FrameLayout
{
    unsigned framesInPool = 40;        // at least; a pool is left only behind a checkpoint
    unsigned long chunkBytes = 131072; // gathered in memory before they go to the file
};

/// Appends frames to a file of results, each linked to the one before it.
///
/// Frames wait in memory and in the system's caches until Checkpoint makes them durable; a writer
/// whose work is done ends with one. (Destroyed without, it still hands over what waits, and a disk
/// that refuses it then ends the process.) The document that owns the file must outlive the writer
/// and hold the file that `mesh` lies in.
class FrameWriter
{
public:
    /// Goes on where `end` says that `results` stops being whole. Leftover bytes there, a frame
    /// that was cut when its writer died, are overwritten before the pool grows again.
    FrameWriter(const VUKSimRpm_File& results, const VUKSimRpm_Locator& mesh,
                const FrameLayout& layout, const HistoryEnd& end);

    FrameWriter(const FrameWriter&) = delete;
    FrameWriter& operator=(const FrameWriter&) = delete;

    /// Appends the next step's frame.
    void Append(double time, const std::vector<double>& values);

    /// Returns when all frames so far would survive the loss of power.
    void Checkpoint();

    /// Bytes of frame records taken by this writer.
    [[nodiscard]] unsigned long long Bytes() const noexcept { return mBytes; }

private:
    void StartPool();
    void Store(const std::vector<char>& record);

    VUKSimRpm_File mResults;
    VUKSimRpm_Locator mMesh;
    FrameLayout mLayout;
    std::uint32_t mStep;          // of the next frame
    VUKSimRpm_Locator mPrevious;  // the frame before it; null at first
    VUKSimRpm_Locator mNext;      // where its record goes
    unsigned long long mLeftover; // bytes from there on that exist already, worth nothing
    unsigned mFramesInPool;
    bool mAtCheckpoint = false; // all frames in the file are durable
    unsigned long long mBytes = 0;
    std::optional<VUKSimRpm_BStreamAppendToPool> mStream; // at the end of the current pool
};

} // namespace heat
