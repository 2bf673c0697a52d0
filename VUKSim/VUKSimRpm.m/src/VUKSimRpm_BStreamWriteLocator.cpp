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
    : mStart(start), mLimit(limit), mChunkSize(VUKSimRpm_StreamLimits::ChunkSize(chunkSize)),
      mExceptionsAtBirth(std::uncaught_exceptions())
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

char* VUKSimRpm_BStreamWriteLocator::PrepWrite(unsigned long requestedLength)
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    mBuffer.AllocateOnce(mChunkSize);
    if (requestedLength > mChunkSize - mFill) {
        Flush();
    }
    CheckLimit(mBase + mFill, requestedLength, at::kPrepBeyondLimit);
    if (requestedLength > mChunkSize - mFill) {
        VUKSimExcRequestTooBig(static_cast<unsigned>(requestedLength),
                               static_cast<unsigned>(mChunkSize))
            .Throw(kSource, at::kPrepTooBig);
    }
    char* room = mBuffer.Bytes() + mFill;
    mFill += requestedLength;
    return room;
}

void VUKSimRpm_BStreamWriteLocator::Write(const char* source, unsigned int length)
{
    if (length == 0) {
        return;
    }
    CheckLimit(mBase + mFill, length, at::kWriteBeyondLimit);
    if (length <= mChunkSize - mFill) {
        std::memcpy(PrepWrite(length), source, length);
        return;
    }
    // Straight to the pool, whatever the size: what does not fit is not worth another copy.
    Flush();
    CheckLimit(mBase, length, at::kLongWriteBeyondLimit);
    (mStart + mBase).Write(length, source);
    mBase += length;
}

void VUKSimRpm_BStreamWriteLocator::Flush()
{
    if (mFill != 0) {
        (mStart + mBase).Write(mFill, mBuffer.Bytes());
        mBase += mFill;
        mFill = 0;
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
