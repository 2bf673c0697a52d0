#pragma once

#include "VUKSimRpm_Buffer.h"

/// The memory of a stream that buffers: made empty, allocated at most once, freed with it.
///
/// Bytes move several times faster between a file and memory that lie at the same place in their
/// pages, so a chunk begins anew for each transfer. One too small to gain by that stays where it
/// is. Sizes are in bytes.
class VUKSimRpm_Chunk
{
public:
    /// For `size` bytes at a time, raised to 16 at least. Allocates nothing yet.
    explicit VUKSimRpm_Chunk(unsigned long size) noexcept
        : mSize(size > kSmallest ? size : kSmallest)
    {}

    [[nodiscard]] unsigned long Size() const noexcept { return mSize; }

    /// The first byte; null until the memory is there.
    [[nodiscard]] char* Begin() const noexcept { return mBegin; }

    /// Makes the memory, all of it zero, so that no old heap bytes can reach a file.
    /// \throws std::bad_alloc, the chunk is empty then.
    void AllocateOnce();

    /// Begins at the place in a page that the byte at `position` has in its file, and moves the
    /// `kept` bytes at `from` there. The memory must have been made.
    void BeginAs(unsigned long long position, const char* from, unsigned long kept) noexcept;

private:
    static constexpr unsigned long kSmallest = 16;
    static constexpr unsigned long kPage = 4096;
    static constexpr unsigned long kSmallestThatMoves = 4 * kPage;

    unsigned long mSize;
    char* mBegin = nullptr;   // in mMemory
    VUKSimRpm_Buffer mMemory; // mSize bytes, and a page more when the chunk moves
};
