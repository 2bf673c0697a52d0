#pragma once

#include "VUKBasSharedPtr.h"
#include "VUKBasVectorGeneric.h"
#include "VUKBasWeakPtr.h"
#include "VUKSimRpm_DirectLocator.h"
#include "VUKSimRpm_Export.h"
#include "VUKSimUttOSFile.h"
#include "VUKString.h"

class VUKSimRpm_DocumentImpl;
class VUKSimRpm_PoolDirectoryImpl;
class VUKSimRpm_PoolImpl;
class VUKSimRpm_ReadWindow;

/// One file of a document: a row of pools, laid end to end from position 0.
///
/// The document owns it and outlives its use. Opened exactly once by one of the five opens; closed
/// by Close. Positions and lengths are in bytes. Destroying a file writes nothing.
class VUKSIMRPM_EXPORT VUKSimRpm_FileImpl
{
public:
    explicit VUKSimRpm_FileImpl(VUKSimRpm_DocumentImpl& document);
    VUKSimRpm_FileImpl(const VUKSimRpm_FileImpl&) = delete;
    VUKSimRpm_FileImpl& operator=(const VUKSimRpm_FileImpl&) = delete;
    ~VUKSimRpm_FileImpl();

    [[nodiscard]] const VUKString& FileName() const noexcept { return mFile.FileName(); }
    [[nodiscard]] bool ReadOnly() const noexcept { return mFile.ReadOnly(); }

    /// The document's user signature, which every pool header carries.
    [[nodiscard]] const unsigned int& Sig() const noexcept;

    [[nodiscard]] unsigned int PoolCount() const noexcept;

    /// One past the last byte in use, which need not be written yet: new pools go here.
    [[nodiscard]] unsigned long long LogicalEnd() const noexcept { return mLogicalEnd; }

    /// Pool `index` in file order. \throws VUKBasAssertException "index < mPools.size()".
    [[nodiscard]] VUKBasWeakPtr<VUKSimRpm_PoolImpl> Pool(unsigned int index) const;

    /// The current pool. \throws VUKBasAssertException "mCurrentPoolIndex >= 0".
    [[nodiscard]] VUKBasWeakPtr<VUKSimRpm_PoolImpl> Pool() const;

    [[nodiscard]] VUKSimRpm_DirectLocator DirectLocator(unsigned long long position);

    // The five opens. After a failure the object is to be discarded. All throw the platform's
    // file errors.

    /// Loads the pools of an existing file; one without bytes has none.
    /// \throws the exceptions of VUKSimRpm_PoolImpl::Load; VUKBasRangeException for a pool whose
    /// directory is empty. The pools before it stay in the list and in the pool map.
    void OpenRead(const VUKString& name);

    /// As OpenRead; then the last pool may grow, and its header is rewritten at once.
    void OpenUpdate(const VUKString& name);

    // A new file gets a first pool at once; `ownEntryOnly` is NewPool's.
    void OpenWrite(const VUKString& name, bool ownEntryOnly);
    void CreateTemporary(const VUKString& name, bool ownEntryOnly);
    void CreateGenerated(const VUKString& name, const VUKString& second, bool ownEntryOnly);

    /// Reads up to `length` bytes and returns how many; fewer at the physical end of the file.
    [[nodiscard]] unsigned long Read(unsigned long long position, unsigned long length,
                                     char* buffer);

    /// Writes `length` bytes and returns the count. \throws VUKSimExcWriteReadOnly.
    unsigned long Write(unsigned long long position, unsigned long length, const char* buffer);

    /// Raises the logical end to `newEnd`; a lower one is ignored. Writes nothing.
    /// \throws VUKSimExcAllocReadOnly when there is something to raise in a read-only file.
    void Extend(unsigned long long newEnd);

    /// Makes the file `size` bytes long, physically and logically; neither when the system refuses.
    void Truncate(const unsigned long long& size);

    /// Rewrites the current pool's header and makes all that was written durable.
    void Flush();

    /// Flushes, takes the pools out of the pool map and closes. A failed flush leaves all open;
    /// when the system fails to close, the file counts as closed, and closing it again succeeds.
    void Close();

    /// See VUKSimRpm_File::NewPool. The slot is made before an empty current pool is dropped.
    VUKBasWeakPtr<VUKSimRpm_PoolImpl> NewPool(bool ownEntryOnly, const char* uuid);

    /// See VUKSimRpm_File::AppendPool. `source` must stay alive during the call.
    VUKBasWeakPtr<VUKSimRpm_PoolImpl> AppendPool(VUKSimRpm_PoolImpl& source);

    /// Takes `size` bytes of directory from what a load may read in total: the file's size, since
    /// the pools of an honest file do not overlap. False when so many are not left.
    [[nodiscard]] bool ClaimDirectoryBytes(unsigned long long size) noexcept;

private:
    void Load();
    VUKBasSharedPtr<VUKSimRpm_PoolDirectoryImpl> NewDirectory() const;
    VUKBasSharedPtr<VUKSimRpm_PoolImpl> LoadPool(unsigned long long position,
                                                 VUKSimRpm_ReadWindow& window);
    void DropEmptyCurrentPool();
    void FreezeCurrentPool();
    void AddPool(const VUKBasSharedPtr<VUKSimRpm_PoolImpl>& pool);
    void MakeCurrent(const VUKBasSharedPtr<VUKSimRpm_PoolImpl>& pool);
    void CopyFrom(VUKSimRpm_PoolImpl& source, unsigned long long destination);

    VUKSimRpm_DocumentImpl& mDocument;
    VUKSimUttOSFile mFile;
    VUKBasVectorGeneric<VUKBasSharedPtr<VUKSimRpm_PoolImpl>> mPools; // in file order
    int mCurrentPoolIndex = -1;             // of the last pool; -1 until there is one
    unsigned long long mLogicalEnd = 0;     // one past the last byte in use
    unsigned long long mWrittenEnd = 0;     // where it was written up to; the file may be longer
    unsigned long long mDirectoryBytes = 0; // left for the load that is under way
};
