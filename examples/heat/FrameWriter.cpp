#include "FrameWriter.h"

#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_Pool.h"

#include <algorithm>

namespace heat {

namespace {

// Smaller than a chunk, so that the stream gathers the pieces: what does not fit goes straight to
// the file, record by record.
constexpr std::size_t kPieceBytes = 4096;

} // namespace

FrameWriter::FrameWriter(const VUKSimRpm_File& results, const VUKSimRpm_Locator& mesh,
                         const FrameLayout& layout, const HistoryEnd& end)
    : mResults(results), mMesh(mesh), mLayout(layout), mStep(end.frames), mPrevious(end.lastPlace),
      mNext(end.next), mLeftover(end.leftover), mFramesInPool(end.framesInPool)
{
    if (mResults.PoolCount() == 0) {
        StartPool();
    } else {
        mStream.emplace(mResults.Pool(), mLayout.chunkBytes);
    }
}

void FrameWriter::Append(double time, const std::vector<double>& values)
{
    // Only behind a checkpoint: then a crash while the new pool is made can cost no frame. And not
    // while leftover bytes remain: the pool that is left must be whole.
    if (mAtCheckpoint && mLeftover == 0 && mFramesInPool >= mLayout.framesInPool) {
        StartPool();
    }
    const Frame frame{mStep, time, mMesh, mPrevious, values};
    const std::vector<char> record = EncodeFrame(frame, mResults.Pool());
    Store(record);
    mPrevious = mNext;
    mNext += record.size();
    mBytes += record.size();
    mAtCheckpoint = false;
    ++mStep;
    ++mFramesInPool;
}

void FrameWriter::Checkpoint()
{
    mStream->Flush();
    mResults.Flush();
    mAtCheckpoint = true;
}

void FrameWriter::StartPool()
{
    mStream.reset();
    mResults.NewPool(false, nullptr);
    mStream.emplace(mResults.Pool(), mLayout.chunkBytes);
    mNext = mResults.Start();
    mLeftover = 0;
    mFramesInPool = 0;
}

void FrameWriter::Store(const std::vector<char>& record)
{
    const std::size_t over = std::min<std::size_t>(record.size(), mLeftover);
    if (over > 0) {
        VUKSimRpm_BStreamWriteLocator stream(mNext, over, mLayout.chunkBytes);
        stream.Write(record.data(), static_cast<unsigned>(over));
        stream.Flush();
        mLeftover -= over;
    }
    for (std::size_t done = over; done < record.size(); done += kPieceBytes) {
        const std::size_t piece = std::min(kPieceBytes, record.size() - done);
        mStream->Write(record.data() + done, static_cast<unsigned>(piece));
    }
}

} // namespace heat
