#include "VUKSimRpm_BStreamAppendToPool.h"

#include "VUKSimExcBrokenStream.h"
#include "VUKSimExcCantDerefLocator.h"
#include "VUKSimExcRequestTooBig.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimRpm_PoolDirectoryImpl.h"

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
      mExceptionsAtBirth(std::uncaught_exceptions()), mChunk(chunkSize)
{
    mChunk.AllocateOnce();
    BeginChunk();
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

void VUKSimRpm_BStreamAppendToPool::Flush()
{
    if (Fill() == 0 && mPool.Null()) {
        return; // all that was given lies in a pool that is closed by now
    }
    if (Fill() != 0) {
        ExtendAndWrite(mChunk.Begin(), Fill());
        BeginChunk();
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

// Where the room as it stands does not do: for too many or none.
char* VUKSimRpm_BStreamAppendToPool::PrepWriteElsewhere(unsigned long requestedLength)
{
    VUKSIMRPM_ASSERT(requestedLength > 0, kSource, at::kPrepNothing);
    Flush();
    if (requestedLength > Room()) {
        VUKSimExcRequestTooBig(static_cast<unsigned>(requestedLength),
                               static_cast<unsigned>(mChunk.Size()))
            .Throw(kSource, at::kPrepTooBig);
    }
    return std::exchange(mNext, mNext + requestedLength);
}

void VUKSimRpm_BStreamAppendToPool::WriteElsewhere(const char* source, unsigned int length)
{
    if (length != 0) {
        Flush();
        ExtendAndWrite(source, length);
        BeginChunk();
    }
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

// An empty chunk for the bytes that come next.
void VUKSimRpm_BStreamAppendToPool::BeginChunk()
{
    mChunk.BeginAs(mExpectedEnd.FilePosition(), nullptr, 0);
    mNext = mChunk.Begin();
}
