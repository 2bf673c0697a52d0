#include "VUKSimRpm_BStreamReadLocator.h"

#include "VUKSimExcRequestTooBig.h"
#include "VUKSimExcShortBuffer.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_StreamLimits.h"

#include <cstring>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamReadLocator";

namespace at {
constexpr int kPrepNothing = 37;
constexpr int kPrepBeyondLimit = 59;
constexpr int kShortfall = 62;
constexpr int kReadBeyondLimit = 75;
} // namespace at
} // namespace

VUKSimRpm_BStreamReadLocator::VUKSimRpm_BStreamReadLocator(const VUKSimRpm_Locator& start,
                                                           const unsigned long long& limit,
                                                           unsigned long chunkSize)
    : mStart(start), mLimit(limit), mChunkSize(VUKSimRpm_StreamLimits::ChunkSize(chunkSize))
{}

VUKSimRpm_BStreamReadLocator::~VUKSimRpm_BStreamReadLocator() = default;

char* VUKSimRpm_BStreamReadLocator::PrepRead(unsigned long requestedLength)
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    if (mFill - mCursor < requestedLength) {
        ReadAhead();
    }
    CheckLimit(requestedLength, at::kPrepBeyondLimit);
    if (mFill - mCursor < requestedLength) {
        VUKSimExcRequestTooBig(static_cast<unsigned>(requestedLength), static_cast<unsigned>(mFill))
            .Throw(kSource, at::kShortfall);
    }
    char* bytes = mBuffer.Bytes() + mCursor;
    mCursor += requestedLength;
    return bytes;
}

void VUKSimRpm_BStreamReadLocator::Read(char* destination, unsigned int length)
{
    if (length == 0) {
        return;
    }
    CheckLimit(length, at::kReadBeyondLimit);
    if (length <= mChunkSize) {
        std::memcpy(destination, PrepRead(length), length);
    } else {
        ReadPastBuffer(destination, length);
    }
}

VUKSimRpm_PoolDirectoryImpl* VUKSimRpm_BStreamReadLocator::SourceDir() const
{
    return mStart.Directory().get();
}

VUKSimRpm_MemoryPool* VUKSimRpm_BStreamReadLocator::IMPool() const
{
    return mStart.IMPool();
}

void VUKSimRpm_BStreamReadLocator::CheckLimit(unsigned long length, int line) const
{
    const unsigned long position = mBase + mCursor;
    if (VUKSimRpm_StreamLimits::Exceeds(position, length, mLimit)) {
        VUKSimExcShortBuffer(static_cast<unsigned>(position + length),
                             static_cast<unsigned>(mLimit))
            .Throw(kSource, line);
    }
}

// Moves what is left to the front of the buffer and fills the rest from the pool, past the limit
// too: reading there does no harm. What was left stays readable when the pool fails.
void VUKSimRpm_BStreamReadLocator::ReadAhead()
{
    mBuffer.AllocateOnce(mChunkSize);
    const unsigned long kept = mFill - mCursor;
    std::memmove(mBuffer.Bytes(), mBuffer.Bytes() + mCursor, kept);
    mBase += mCursor;
    mCursor = 0;
    mFill = kept;
    mFill += (mStart + (mBase + kept)).Read(mChunkSize - kept, mBuffer.Bytes() + kept);
}

// A run longer than a chunk: the bytes held, then the rest straight from the pool.
void VUKSimRpm_BStreamReadLocator::ReadPastBuffer(char* destination, unsigned int length)
{
    const unsigned long held = mFill - mCursor;
    if (held > 0) {
        std::memcpy(destination, mBuffer.Bytes() + mCursor, held);
    }
    mBase += mFill;
    mCursor = 0;
    mFill = 0;
    const unsigned long got = (mStart + mBase).Read(length - held, destination + held);
    mBase += got;
    if (held + got < length) {
        VUKSimExcRequestTooBig(length, static_cast<unsigned>(held + got))
            .Throw(kSource, at::kShortfall);
    }
}
