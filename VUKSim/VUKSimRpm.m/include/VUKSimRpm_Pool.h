#pragma once

#include "VUKBasWeakPtr.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"
#include "VUKString.h"

class VUKSimRpm_PoolImpl;

/// A handle on one pool, which belongs to its file and dies with it.
///
/// A value that owns nothing. Once the pool is gone (its file closed, or the pool dropped because
/// it was still empty when the next one was made) the handle is null for good, and only Null and
/// HeaderSizeBytes may be called: the others do not test for it. Sizes are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_Pool
{
public:
    explicit VUKSimRpm_Pool(const VUKBasWeakPtr<VUKSimRpm_PoolImpl>& pool);

    [[nodiscard]] bool Null() const noexcept;

    /// The first data byte, and the place one behind the last.
    [[nodiscard]] VUKSimRpm_Locator Start() const;
    [[nodiscard]] VUKSimRpm_Locator End() const;

    /// The length of the data: header and directory do not count.
    [[nodiscard]] unsigned long long Length() const;

    /// Always 48, the fixed header without the directory, for a null handle too.
    [[nodiscard]] unsigned int HeaderSizeBytes() const noexcept;

    /// 32 for each entry of the pool's directory.
    [[nodiscard]] unsigned int DirectorySizeBytes() const;

    /// The pool's 32-character identifier.
    [[nodiscard]] VUKString GetGUID() const;

    /// Whether the pool's file is read-only; not whether the pool may grow.
    [[nodiscard]] bool ReadOnly() const;

    /// Grows the pool by `n` bytes, 0 included, and returns a locator to the first of them. Their
    /// content is whatever the file holds there once they are written.
    /// \throws VUKSimExcImmutablePool unless this is its file's last pool and the file can be
    /// written; VUKSimExcIOBounds when the file would pass 2^64 bytes; nothing is changed then.
    VUKSimRpm_Locator Allocate(unsigned long long n);

    /// The pool behind the handle, for the streams and the file that take one.
    [[nodiscard]] const VUKBasWeakPtr<VUKSimRpm_PoolImpl>& Impl() const noexcept { return mPool; }

private:
    VUKBasWeakPtr<VUKSimRpm_PoolImpl> mPool;
};
