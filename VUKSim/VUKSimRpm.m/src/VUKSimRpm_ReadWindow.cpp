#include "VUKSimRpm_ReadWindow.h"

#include "VUKSimRpm_FileImpl.h"
#include "VUKSimRpm_PoolHeader.h"

#include <algorithm>

namespace {

// Pools whose headers lie closer are worth reading a page for.
constexpr unsigned long long kNear = 1024; // bytes

constexpr unsigned long kSingleEntry =
    VUKSimRpm_PoolHeader::kSize + VUKSimRpm_PoolHeader::kEntrySize;
} // namespace

const char* VUKSimRpm_ReadWindow::Bytes(unsigned long long position, unsigned long length)
{
    if (length == 0) {
        return mHeld; // nothing, wherever it lies
    }
    if (length > kPage) {
        VUKSimRpm_Buffer(length).Swap(mLong);
        return mFile.Read(position, length, mLong.Bytes()) < length ? nullptr : mLong.Bytes();
    }
    const bool isNear = position - mAsked < kNear;
    mAsked = position;
    if (!Holds(position, length)) {
        Fill(position, length, isNear);
        if (mSize < length) {
            return nullptr;
        }
    }
    return mHeld + (position - mBegin);
}

// Reads these bytes and those behind them that come at no cost: up to the end of their last page,
// or of what is in use.
void VUKSimRpm_ReadWindow::Fill(unsigned long long position, unsigned long length, bool isNear)
{
    const unsigned long long end = position + length;
    const unsigned long long pageEnd = end + (kPage - end % kPage) % kPage;
    const unsigned long long most = std::min(pageEnd, std::max(end, mFile.LogicalEnd())) - position;
    const unsigned long wanted = isNear ? kPage : std::max(length, kSingleEntry);
    mBegin = position;
    mSize = 0; // should the read fail
    mSize = mFile.Read(position, std::min<unsigned long long>(most, wanted), mHeld);
}
