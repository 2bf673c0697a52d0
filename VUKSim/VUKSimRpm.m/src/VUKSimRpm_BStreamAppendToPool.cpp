#include "VUKSimRpm_BStreamAppendToPool.h"

#include "VUKSimExcBrokenStream.h"
#include "VUKSimExcCantDerefLocator.h"
#include "VUKSimExcRequestTooBig.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"
#include "VUKSimRpm_StreamLimits.h"

#include <cstring>
#include <exception>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_BStreamAppendToPool";

namespace at {
constexpr int kConstructorPoolGone = 18;
constexpr int kPrepNothing = 33;
constexpr int kPrepTooBig = 40;
constexpr int kFlushEndElsewhere = 73;
constexpr int kExtendEndMoved = 89;
constexpr int kSourceDirPoolGone = 101;
} // namespace at

const VUKSimRpm_Pool& Living(const VUKSimRpm_Pool& pool, int line)
{
    if (pool.Null()) {
        VUKSimExcCantDerefLocator().Throw(kSource, line);
    }
    return pool;
}
} // namespace

VUKSimRpm_BStreamAppendToPool::VUKSimRpm_BStreamAppendToPool(const VUKSimRpm_Pool& pool,
                                                             unsigned long chunkSize)
    : mPool(pool), mStart(Living(mPool, at::kConstructorPoolGone).End()), mExpectedEnd(mStart),
      mChunkSize(VUKSimRpm_StreamLimits::ChunkSize(chunkSize)),
      mExceptionsAtBirth(std::uncaught_exceptions())
{
    mBuffer.AllocateOnce(mChunkSize);
}

VUKSimRpm_BStreamAppendToPool::~VUKSimRpm_BStreamAppendToPool() noexcept(false)
{
    try {
        Flush();
    } catch (...) {
        if (std::uncaught_exceptions() <= mExceptionsAtBirth) {
            throw;
        }
    }
}

char* VUKSimRpm_BStreamAppendToPool::PrepWrite(unsigned long requestedLength)
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    if (requestedLength > mChunkSize - mFill) {
        Flush();
    }
    if (requestedLength > mChunkSize - mFill) {
        VUKSimExcRequestTooBig(static_cast<unsigned>(requestedLength),
                               static_cast<unsigned>(mChunkSize))
            .Throw(kSource, at::kPrepTooBig);
    }
    char* room = mBuffer.Bytes() + mFill;
    mFill += requestedLength;
    return room;
}

void VUKSimRpm_BStreamAppendToPool::Write(const char* source, unsigned int length)
{
    if (length == 0) {
        return;
    }
    if (length <= mChunkSize - mFill) {
        std::memcpy(PrepWrite(length), source, length);
        return;
    }
    Flush();
    ExtendAndWrite(source, length);
}

void VUKSimRpm_BStreamAppendToPool::Flush()
{
    if (mFill == 0 && mPool.Null()) {
        return; // all that was given lies in a pool that is closed by now
    }
    if (mFill != 0) {
        ExtendAndWrite(mBuffer.Bytes(), mFill);
        mFill = 0;
    }
    VUKSIMRPM_ASSERT(mStart + Length() == mPool.End(), kSource, at::kFlushEndElsewhere);
}

VUKSimRpm_PoolDirectoryImpl* VUKSimRpm_BStreamAppendToPool::SourceDir() const
{
    return Living(mPool, at::kSourceDirPoolGone).End().Directory().get();
}

VUKSimRpm_MemoryPool* VUKSimRpm_BStreamAppendToPool::IMPool() const
{
    return nullptr;
}

// Nothing is rolled back: after a failure the pool may be longer, and the stream, which no longer
// finds the end where it left it, appends no more.
void VUKSimRpm_BStreamAppendToPool::ExtendAndWrite(const char* source, unsigned long length)
{
    if (mPool.Null() || !(mPool.End() == mExpectedEnd)) {
        VUKSimExcBrokenStream().Throw(kSource, at::kExtendEndMoved);
    }
    mAppended += length;
    mPool.Allocate(length).Write(length, source);
    mExpectedEnd = mPool.End();
}
