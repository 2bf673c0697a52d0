#include "VUKSimRpm_BStreamWriteLocator.h"

#include "VUKSimExcRequestTooBig.h"
#include "VUKSimExcShortBuffer.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_StreamLimits.h"

#include <cstring>
#include <exception>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamWriteLocator";

namespace at {
constexpr int kPrepNothing = 37;
constexpr int kPrepBeyondLimit = 50;
constexpr int kPrepTooBig = 53;
constexpr int kWriteBeyondLimit = 66;
constexpr int kLongWriteBeyondLimit = 74;
} // namespace at
} // namespace

VUKSimRpm_BStreamWriteLocator::VUKSimRpm_BStreamWriteLocator(const VUKSimRpm_Locator& start,
                                                             const unsigned long long& limit,
                                                             unsigned long chunkSize)
    : mStart(start), mLimit(limit), mExceptionsAtBirth(std::uncaught_exceptions()),
      mChunk(chunkSize)
{}

VUKSimRpm_BStreamWriteLocator::~VUKSimRpm_BStreamWriteLocator() noexcept(false)
{
    try {
        Flush();
    } catch (...) {
        if (std::uncaught_exceptions() <= mExceptionsAtBirth) {
            throw;
        }
    }
}

void VUKSimRpm_BStreamWriteLocator::Flush()
{
    if (Fill() != 0) {
        (mStart + mBase).Write(Fill(), mChunk.Begin());
        mBase += Fill();
        BeginChunk();
    }
}

VUKSimRpm_PoolDirectoryImpl* VUKSimRpm_BStreamWriteLocator::SourceDir() const
{
    return mStart.Directory().get();
}

VUKSimRpm_MemoryPool* VUKSimRpm_BStreamWriteLocator::IMPool() const
{
    return mStart.IMPool();
}

void VUKSimRpm_BStreamWriteLocator::CheckLimit(unsigned long from, unsigned long length,
                                               int line) const
{
    if (VUKSimRpm_StreamLimits::Exceeds(from, length, mLimit)) {
        VUKSimExcShortBuffer(static_cast<unsigned>(from + length), static_cast<unsigned>(mLimit))
            .Throw(kSource, line);
    }
}

// Where the room as it stands does not do: for the first bytes, too many or none.
char* VUKSimRpm_BStreamWriteLocator::PrepWriteElsewhere(unsigned long requestedLength)
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    if (mNext == nullptr) {
        mChunk.AllocateOnce();
        BeginChunk();
    }
    if (requestedLength > mChunk.Size() - Fill()) {
        Flush();
    }
    CheckLimit(mBase + Fill(), requestedLength, at::kPrepBeyondLimit);
    if (requestedLength > mChunk.Size()) {
        VUKSimExcRequestTooBig(static_cast<unsigned>(requestedLength),
                               static_cast<unsigned>(mChunk.Size()))
            .Throw(kSource, at::kPrepTooBig);
    }
    return std::exchange(mNext, mNext + requestedLength);
}

void VUKSimRpm_BStreamWriteLocator::WriteElsewhere(const char* source, unsigned int length)
{
    if (length == 0) {
        return;
    }
    CheckLimit(mBase + Fill(), length, at::kWriteBeyondLimit);
    if (length <= mChunk.Size() - Fill()) {
        std::memcpy(PrepWriteElsewhere(length), source, length);
        return;
    }
    // Straight to the pool, whatever the size: what does not fit is not worth another copy.
    Flush();
    CheckLimit(mBase, length, at::kLongWriteBeyondLimit);
    (mStart + mBase).Write(length, source);
    mBase += length;
    if (mNext != nullptr) {
        BeginChunk();
    }
}

// An empty chunk for the bytes from mBase on.
void VUKSimRpm_BStreamWriteLocator::BeginChunk()
{
    mChunk.BeginAs((mStart + mBase).FilePosition(), nullptr, 0);
    mNext = mChunk.Begin();
    mStop = mNext + VUKSimRpm_StreamLimits::Allowed(mBase, mChunk.Size(), mLimit);
}
