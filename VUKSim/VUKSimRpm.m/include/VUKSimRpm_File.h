#pragma once

#include "VUKBasWeakPtr.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimRpm_Locator.h"
#include "VUKSimRpm_Pool.h"
#include "VUKString.h"

class VUKSimRpm_FileImpl;

/// A handle on one file of a document, which owns the file.
///
/// A value that owns nothing; it may outlive the file. Once the document has closed the file, Null
/// is true and every other member throws VUKSimExcCantGetFile. Lengths are in bytes.
class VUKSIMRPM_EXPORT VUKSimRpm_File
{
public:
    explicit VUKSimRpm_File(const VUKBasWeakPtr<VUKSimRpm_FileImpl>& file);

    [[nodiscard]] bool Null() const noexcept;

    /// The name the file was opened with, or the one made for it when it was created.
    [[nodiscard]] VUKString FileName() const;

    /// True for a file that was added for reading.
    [[nodiscard]] bool ReadOnly() const;

    /// The number of pools in the file.
    [[nodiscard]] unsigned int PoolCount() const;

    /// Pool `index`, in file order from 0.
    /// \throws VUKBasAssertException "index < mPools.size()".
    [[nodiscard]] VUKSimRpm_Pool Pool(unsigned int index) const;

    /// The current pool: the last one, the only one that grows.
    /// \throws VUKBasAssertException "mCurrentPoolIndex >= 0" when the file has no pools.
    [[nodiscard]] VUKSimRpm_Pool Pool() const;

    /// The current pool's first data byte, and the place one behind its last. \throws as Pool().
    [[nodiscard]] VUKSimRpm_Locator Start() const;
    [[nodiscard]] VUKSimRpm_Locator End() const;

    /// Grows the current pool. \throws as Pool() and VUKSimRpm_Pool::Allocate; on a read-only file
    /// VUKSimExcImmutablePool.
    VUKSimRpm_Locator Allocate(unsigned long long length);

    /// Adds an empty pool behind the current one, whose length is fixed from then on, and makes it
    /// current. A current pool without data is dropped and replaced. With `ownEntryOnly` the pool
    /// can refer to itself alone, else to every pool that the document knows by now. `uuid` is a
    /// text of at least 32 characters, or null for a fresh one.
    /// \throws VUKSimExcNewPoolReadOnly, VUKSimExcInvalidGUID, VUKSimExcPoolAlreadyInDoc before any
    /// change. After a later failure what was done stays done: the slot, the dropped pool.
    void NewPool(bool ownEntryOnly, const char* uuid);

    /// Copies `pool`, of another document, behind the current pool and makes the copy current. A
    /// current pool without data is dropped and replaced. References inside it stay true.
    /// \throws VUKSimExcNewPoolReadOnly, VUKSimExcPoolAlreadyInDoc, VUKSimExcCantDerefLocator for a
    /// null `pool`, before any change; VUKSimExcShortPool, the platform's file errors and the
    /// exceptions of loading a pool after that: an empty current pool stays dropped, and what was
    /// copied stays in the file, but is no pool of it. The next pool is placed behind it.
    void AppendPool(const VUKSimRpm_Pool& pool);

    /// Rewrites the current pool's header and makes all that was written durable. Bytes that were
    /// allocated and never written stay off the disk. A read-only file has nothing to flush.
    /// \throws the platform's file errors; after a failed sync, at every later call too.
    void Flush();

    /// The file behind the handle, for the document that closes it.
    [[nodiscard]] const VUKBasWeakPtr<VUKSimRpm_FileImpl>& Impl() const noexcept { return mFile; }

private:
    VUKBasSharedPtr<VUKSimRpm_FileImpl> Live() const;

    VUKBasWeakPtr<VUKSimRpm_FileImpl> mFile;
};
