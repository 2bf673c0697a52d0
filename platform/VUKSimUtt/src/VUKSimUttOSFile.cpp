#include "VUKSimUttOSFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "VUKSimUttDescriptor.h"
#include "VUKSimUttOSFileException.h"
#include "VUKSimUttRetry.h"
#include "VUKSimUttSystemCalls.h"

namespace {

constexpr char kSource[] = "VUKSim/VUKSimUtt.m/src/VUKSimUttOSFile";

// Hosts and support know a failure by the source and line it reports. A number is given once: it
// stays when the code around it moves, and is not given again when its check is gone.
namespace at {
constexpr int kNotOpen = 112;
constexpr int kNotWritable = 118;
constexpr int kMeasure = 127;
constexpr int kRead = 149;
constexpr int kWriteBeyondLargest = 166;
constexpr int kWriteMeasure = 174;
constexpr int kWrite = 183;
constexpr int kTruncateBeyondLargest = 201;
constexpr int kTruncate = 207;
constexpr int kFlushAfterFailure = 223;
constexpr int kFlush = 229;
constexpr int kFlushFolder = 236;
constexpr int kClose = 258;
constexpr int kRemove = 263;
} // namespace at

using Failure = VUKSimUttOSFileException;

// No file reaches further, and no position behind it fits the system's signed 64-bit type.
constexpr unsigned long long kLargestPosition = INT64_MAX;

// More bytes than this are written faster by a call, which makes no page fault for each page.
constexpr unsigned long kLargestWriteInPlace = 16384;

// The most that one call may be asked to move.
constexpr unsigned long kLargestTransfer = SSIZE_MAX;

VUKSimUttSystemCalls& Calls() noexcept
{
    return VUKSimUttSystemCalls::Current();
}

unsigned long long SizeOf(const VUKSimUttFileStatus& status) noexcept
{
    return static_cast<unsigned long long>(status.st_size);
}

[[noreturn]] void ThrowNotOpen(const Failure::Request& request, const VUKString& name)
{
    Failure(request, name, EBADF, "the file is not open").Throw(kSource, at::kNotOpen);
}

[[noreturn]] void ThrowNotWritable(const Failure::Request& request, const VUKString& name)
{
    Failure(request, name, EBADF, "the file was opened for reading only")
        .Throw(kSource, at::kNotWritable);
}

VUKString FolderOf(const VUKString& name)
{
    const std::string_view text = name.UTF8();
    const std::size_t slash = text.rfind('/');
    if (slash == std::string_view::npos) {
        return ".";
    }
    // With its slash, so that the root's own name is not cut to nothing.
    using Text = std::basic_string<char, std::char_traits<char>, VUKBasStdAllocator<char>>;
    return Text(text.substr(0, slash + 1)).c_str();
}

} // namespace

VUKSimUttOSFile::~VUKSimUttOSFile()
{
    try {
        Close();
    } catch (const VUKSimUttOSFileException&) {
        // The descriptor is gone all the same, and a destructor has nobody to tell.
    }
}

unsigned long long VUKSimUttOSFile::FileSize() const
{
    if (!IsOpen()) {
        ThrowNotOpen({"measure"}, mName);
    }
    VUKSimUttFileStatus status;
    if (VUKSimUttRetry([&] { return Calls().fstat(mDescriptor, &status); }) != 0) {
        Failure({"measure"}, mName, errno).Throw(kSource, at::kMeasure);
    }
    return SizeOf(status);
}

unsigned long VUKSimUttOSFile::Read(char* buffer, unsigned long length)
{
    const unsigned long count = ReadAtomic(mReadPosition, buffer, length);
    mReadPosition += count;
    return count;
}

unsigned long VUKSimUttOSFile::ReadInGeneral(unsigned long long position, char* buffer,
                                             unsigned long length)
{
    if (!IsOpen()) {
        ThrowNotOpen({"read", position, length}, mName);
    }
    if (position > kLargestPosition) {
        return 0;
    }
    if ((mView.Covers(position, length) || MapFor(position, length)) &&
        mView.Read(position, buffer, length)) {
        return length;
    }
    const unsigned long wanted = std::min<unsigned long long>(length, kLargestPosition - position);
    unsigned long done = 0;
    while (done < wanted) {
        const ssize_t count = VUKSimUttRetry([&] {
            return Calls().pread(mDescriptor, buffer + done,
                                 std::min(wanted - done, kLargestTransfer),
                                 static_cast<off_t>(position + done));
        });
        if (count < 0) {
            Failure({"read", position, length}, mName, errno).Throw(kSource, at::kRead);
        }
        if (count == 0) {
            break;
        }
        done += static_cast<unsigned long>(count);
    }
    if (done > 0) {
        SeeEnd(std::max(mKnownEnd, position + done));
    }
    return done;
}

unsigned long VUKSimUttOSFile::WriteInGeneral(unsigned long long position, const char* buffer,
                                              unsigned long length)
{
    if (!IsOpen()) {
        ThrowNotOpen({"write", position, length}, mName);
    }
    if (mReadOnly) {
        ThrowNotWritable({"write", position, length}, mName);
    }
    if (position > kLargestPosition || length > kLargestPosition - position) {
        Failure({"write", position, length}, mName, EFBIG).Throw(kSource, at::kWriteBeyondLargest);
    }
    if (length == 0) {
        return 0;
    }
    if (length <= kLargestWriteInPlace &&
        (mView.Covers(position, length) || MapFor(position, length)) &&
        mView.Write(position, buffer, length)) {
        return length;
    }
    // A failed write is cut back to the end as last seen. Others may have moved it since. When the
    // write begins at or before the end last seen, cutting there drops only bytes of this write;
    // when it begins behind, what lies between may be theirs, so that the end is looked up again.
    // Writes inside the file and appends, nearly all, thus cost one call.
    if (position > mKnownEnd) {
        VUKSimUttFileStatus status;
        if (VUKSimUttRetry([&] { return Calls().fstat(mDescriptor, &status); }) != 0) {
            Failure({"write", position, length}, mName, errno).Throw(kSource, at::kWriteMeasure);
        }
        mKnownEnd = SizeOf(status);
    }
    const unsigned long written = WriteFully(position, buffer, length);
    if (written != length) {
        Failure failure({"write", position, length}, mName, errno);
        CutBack(position + written);
        failure.Throw(kSource, at::kWrite);
    }
    SeeEnd(std::max(mKnownEnd, position + length));
    return length;
}

bool VUKSimUttOSFile::WriteFrom(unsigned long long position, VUKSimUttOSFile& source,
                                unsigned long long sourcePosition, unsigned long length)
{
    // Within one file the bytes could change while they are on their way.
    if (!IsSurelyNot(source) ||
        (!source.mView.Covers(sourcePosition, length) && !source.MapFor(sourcePosition, length))) {
        return false;
    }
    // Behind a new end the page that holds it has zeros, which would go to the target.
    if (!source.mView.Intact()) {
        return false;
    }
    try {
        WriteAtomic(position, source.mView.Bytes(sourcePosition), length);
    } catch (const VUKSimUttOSFileException& failure) {
        if (failure.ErrorNumber() == EFAULT) {
            return false; // pages of the source were gone
        }
        throw;
    }
    return source.mView.Intact();
}

bool VUKSimUttOSFile::IsSurelyNot(const VUKSimUttOSFile& that) const noexcept
{
    const bool known = mIdentity.inode != 0 && that.mIdentity.inode != 0;
    return known &&
           (mIdentity.device != that.mIdentity.device || mIdentity.inode != that.mIdentity.inode);
}

// Maps the file when that lets the view cover these bytes, and it does not yet: at the first
// access, and when the file has outgrown its map.
bool VUKSimUttOSFile::MapFor(unsigned long long position, unsigned long length) noexcept
{
    if (mView.Lost()) {
        mView.Drop(); // shortened by others, full or failing: calls will tell, from now on
        mMayMap = false;
    }
    if (!mMayMap || !VUKSimUttFileView::WouldCover(mKnownEnd, position, length)) {
        return false;
    }
    mMayMap = mView.Map(mDescriptor, !mReadOnly, mKnownEnd);
    return mMayMap;
}

void VUKSimUttOSFile::SeeEnd(unsigned long long end) noexcept
{
    mKnownEnd = end;
    mView.Follow(end);
}

// Returns how many bytes went out; fewer than `length` with errno set.
unsigned long VUKSimUttOSFile::WriteFully(unsigned long long position, const char* buffer,
                                          unsigned long length) const noexcept
{
    unsigned long done = 0;
    while (done < length) {
        const ssize_t count = VUKSimUttRetry([&] {
            return Calls().pwrite(mDescriptor, buffer + done,
                                  std::min(length - done, kLargestTransfer),
                                  static_cast<off_t>(position + done));
        });
        if (count <= 0) {
            errno = count == 0 ? EIO : errno; // a file that takes nothing would be asked for ever
            break;
        }
        done += static_cast<unsigned long>(count);
    }
    return done;
}

// Takes back what a write that failed at `end` added. A file that ends elsewhere was not extended
// by it, or has bytes of others behind; then, and when the cut fails too, the file stays as it is.
void VUKSimUttOSFile::CutBack(unsigned long long end) const noexcept
{
    VUKSimUttFileStatus status;
    if (end > mKnownEnd &&
        VUKSimUttRetry([&] { return Calls().fstat(mDescriptor, &status); }) == 0 &&
        SizeOf(status) == end) {
        static_cast<void>(VUKSimUttRetry(
            [&] { return Calls().ftruncate(mDescriptor, static_cast<off_t>(mKnownEnd)); }));
    }
}

void VUKSimUttOSFile::Truncate(unsigned long long size)
{
    if (!IsOpen()) {
        ThrowNotOpen({"truncate", size}, mName);
    }
    if (mReadOnly) {
        ThrowNotWritable({"truncate", size}, mName);
    }
    if (size > kLargestPosition) {
        Failure({"truncate", size}, mName, EFBIG).Throw(kSource, at::kTruncateBeyondLargest);
    }
    if (VUKSimUttRetry([&] { return Calls().ftruncate(mDescriptor, static_cast<off_t>(size)); }) !=
        0) {
        Failure({"truncate", size}, mName, errno).Throw(kSource, at::kTruncate);
    }
    SeeEnd(size);
}

void VUKSimUttOSFile::Flush()
{
    if (!IsOpen()) {
        ThrowNotOpen({"flush"}, mName);
    }
    if (mReadOnly) {
        return;
    }
    // The system forgets the pages that it failed to write: a second sync would find nothing wrong.
    if (mFlushError != 0) {
        Failure({"flush"}, mName, mFlushError, "an earlier flush failed")
            .Throw(kSource, at::kFlushAfterFailure);
    }
    if (VUKSimUttRetry([&] { return Calls().fdatasync(mDescriptor); }) != 0) {
        mFlushError = errno;
        Failure({"flush"}, mName, mFlushError).Throw(kSource, at::kFlush);
    }
    mView.Synced();
    if (mFolderSyncDue) {
        mFlushError = SyncFolder();
        if (mFlushError != 0) {
            Failure({"flush"}, mName, mFlushError).Throw(kSource, at::kFlushFolder);
        }
        mFolderSyncDue = false;
    }
}

// Makes the name of a created file durable. Returns 0 or the errno of the sync that failed.
int VUKSimUttOSFile::SyncFolder() const
{
    const VUKString name = FolderOf(mAbsoluteName);
    const VUKSimUttDescriptor folder(VUKSimUttRetry(
        [&] { return Calls().open(name.UTF8(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); }));
    if (folder.Get() != -1) {
        if (VUKSimUttRetry([&] { return Calls().fsync(folder.Get()); }) == 0) {
            return 0;
        }
        if (errno != EINVAL) {
            return errno;
        }
    }
    // A folder that was moved, that may be written but not read, that its file system cannot sync
    // alone, or no descriptor left to open it with: the file system as a whole is synced.
    return VUKSimUttRetry([&] { return Calls().syncfs(mDescriptor); }) == 0 ? 0 : errno;
}

void VUKSimUttOSFile::Close()
{
    if (!IsOpen()) {
        return;
    }
    mView.Drop();
    mMayMap = true;
    const int descriptor = std::exchange(mDescriptor, -1);
    const int removeError = std::exchange(mRemoveWhenClosed, false) ? RemoveName(descriptor) : 0;
    mFolderSyncDue = false;
    mFlushError = 0;
    mIdentity = {};
    mKnownEnd = 0;
    mReadPosition = 0;
    // Never repeated: the descriptor is free even after a failure, and may be another file's by
    // then. An interruption means no more than that.
    if (Calls().close(descriptor) != 0 && errno != EINTR) {
        Failure({"close"}, mName, errno).Throw(kSource, at::kClose);
    }
    if (removeError != 0) {
        Failure({"remove"}, mName, removeError).Throw(kSource, at::kRemove);
    }
}

// Removes the file's name if it still is this file's. Returns 0 or an errno value.
int VUKSimUttOSFile::RemoveName(int descriptor) const noexcept
{
    const char* const name = mAbsoluteName.UTF8();
    VUKSimUttFileStatus own;
    VUKSimUttFileStatus named;
    if (VUKSimUttRetry([&] { return Calls().fstat(descriptor, &own); }) != 0) {
        return errno;
    }
    if (VUKSimUttRetry([&] { return Calls().stat(name, &named); }) != 0) {
        return errno == ENOENT ? 0 : errno;
    }
    const bool another = own.st_dev != named.st_dev || own.st_ino != named.st_ino;
    if (another || VUKSimUttRetry([&] { return Calls().unlink(name); }) == 0) {
        return 0;
    }
    return errno == ENOENT ? 0 : errno;
}
