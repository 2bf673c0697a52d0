#pragma once

#include "VUKBasAllocator.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"

/// An image in memory of one stretch of a pool, loaded once when it is made.
///
/// Locators that carry it read from the image instead of the file and write to both: it is a read
/// cache with write-through, never a write-back buffer, and destroying it writes nothing. It goes
/// stale when the pool is written through a locator that does not carry it. It must outlive every
/// locator that carries it, those read through a stream bound to it included. Sizes are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_MemoryPool
{
public:
    /// Loads `size` bytes from `locator` on (its own memory pool plays no part). An empty
    /// `allocator` stands for the default heap. A null `buffer` is allocated; one that is given
    /// must come from `allocator` and hold `size` bytes, and is adopted: the destructor frees it.
    /// \throws VUKSimExcCantDerefLocator; VUKBasAssertException "r == mSize" when the pool delivers
    /// fewer bytes; std::bad_alloc; the platform's file errors. A failed constructor frees what it
    /// allocated, never the caller's buffer.
    VUKSimRpm_MemoryPool(const VUKSimRpm_Locator& locator, unsigned long size,
                         const VUKBasAllocator& allocator, char* buffer);

    VUKSimRpm_MemoryPool(const VUKSimRpm_MemoryPool&) = delete;
    VUKSimRpm_MemoryPool& operator=(const VUKSimRpm_MemoryPool&) = delete;
    ~VUKSimRpm_MemoryPool();

    /// True when all of [location, location + length) lies inside the image; false for a location
    /// in another pool.
    [[nodiscard]] bool Within(const VUKSimRpm_Locator& location, unsigned long length) const;

    /// True when the byte at `location` lies inside the image. \throws VUKBasAssertException
    /// "SamePool(that)" for a null location and one in another pool: a locator that carries a
    /// memory pool has to stay in that pool.
    [[nodiscard]] bool Startin(const VUKSimRpm_Locator& location) const;

    /// Copies up to `length` bytes into `buffer` and returns how many; at the end of the image the
    /// count is short. \throws VUKBasAssertException when `location` lies outside the image.
    [[nodiscard]] unsigned long Read(const VUKSimRpm_Locator& location, unsigned long length,
                                     char* buffer) const;

    /// Copies `length` bytes from `buffer` into the image, and nowhere else.
    /// \throws VUKBasAssertException "Within(location, length)"; nothing is changed then.
    void Write(const VUKSimRpm_Locator& location, unsigned long length, const char* buffer);

private:
    [[nodiscard]] bool Images(const VUKSimRpm_Locator& location) const noexcept;
    [[noreturn, gnu::cold]] void RefuseRead(const VUKSimRpm_Locator& location) const;

    VUKBasAllocator mAllocator; // owns mBuffer; never empty
    VUKSimRpm_Locator mLocator; // the image's first byte, without a memory pool
    unsigned long mSize;        // bytes
    char* mBuffer;              // mSize bytes, freed through mAllocator
};
