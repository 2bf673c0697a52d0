#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"

class VUKSimRpm_FileImpl;
class VUKSimRpm_PoolDirectoryImpl;
class VUKSimRpm_ReadWindow;

/// One pool of a file: a fixed header, the directory, and the data.
///
/// The file owns its pools and outlives them. Of a file that can be written only the last pool, the
/// current one, may grow; it stands on disk with length zero, which means up to the file's end.
/// Sizes are in bytes; offsets count from the first data byte. Destroying a pool writes nothing.
class VUKSIMRPM_EXPORT VUKSimRpm_PoolImpl
{
public:
    /// An immutable pool of length 0 at `position` of `file`; touches no file.
    VUKSimRpm_PoolImpl(VUKSimRpm_FileImpl& file,
                       const VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl>& directory,
                       unsigned long long position);

    VUKSimRpm_PoolImpl(const VUKSimRpm_PoolImpl&) = delete;
    VUKSimRpm_PoolImpl& operator=(const VUKSimRpm_PoolImpl&) = delete;
    ~VUKSimRpm_PoolImpl();

    [[nodiscard]] VUKSimRpm_FileImpl& File() const noexcept { return mFile; }
    [[nodiscard]] unsigned long long Position() const noexcept { return mPosition; }

    /// The whole pool: header, directory and data.
    [[nodiscard]] unsigned long long Length() const noexcept { return mLength; }

    /// Header and directory; the data begins behind them.
    [[nodiscard]] unsigned int HeaderSize() const noexcept { return mHeaderSize; }

    /// The data alone. Wraps for a damaged pool whose length is smaller than its header.
    [[nodiscard]] unsigned long long DataLength() const noexcept { return mLength - mHeaderSize; }

    [[nodiscard]] bool Immutable() const noexcept { return mImmutable; }
    void SetImmutable(bool immutable) noexcept { mImmutable = immutable; }

    [[nodiscard]] const VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl>& Directory() const noexcept
    {
        return mDirectory;
    }

    /// The pool's slot in the document's pool map.
    [[nodiscard]] int OwnSlot() const;

    /// The first data byte, and the place one behind the last.
    [[nodiscard]] VUKSimRpm_Locator Start() const;
    [[nodiscard]] VUKSimRpm_Locator End() const;

    /// Whether the file is read-only; not whether the pool may grow.
    [[nodiscard]] bool ReadOnly() const noexcept;

    /// Gives a new pool whose directory is filled its length: header and directory, no data.
    void Init();

    /// Reads header and directory. `end` is where the file ends: up to there reaches a pool whose
    /// length reads zero, and beyond it no directory.
    /// \throws VUKSimExcCorruptHeader, VUKSimExcNotSimFile, VUKSimExcNeedUpgrade,
    /// VUKSimExcUserSigMismatch, VUKSimExcCorruptDirectory, VUKSimExcPoolAlreadyInDoc. The pool is
    /// half filled then and to be discarded; slots made for its directory stay in the map.
    void Load(unsigned long long end);

    /// The same, through a window on the file that the pools before were read through.
    void Load(unsigned long long end, VUKSimRpm_ReadWindow& window);

    /// Writes header and directory: the length of an immutable pool, zero for the current one.
    /// \throws the file's errors.
    void Dump();

    /// Grows the pool by `n` bytes and returns a locator to the first of them; writes nothing.
    /// \throws VUKSimExcImmutablePool; VUKSimExcIOBounds(old data length, the wrapped sum, old data
    /// length) when the file would pass 2^64 bytes: nothing is changed then. When the file refuses
    /// to grow the length is already raised.
    VUKSimRpm_Locator Allocate(unsigned long long n);

    /// Copies up to `length` bytes at `offset` into `buffer` and returns how many. Deliberately
    /// without bounds: past the pool it reads what the file holds there.
    [[nodiscard]] unsigned long Read(unsigned long long offset, unsigned long length,
                                     char* buffer) const;

    /// Writes `length` bytes at `offset` and returns the count. Immutable pools can be written too:
    /// only their length is fixed.
    /// \throws VUKSimExcIOBounds(offset, offset + length, data length), VUKSimExcWriteReadOnly.
    unsigned long Write(unsigned long long offset, unsigned long length, const char* buffer) const;

    /// Where the data byte at `offset` lies in the file.
    [[nodiscard]] unsigned long long FilePosition(unsigned long long offset) const noexcept
    {
        return mPosition + mHeaderSize + offset;
    }

    [[nodiscard]] VUKSimRpm_DirectLocator DirectLocator(unsigned long long offset) const;

private:
    void LoadDirectory(unsigned int count, unsigned long long end, VUKSimRpm_ReadWindow& window);

    VUKSimRpm_FileImpl& mFile;
    VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> mDirectory;
    bool mImmutable = true;         // false for the file's current pool alone
    unsigned long long mPosition;   // of the header in the file
    unsigned long long mLength = 0; // from mPosition: header, directory and data
    unsigned int mHeaderSize = 0;   // header and directory
    unsigned int mReserved1 = 2;    // both kept as they were read
    unsigned int mReserved2 = 0;
};
