#include "VUKSimRpm_MemoryPool.h"

#include "VUKBasMemAllocator.h"
#include "VUKSimRpm_Assert.h"
#include "VUKSimUttShortCopy.h"

#include <algorithm>

namespace {

constexpr char kSource[] = "VUKSim/VUKSimRpm.m/src/VUKSimRpm_MemoryPool";

namespace at {
constexpr int kLoadShort = 30;
constexpr int kReadOtherPool = 41;
constexpr int kReadBefore = 44;
constexpr int kReadBeyondEnd = 45;
constexpr int kWriteOutside = 57;
} // namespace at
} // namespace

VUKSimRpm_MemoryPool::VUKSimRpm_MemoryPool(const VUKSimRpm_Locator& locator, unsigned long size,
                                           const VUKBasAllocator& allocator, char* buffer)
    // The locator loses its memory pool: loading reads the pool, not another image.
    : mAllocator(allocator.Null() ? VUKBasAllocator(new VUKBasMemAllocator) : allocator),
      mLocator(locator, 0), mSize(size),
      mBuffer(buffer != nullptr ? buffer : static_cast<char*>(mAllocator.Alloc(size)))
{
    try {
        const unsigned long r = mLocator.Read(mSize, mBuffer);
        VUKSIMRPM_ASSERT(r == mSize, kSource, at::kLoadShort);
    } catch (...) {
        // The caller's own buffer stays the caller's.
        if (buffer == nullptr) {
            mAllocator.Free(mBuffer);
        }
        throw;
    }
}

VUKSimRpm_MemoryPool::~VUKSimRpm_MemoryPool()
{
    mAllocator.Free(mBuffer);
}

bool VUKSimRpm_MemoryPool::Within(const VUKSimRpm_Locator& location, unsigned long length) const
{
    if (!mLocator.SamePool(location) || !(mLocator <= location)) {
        return false;
    }
    // Compared as what is left, since sums with a caller's length may wrap.
    const unsigned long long offset = location - mLocator;
    return offset <= mSize && length <= mSize - offset;
}

bool VUKSimRpm_MemoryPool::Startin(const VUKSimRpm_Locator& location) const
{
    if (!mLocator.SamePool(location)) [[unlikely]] {
        return mLocator <= location; // which says what is wrong
    }
    return Images(location);
}

unsigned long VUKSimRpm_MemoryPool::Read(const VUKSimRpm_Locator& location, unsigned long length,
                                         char* buffer) const
{
    if (!mLocator.SamePool(location) || !Images(location)) [[unlikely]] {
        RefuseRead(location);
    }
    const unsigned long long offset = location.mOffset - mLocator.mOffset;
    const unsigned long n = std::min<unsigned long long>(length, mSize - offset);
    VUKSimUttShortCopy::Copy(buffer, mBuffer + offset, n);
    return n;
}

void VUKSimRpm_MemoryPool::Write(const VUKSimRpm_Locator& location, unsigned long length,
                                 const char* buffer)
{
    VUKSIMRPM_ASSERT(Within(location, length), kSource, at::kWriteOutside);
    std::copy_n(buffer, length, mBuffer + (location - mLocator));
}

// Says what is wrong with reading from `location`.
void VUKSimRpm_MemoryPool::RefuseRead(const VUKSimRpm_Locator& location) const
{
    VUKSIMRPM_ASSERT(mLocator.SamePool(location), kSource, at::kReadOtherPool);
    VUKSIMRPM_ASSERT(mLocator <= location, kSource, at::kReadBefore);
    VUKSIMRPM_FAIL_ASSERTION(location < mLocator + mSize, kSource, at::kReadBeyondEnd);
}

// Whether the byte at a location of the same pool lies in the image. The sum may wrap, as with
// locators: an image that begins before the data of its pool then holds nothing.
bool VUKSimRpm_MemoryPool::Images(const VUKSimRpm_Locator& location) const noexcept
{
    return mLocator.mOffset <= location.mOffset && location.mOffset < mLocator.mOffset + mSize;
}
