#pragma once

#include "VUKBas_Export.h"
#include "VUKSimUttFileView.h"
#include "VUKString.h"

/// One regular file of the operating system, read and written at positions.
///
/// An object with an identity: it owns its descriptor from one of the five opens to `Close` or its
/// death, and may be opened again after that. Positions, lengths and sizes are in bytes from the
/// file's start. Nothing is buffered here: what a write returned from is seen by every other reader
/// of the file at once, and survives the machine once `Flush` returned. Where it makes no other
/// difference, files of 64 KiB and more are read and written as memory that is mapped from them.
///
/// Every failure is a VUKSimUttOSFileException. Calls that a signal interrupts are repeated. Only
/// regular files are opened; anything else is refused without waiting for it and without touching
/// it. Every operation on a closed object fails with EBADF, every open on an open one with EBUSY.
class VUKBAS_EXPORT VUKSimUttOSFile
{
public:
    VUKSimUttOSFile() = default;
    VUKSimUttOSFile(const VUKSimUttOSFile&) = delete;
    VUKSimUttOSFile& operator=(const VUKSimUttOSFile&) = delete;

    /// Closes; a failure is passed over, since what matters was reported by `Flush`.
    ~VUKSimUttOSFile();

    [[nodiscard]] bool IsOpen() const noexcept { return mDescriptor != -1; }

    /// True from `OpenRead` until another kind of open; closing does not change it.
    [[nodiscard]] bool ReadOnly() const noexcept { return mReadOnly; }

    /// The real name of the file last opened, the unique part of a created name included.
    [[nodiscard]] const VUKString& FileName() const noexcept { return mName; }

    /// The size now, whoever changed it last.
    [[nodiscard]] unsigned long long FileSize() const;

    // Opening: an open that fails leaves the object as it was, closed.

    /// An existing file, for reading only.
    void OpenRead(const VUKString& name);

    /// An existing file, for reading and writing; its content stays.
    void OpenUpdate(const VUKString& name);

    /// A file for reading and writing, empty: made when there is none of that name, else emptied.
    void OpenWrite(const VUKString& name);

    /// A new file `name` + unique part for this user alone, for reading and writing. It is removed
    /// when the object closes or dies, unless its name has become another file's.
    void CreateTemporary(const VUKString& name);

    /// A new file `name` + unique part + `second`, for reading and writing. It stays, or with
    /// `removeWhenClosed` goes as a temporary file does.
    void CreateGenerated(const VUKString& name, const VUKString& second, bool removeWhenClosed);

    /// Up to `length` bytes from where the last `Read` ended, at first from the file's start.
    /// Returns how many; short only at the end of the file. A failed read does not move on.
    [[nodiscard]] unsigned long Read(char* buffer, unsigned long length);

    /// Up to `length` bytes from `position`. Returns how many: short at the physical end of the
    /// file, 0 at or behind it. The rest of `buffer` is left as it was, unless others make
    /// the file shorter at this very moment.
    [[nodiscard]] unsigned long ReadAtomic(unsigned long long position, char* buffer,
                                           unsigned long length)
    {
        if (length <= VUKSimUttFileView::kShort && mView.Covers(position, length) &&
            mView.ReadShort(position, buffer, length)) [[likely]] {
            return length;
        }
        return ReadInGeneral(position, buffer, length);
    }

    /// Writes all `length` bytes at `position` and returns `length`, or throws. Behind the end of
    /// the file it first leaves zeros up to `position`. After a failure the file is as long as
    /// before, what others appended meanwhile included; bytes that were there already may have been
    /// overwritten in part.
    unsigned long WriteAtomic(unsigned long long position, const char* buffer, unsigned long length)
    {
        if (length <= VUKSimUttFileView::kShort && !mReadOnly && mView.Covers(position, length) &&
            mView.WriteShort(position, buffer, length)) [[likely]] {
            return length;
        }
        return WriteInGeneral(position, buffer, length);
    }

    /// As WriteAtomic, for the `length` bytes of another file, `source`, at `sourcePosition`, when
    /// they can go without a buffer in between. False when they cannot or did not all: they are
    /// then to be read and written. Zeros may have been written when others make the source shorter
    /// at this very moment.
    [[nodiscard]] bool WriteFrom(unsigned long long position, VUKSimUttOSFile& source,
                                 unsigned long long sourcePosition, unsigned long length);

    /// Makes the file exactly `size` bytes long; what is added reads as zeros.
    void Truncate(unsigned long long size);

    /// Makes all that was written durable, with the name of a file that this object created. Does
    /// nothing on a read-only file. Once a sync failed, nobody knows which bytes were lost: every
    /// later `Flush` of this open file fails as well.
    void Flush();

    /// Ends the use of the file and removes a temporary one; on a closed object does nothing. When
    /// the system reports an error the object is closed nevertheless.
    void Close();

private:
    /// Which file it is, whatever its name.
    struct Identity
    {
        unsigned long long device = 0;
        unsigned long long inode = 0; // 0 when nobody looked
    };

    void OpenExisting(const VUKString& name, bool readOnly);
    void CreateUnique(const VUKString& name, const VUKString& second, unsigned int mode,
                      bool removeWhenClosed);
    [[nodiscard]] unsigned long ReadInGeneral(unsigned long long position, char* buffer,
                                              unsigned long length);
    unsigned long WriteInGeneral(unsigned long long position, const char* buffer,
                                 unsigned long length);
    [[nodiscard]] bool IsSurelyNot(const VUKSimUttOSFile& that) const noexcept;
    [[nodiscard]] bool MapFor(unsigned long long position, unsigned long length) noexcept;
    void SeeEnd(unsigned long long end) noexcept;
    [[nodiscard]] unsigned long WriteFully(unsigned long long position, const char* buffer,
                                           unsigned long length) const noexcept;
    void CutBack(unsigned long long end) const noexcept;
    [[nodiscard]] int SyncFolder() const;
    [[nodiscard]] int RemoveName(int descriptor) const noexcept;

    // The first three outlive closing; the others then return to what stands here.
    VUKString mName;         // as given, with the unique part
    VUKString mAbsoluteName; // of a created file, which is found again from any working folder
    bool mReadOnly = false;  // by the last open
    int mDescriptor = -1;    // owned; -1 when closed
    Identity mIdentity;
    bool mRemoveWhenClosed = false;
    bool mFolderSyncDue = false;          // created here, and the name is not durable yet
    int mFlushError = 0;                  // of the sync that failed; 0 while none has
    unsigned long long mKnownEnd = 0;     // size when last seen, see WriteByCalls
    unsigned long long mReadPosition = 0; // of the next Read
    bool mMayMap = true;                  // no map of this file has failed yet
    VUKSimUttFileView mView;              // as far as the file is served from memory
};
