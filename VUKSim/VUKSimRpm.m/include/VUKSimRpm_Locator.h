#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKBasWeakPtr.h"
#include "VUKSimRpm_Export.h"
#include "VUKString.h"

class VUKSimRpm_BStreamRead;
class VUKSimRpm_BStreamWrite;
class VUKSimRpm_DirectLocator;
class VUKSimRpm_MemoryPool;
class VUKSimRpm_PoolDirectoryImpl;
class VUKSimRpm_PoolImpl;
class VUKSimRpm_PoolMap;

/// Names one byte of a pool, and goes on naming it while files close, reopen and change places.
///
/// A value: copies are cheap, own nothing and never touch the file. Once its document closes it is
/// null; once only its pool's file closes it is not, and it works again when the file is back.
/// Offsets and lengths are in bytes, counted from the first byte behind the pool's directory, and
/// arithmetic on them wraps at 64 bits without a check. Stored in a pool it takes 12 bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_Locator
{
public:
    VUKSimRpm_Locator() = default;

    /// Byte `offset` of the pool in `slot`. `pool`, when given, must outlive the locator.
    VUKSimRpm_Locator(const VUKBasWeakPtr<VUKSimRpm_PoolMap>& map, int slot,
                      unsigned long long offset, VUKSimRpm_MemoryPool* pool)
        : mMap(map), mSlot(slot), mOffset(offset), mIMPool(pool)
    {}

    /// The byte `delta` behind `base`. Deliberately drops the memory pool: the new byte may lie
    /// outside it.
    VUKSimRpm_Locator(const VUKSimRpm_Locator& base, unsigned long long delta)
        : VUKSimRpm_Locator(base.mMap, base.mSlot, base.mOffset + delta, nullptr)
    {}

    /// The same byte as `other`, read and written through `pool`, which must outlive the locator.
    VUKSimRpm_Locator(const VUKSimRpm_Locator& other, VUKSimRpm_MemoryPool& pool)
        : VUKSimRpm_Locator(other.mMap, other.mSlot, other.mOffset, &pool)
    {}

    /// True once the pool map is gone, or when the slot is negative; the offset plays no part.
    [[nodiscard]] bool Null() const noexcept { return mSlot < 0 || mMap.expired(); }

    /// True when neither is null and both name the same slot of the same pool map.
    [[nodiscard]] bool SamePool(const VUKSimRpm_Locator& that) const noexcept
    {
        return mSlot >= 0 && mSlot == that.mSlot && mMap.SameObject(that.mMap);
    }

    /// True when pool maps (a gone one counts as none), slots and offsets are equal. Memory pools
    /// and nullness play no part: two default locators are equal.
    [[nodiscard]] bool operator==(const VUKSimRpm_Locator& that) const noexcept
    {
        return mMap.Borrow() == that.mMap.Borrow() && mSlot == that.mSlot &&
               mOffset == that.mOffset;
    }

    /// Orders by offset. \throws VUKBasAssertException "SamePool(that)".
    [[nodiscard]] bool operator<(const VUKSimRpm_Locator& that) const;
    [[nodiscard]] bool operator<=(const VUKSimRpm_Locator& that) const;

    /// The byte `n` further on or further back, with the same memory pool.
    [[nodiscard]] VUKSimRpm_Locator operator+(unsigned long long n) const
    {
        return {mMap, mSlot, mOffset + n, mIMPool};
    }
    [[nodiscard]] VUKSimRpm_Locator operator-(unsigned long long n) const
    {
        return {mMap, mSlot, mOffset - n, mIMPool};
    }
    VUKSimRpm_Locator& operator+=(unsigned long long n) noexcept
    {
        mOffset += n;
        return *this;
    }

    /// This offset minus that one, modulo 2^64. \throws VUKBasAssertException "SamePool(that)".
    [[nodiscard]] unsigned long long operator-(const VUKSimRpm_Locator& that) const;

    /// The memory pool that serves this locator, not owned; null when there is none.
    [[nodiscard]] VUKSimRpm_MemoryPool* IMPool() const noexcept { return mIMPool; }

    /// The pool's 32-character identifier, also while the pool's file is closed.
    /// \throws VUKSimExcCantDerefLocator on a null locator.
    [[nodiscard]] VUKString GetGUID() const;

    /// The pool's directory. \throws VUKSimExcCantDerefLocator when the pool is not open.
    [[nodiscard]] VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> Directory() const;

    /// Whether the pool's file is read-only. \throws VUKSimExcCantDerefLocator as Directory.
    [[nodiscard]] bool ReadOnly() const;

    /// Where this byte lies now: file and absolute position. \throws VUKBasAssertException
    /// "0 == mIMPool" for a locator with a memory pool; VUKSimExcCantDerefLocator as Directory.
    [[nodiscard]] VUKSimRpm_DirectLocator DirectLocator() const;

    /// The position of this byte in its file, for now; 0 while the pool is not open. Long transfers
    /// are fastest from and to memory whose address agrees with it modulo 4,096.
    [[nodiscard]] unsigned long long FilePosition() const noexcept;

    /// Copies up to `length` bytes into `buffer` and returns how many. Past the end of the file or
    /// of the memory pool the count is short and the rest of `buffer` is left as it was.
    /// \throws VUKSimExcCantDerefLocator when the pool is not open; VUKBasAssertException
    /// "SamePool(that)" when the memory pool holds bytes of another pool; the platform's file
    /// errors.
    [[nodiscard]] unsigned long Read(unsigned long length, char* buffer) const;

    /// Writes `length` bytes from `buffer` and returns the count. With a memory pool its image is
    /// changed first and the pool second, and the bytes must lie wholly inside the image.
    /// \throws VUKBasAssertException "Within(location, length)"; nothing is changed then.
    /// VUKSimExcCantDerefLocator when the pool is not open; VUKSimExcIOBounds past the pool's data;
    /// VUKSimExcWriteReadOnly; the platform's file errors: the image has changed then.
    unsigned long Write(unsigned long length, const char* buffer) const;

    /// Writes the 12-byte record: offset, then the index that the stream's directory gives the
    /// pool, -1 for a negative slot. \throws VUKSimExcCantExternalizeLoc when the directory does
    /// not name the pool, or there is none; VUKSimExcCantDerefLocator when the stream's document is
    /// closed, or the pool under it: the 12 bytes of room are then already taken. What PrepWrite
    /// throws.
    void ExternalizeImpl(VUKSimRpm_BStreamWrite& stream) const;

    /// Reads the 12-byte record and takes the stream's memory pool. A negative reference keeps map
    /// and slot as they are and zeroes the offset. On failure the locator is left as it was.
    /// \throws VUKBasAssertException when the reference lies outside the stream's directory;
    /// VUKSimExcCantExternalizeLoc when the stream has none; VUKSimExcCantDerefLocator when the
    /// stream's document is closed, or the pool under it: the 12 bytes are then consumed. What
    /// PrepRead throws.
    void InternalizeImpl(VUKSimRpm_BStreamRead& stream);

private:
    friend class VUKSimRpm_MemoryPool;

    // Apart, so that plain reads and writes carry nothing of them.
    [[gnu::noinline]] unsigned long ReadThroughImage(unsigned long length, char* buffer) const;
    [[gnu::noinline]] unsigned long WriteThroughImage(unsigned long length,
                                                      const char* buffer) const;
    [[nodiscard]] VUKSimRpm_PoolImpl& Resolve(int line) const;

    VUKBasWeakPtr<VUKSimRpm_PoolMap> mMap;   // empty in a default locator
    int mSlot = -1;                          // in mMap; negative names no pool
    unsigned long long mOffset = 0;          // bytes from the pool's first data byte
    VUKSimRpm_MemoryPool* mIMPool = nullptr; // not owned; reads and writes go through it
};
