#include "VUKSimRpm_BStreamReadLocator.h"

#include "VUKSimExcRequestTooBig.h"
#include "VUKSimExcShortBuffer.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_StreamLimits.h"

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
    : mStart(start), mLimit(limit), mChunk(chunkSize)
{}

VUKSimRpm_BStreamReadLocator::~VUKSimRpm_BStreamReadLocator() = default;

VUKSimRpm_PoolDirectoryImpl* VUKSimRpm_BStreamReadLocator::SourceDir() const
{
    return mStart.Directory().get();
}

VUKSimRpm_MemoryPool* VUKSimRpm_BStreamReadLocator::IMPool() const
{
    return mStart.IMPool();
}

// Where the bytes at hand do not do: for the first ones, too many or none.
char* VUKSimRpm_BStreamReadLocator::PrepReadElsewhere(unsigned long requestedLength)
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    if (Held() < requestedLength) {
        ReadAhead();
    }
    CheckLimit(requestedLength, at::kPrepBeyondLimit);
    if (Held() < requestedLength) {
        VUKSimExcRequestTooBig(static_cast<unsigned>(requestedLength), static_cast<unsigned>(mFill))
            .Throw(kSource, at::kShortfall);
    }
    return std::exchange(mNext, mNext + requestedLength);
}

void VUKSimRpm_BStreamReadLocator::ReadElsewhere(char* destination, unsigned int length)
{
    if (length == 0) {
        return;
    }
    CheckLimit(length, at::kReadBeyondLimit);
    if (length <= mChunk.Size()) {
        std::memcpy(destination, PrepReadElsewhere(length), length);
    } else {
        ReadPastChunk(destination, length);
    }
}

void VUKSimRpm_BStreamReadLocator::CheckLimit(unsigned long length, int line) const
{
    const unsigned long position = mBase + Consumed();
    if (VUKSimRpm_StreamLimits::Exceeds(position, length, mLimit)) {
        VUKSimExcShortBuffer(static_cast<unsigned>(position + length),
                             static_cast<unsigned>(mLimit))
            .Throw(kSource, line);
    }
}

// Moves what is left to the front of the chunk and fills the rest from the pool, past the limit
// too: reading there does no harm. What was left stays readable when the pool fails.
void VUKSimRpm_BStreamReadLocator::ReadAhead()
{
    const unsigned long kept = Held();
    const unsigned long consumed = Consumed();
    mChunk.AllocateOnce();
    mChunk.BeginAs((mStart + (mBase + consumed)).FilePosition(), mNext, kept);
    mBase += consumed;
    Hold(kept);
    Hold(kept + (mStart + (mBase + kept)).Read(mChunk.Size() - kept, mChunk.Begin() + kept));
}

// A run longer than a chunk: the bytes held, then the rest straight from the pool.
void VUKSimRpm_BStreamReadLocator::ReadPastChunk(char* destination, unsigned int length)
{
    const unsigned long held = Held();
    if (held > 0) {
        std::memcpy(destination, mNext, held);
    }
    mBase += mFill;
    Hold(0);
    const unsigned long got = (mStart + mBase).Read(length - held, destination + held);
    mBase += got;
    if (held + got < length) {
        VUKSimExcRequestTooBig(length, static_cast<unsigned>(held + got))
            .Throw(kSource, at::kShortfall);
    }
}

// The first `fill` bytes of the chunk are to be consumed.
void VUKSimRpm_BStreamReadLocator::Hold(unsigned long fill) noexcept
{
    mFill = fill;
    mNext = mChunk.Begin();
    mStop = mNext + VUKSimRpm_StreamLimits::Allowed(mBase, fill, mLimit);
}
