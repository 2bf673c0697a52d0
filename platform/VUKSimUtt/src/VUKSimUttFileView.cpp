#include "VUKSimUttFileView.h"

#include "VUKSimUttSystemCalls.h"

#include <algorithm>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace {

// Smaller files are read and written by calls: mapping one costs as much as some ten of them.
constexpr unsigned long long kSmallestMapped = 65536; // bytes

// A map leads twice as far as the file, so that a file that grows is seldom mapped again.
constexpr unsigned long long kGrowth = 2;

// Pages are taken out of the map when there was a write, since the last sync, to each so many.
constexpr unsigned long long kPagesToAWrite = 32;
constexpr unsigned long long kFewestWrites = 16;

// Address space is 47 bits wide; a file of a petabyte gets no map.
constexpr unsigned long long kLargestMapped = 1ULL << 45;

VUKSimUttSystemCalls& Calls() noexcept
{
    return VUKSimUttSystemCalls::Current();
}

unsigned long long PageSize() noexcept
{
    static const auto size = static_cast<unsigned long long>(::sysconf(_SC_PAGESIZE));
    return size;
}

// Where the last whole page of a file of `size` bytes begins, the watch.
unsigned long long CoveredEnd(unsigned long long size) noexcept
{
    const unsigned long long pages = size / PageSize();
    return size < kSmallestMapped || pages == 0 ? 0 : (pages - 1) * PageSize();
}

} // namespace

bool VUKSimUttFileView::Map(int descriptor, bool writable, unsigned long long size) noexcept
{
    Drop();
    if (CoveredEnd(size) == 0 || size > kLargestMapped) {
        return false;
    }
    const std::size_t length = size / PageSize() * PageSize() * kGrowth;
    void* const bytes = Calls().mmap(nullptr, length, PROT_READ | (writable ? PROT_WRITE : 0),
                                     MAP_SHARED, descriptor, 0);
    if (bytes == MAP_FAILED) {
        return false;
    }
    if (!mRange.Guard(static_cast<char*>(bytes), length)) {
        Calls().munmap(bytes, length);
        return false;
    }
    mBytes = static_cast<char*>(bytes);
    mMapped = length;
    Follow(size);
    BeginCount();
    return true;
}

bool VUKSimUttFileView::Read(unsigned long long position, char* buffer,
                             unsigned long length) const noexcept
{
    if (!Intact()) {
        return false;
    }
    std::memcpy(buffer, mBytes + position, length);
    return Intact();
}

bool VUKSimUttFileView::Write(unsigned long long position, const char* buffer,
                              unsigned long length) noexcept
{
    CountWrite();
    if (!Intact()) {
        return false;
    }
    std::memcpy(mBytes + position, buffer, length);
    return Intact();
}

void VUKSimUttFileView::Follow(unsigned long long size) noexcept
{
    mEnd = CoveredEnd(std::min<unsigned long long>(size, mMapped));
    mWatch = mBytes + mEnd;
}

bool VUKSimUttFileView::WouldCover(unsigned long long size, unsigned long long position,
                                   unsigned long long length) noexcept
{
    const unsigned long long end = CoveredEnd(size);
    return position < end && length <= end - position;
}

void VUKSimUttFileView::BeginCount() noexcept
{
    mWritesLeft = std::max(kFewestWrites, mEnd / PageSize() / kPagesToAWrite);
}

// The system lets the first write to a page that is in the map for reading, as all are behind a
// sync, look at all blocks of the page's folio, which may be hundreds: some microseconds for each
// page. A page that is not in the map comes back with its folio, ready to be written to. To take
// all out costs as much as some thousand such writes in 256 MiB, so that it is done when as many
// were seen, once.
void VUKSimUttFileView::TakeOutPages() noexcept
{
    static_cast<void>(Calls().madvise(mBytes, mMapped, MADV_DONTNEED)); // else they stay
}

void VUKSimUttFileView::Drop() noexcept
{
    if (mBytes == nullptr) {
        return;
    }
    mRange.Release();
    Calls().munmap(mBytes, mMapped);
    mBytes = nullptr;
    mWatch = nullptr;
    mEnd = 0;
    mMapped = 0;
}
