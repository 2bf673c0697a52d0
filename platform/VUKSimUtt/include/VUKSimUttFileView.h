#pragma once

#include "VUKBas_Export.h"
#include "VUKSimUttGuardedRange.h"
#include "VUKSimUttShortCopy.h"

#include <atomic>
#include <cstddef>

/// The pages of an open file that are read and written in place, as shared memory.
///
/// Bytes in a view are those that system calls on the same file see, at once and both ways. A view
/// covers whole pages from the file's beginning, and stops two pages short of the end: the last
/// whole page is the watch, touched before and after every access. However short others make the
/// file, either the watch is gone, or all that was covered is still there. So no access is begun or
/// believed that a system call would answer otherwise: it reports false, and a call takes its
/// place.
///
/// Positions, lengths and sizes are in bytes.
class VUKBAS_EXPORT VUKSimUttFileView
{
public:
    VUKSimUttFileView() noexcept = default;
    VUKSimUttFileView(const VUKSimUttFileView&) = delete;
    VUKSimUttFileView& operator=(const VUKSimUttFileView&) = delete;
    ~VUKSimUttFileView() { Drop(); }

    /// Whether `length` bytes at `position` lie in the view, which 0 bytes at its end do not.
    [[nodiscard]] bool Covers(unsigned long long position, unsigned long long length) const noexcept
    {
        return position < mEnd && length <= mEnd - position;
    }

    /// Copies covered bytes. False when pages were gone; `buffer` is then as it was, unless they
    /// went at this very moment.
    [[nodiscard]] bool Read(unsigned long long position, char* buffer,
                            unsigned long length) const noexcept;

    /// Puts bytes in the place of covered ones of a view that was mapped as writable. False when
    /// pages were gone: the bytes may then not have reached the file.
    [[nodiscard]] bool Write(unsigned long long position, const char* buffer,
                             unsigned long length) noexcept;

    /// Up to so many bytes are copied without a call.
    static constexpr unsigned long kShort = VUKSimUttShortCopy::kLongest;

    /// As Read, for up to kShort bytes. They are held back until the watch was seen behind them, so
    /// that `buffer` always is as it was when pages were gone.
    [[nodiscard]] bool ReadShort(unsigned long long position, char* buffer,
                                 unsigned long length) const noexcept
    {
        return VUKSimUttShortCopy::MoveIf(buffer, mBytes + position, length,
                                          [this] { return Intact(); });
    }

    /// As Write, for up to kShort bytes.
    [[nodiscard]] bool WriteShort(unsigned long long position, const char* buffer,
                                  unsigned long length) noexcept
    {
        CountWrite();
        if (!Intact()) {
            return false;
        }
        VUKSimUttShortCopy::Copy(mBytes + position, buffer, length);
        return Intact();
    }

    /// Covered bytes where they lie, for the system to read: it finds out by itself when pages are
    /// gone (EFAULT). They were all there when the view is intact behind it. Valid until the view
    /// is mapped anew or dropped.
    [[nodiscard]] const char* Bytes(unsigned long long position) const noexcept
    {
        return mBytes + position;
    }

    /// Whether the file still reaches to the view's end, so that all that is covered is there.
    [[nodiscard]] bool Intact() const noexcept
    {
        // One copy before the watch or behind it, the verdict behind both.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        mWatched = *mWatch;
        std::atomic_signal_fence(std::memory_order_seq_cst);
        return !mRange.Lost();
    }

    /// Maps the file, with room to grow, and covers what a file of `size` bytes lets it. False, and
    /// nothing is covered, when the system cannot or the file is too small to gain by it.
    bool Map(int descriptor, bool writable, unsigned long long size) noexcept;

    /// Covers what a file of `size` bytes lets it, as far as was mapped; without a map nothing.
    void Follow(unsigned long long size) noexcept;

    /// Whether a file of `size` bytes would let a new map cover `length` bytes at `position`.
    [[nodiscard]] static bool WouldCover(unsigned long long size, unsigned long long position,
                                         unsigned long long length) noexcept;

    /// Whether pages of the map were gone.
    [[nodiscard]] bool Lost() const noexcept { return mRange.Lost(); }

    /// To be told when the file was synced: first writes to each page cost more from then on. What
    /// is covered, and its bytes, stay the same.
    void Synced() noexcept { BeginCount(); }

    /// Ends the view; nothing is covered after it.
    void Drop() noexcept;

private:
    void CountWrite() noexcept
    {
        if (--mWritesLeft == 0) [[unlikely]] {
            TakeOutPages();
        }
    }
    void BeginCount() noexcept;
    void TakeOutPages() noexcept;

    char* mBytes = nullptr;                // of the map; null without one
    unsigned long long mEnd = 0;           // of what is covered
    const volatile char* mWatch = nullptr; // the page at mEnd
    std::size_t mMapped = 0;               // bytes of the map, which may lead beyond the file
    unsigned long long mWritesLeft = 0;    // until the pages are taken out of the map
    VUKSimUttGuardedRange mRange;
    // What the watch held. Kept, since memory checkers that translate a program leave out loads
    // whose value nobody uses.
    mutable volatile char mWatched = 0;
};
