#include "ModelCheck.h"
#include "ModelLocatorStream.h"

#include <algorithm>
#include <exception>

namespace model {
namespace {

constexpr char kSource[] = "VUKSimRpm_BStreamAppendToPool";
constexpr std::uint64_t kLeastChunk = 16;

Locator EndOf(const Pool& pool)
{
    if (pool.Null()) {
        Raise("VUKSimExcCantDerefLocator", kSource, 18);
    }
    return pool.End();
}
} // namespace

AppendToPool::AppendToPool(const Pool& pool, std::uint64_t chunkSize)
    : mPool(pool), mStart(EndOf(pool)), mExpectedEnd(mStart),
      mBuffer(std::max(chunkSize, kLeastChunk), '\0')
{}

AppendToPool::~AppendToPool() noexcept(false)
{
    try {
        Flush();
    } catch (const Failure&) {
        if (std::uncaught_exceptions() == 0) {
            throw;
        }
    }
}

char* AppendToPool::PrepWrite(std::uint64_t requestedLength)
{
    Check(requestedLength > 0, "requestedLength > 0", kSource, 33);
    if (mFill + requestedLength > mBuffer.size()) {
        Flush();
        if (mFill + requestedLength > mBuffer.size()) {
            Raise("VUKSimExcRequestTooBig", kSource, 40, {requestedLength, mBuffer.size()});
        }
    }
    mFill += requestedLength;
    return mBuffer.data() + mFill - requestedLength;
}

void AppendToPool::Write(const char* source, std::uint32_t length)
{
    if (length == 0) {
        return;
    }
    if (mFill + length <= mBuffer.size()) {
        std::copy_n(source, length, PrepWrite(length));
        return;
    }
    Flush();
    ExtendAndWrite(source, length);
}

void AppendToPool::Flush()
{
    if (mFill != 0) {
        ExtendAndWrite(mBuffer.data(), mFill);
        mFill = 0;
    } else if (mPool.Null()) {
        return; // nothing was given that could be lost
    }
    Check(mStart + Length() == mPool.End(), "mStart + Length() == mPool.End()", kSource, 73);
}

const Directory* AppendToPool::SourceDir() const
{
    const auto pool = mPool.Impl().lock();
    if (pool == nullptr) {
        Raise("VUKSimExcCantDerefLocator", kSource, 101);
    }
    return pool->Dir().get();
}

void AppendToPool::ExtendAndWrite(const char* source, std::uint64_t length)
{
    if (mPool.Null() || !(mPool.End() == mExpectedEnd)) {
        Raise("VUKSimExcBrokenStream", kSource, 89);
    }
    mAppended += length;
    mPool.Allocate(length).Write(length, source);
    mExpectedEnd = mPool.End();
}
} // namespace model
