#include "ModelLocatorStream.h"

#include "ModelCheck.h"
#include "Rules.h"

#include <algorithm>
#include <exception>

namespace model {
namespace {

constexpr char kRead[] = "VUKSimRpm_BStreamReadLocator";
constexpr char kWrite[] = "VUKSimRpm_BStreamWriteLocator";
constexpr std::uint64_t kLeastChunk = 16;

// The values that exceptions carry are cut to 32 bits.
std::uint64_t Cut(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value);
}
} // namespace

ReadLocator::ReadLocator(const Locator& start, std::uint64_t limit, std::uint64_t chunkSize)
    : mStart(start), mLimit(limit), mChunk(std::max(chunkSize, kLeastChunk))
{}

char* ReadLocator::PrepRead(std::uint64_t requestedLength)
{
    Check(requestedLength > 0, "requestedLength > 0", kRead, 37);
    if (!Rules::Current().readAheadIgnoresTheLimit) {
        CheckLimit(requestedLength, 59);
    }
    if (mHeld.size() < mCursor + requestedLength) {
        ReadAhead();
    }
    CheckLimit(requestedLength, 59);
    if (mCursor + requestedLength > mHeld.size()) {
        Raise("VUKSimExcRequestTooBig", kRead, 62, {Cut(requestedLength), Cut(mHeld.size())});
    }
    mPrepared = mHeld.substr(mCursor, requestedLength);
    mCursor += requestedLength;
    return mPrepared.data();
}

void ReadLocator::ReadAhead()
{
    std::string held = mHeld.substr(mCursor);
    const std::uint64_t kept = held.size();
    held.resize(mChunk);
    const std::uint64_t got =
        (mStart + (mBase + mHeld.size())).Read(mChunk - kept, held.data() + kept);
    held.resize(kept + got);
    mHeld = held;
    mBase += mCursor;
    mCursor = 0;
}

void ReadLocator::Read(char* destination, std::uint32_t length)
{
    if (length == 0) {
        return;
    }
    CheckLimit(length, 75);
    if (length <= mChunk) {
        std::copy_n(PrepRead(length), length, destination);
        return;
    }
    const std::uint64_t kept = mHeld.copy(destination, length, mCursor);
    mBase += mHeld.size();
    mCursor = 0;
    mHeld.clear();
    const std::uint64_t got = (mStart + mBase).Read(length - kept, destination + kept);
    mBase += got;
    if (kept + got < length) {
        Raise("VUKSimExcRequestTooBig", kRead, 62, {length, Cut(kept + got)});
    }
}

const Directory* ReadLocator::SourceDir() const
{
    return mStart.Directory().get();
}

void ReadLocator::CheckLimit(std::uint64_t length, int line) const
{
    const std::uint64_t reached = mBase + mCursor + length;
    if (mLimit != 0 && reached > mLimit) {
        Raise("VUKSimExcShortBuffer", kRead, line, {Cut(reached), Cut(mLimit)});
    }
}

WriteLocator::WriteLocator(const Locator& start, std::uint64_t limit, std::uint64_t chunkSize)
    : mStart(start), mLimit(limit), mBuffer(std::max(chunkSize, kLeastChunk), '\0')
{}

WriteLocator::~WriteLocator() noexcept(false)
{
    try {
        Flush();
    } catch (const Failure&) {
        if (std::uncaught_exceptions() == 0) {
            throw;
        }
    }
}

char* WriteLocator::PrepWrite(std::uint64_t requestedLength)
{
    Check(requestedLength > 0, "requestedLength > 0", kWrite, 37);
    if (mFill + requestedLength > mBuffer.size()) {
        Flush();
    }
    CheckLimit(mBase + mFill, requestedLength, 50);
    if (mFill + requestedLength > mBuffer.size()) {
        Raise("VUKSimExcRequestTooBig", kWrite, 53, {Cut(requestedLength), Cut(mBuffer.size())});
    }
    mFill += requestedLength;
    return mBuffer.data() + mFill - requestedLength;
}

void WriteLocator::Write(const char* source, std::uint32_t length)
{
    if (length == 0) {
        return;
    }
    CheckLimit(mBase + mFill, length, 66);
    if (mFill + length <= mBuffer.size()) {
        std::copy_n(source, length, PrepWrite(length));
        return;
    }
    Flush();
    CheckLimit(mBase, length, 74);
    (mStart + mBase).Write(length, source);
    mBase += length;
}

void WriteLocator::Flush()
{
    if (mFill != 0) {
        (mStart + mBase).Write(mFill, mBuffer.data());
        mBase += mFill;
        mFill = 0;
    }
}

const Directory* WriteLocator::SourceDir() const
{
    return mStart.Directory().get();
}

void WriteLocator::CheckLimit(std::uint64_t from, std::uint64_t length, int line) const
{
    if (mLimit != 0 && from + length > mLimit) {
        Raise("VUKSimExcShortBuffer", kWrite, line, {Cut(from + length), Cut(mLimit)});
    }
}
} // namespace model
