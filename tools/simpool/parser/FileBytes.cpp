#include "FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace simpool {

FileBytes::~FileBytes()
{
    Close();
}

void FileBytes::Close() noexcept
{
    if (mDescriptor >= 0) {
        ::close(mDescriptor);
    }
    mDescriptor = -1;
    mSize = 0;
    mError = 0;
}

int FileBytes::Open(const char* name) noexcept
{
    Close();
    // A pipe would keep a blocking open waiting for its writer.
    mDescriptor = ::open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (mDescriptor < 0) {
        return errno;
    }
    const int failure = Refresh();
    if (failure != 0) {
        Close();
    }
    return failure;
}

int FileBytes::Refresh() noexcept
{
    struct stat status = {};
    if (::fstat(mDescriptor, &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.st_mode)) {
        return kNotRegular;
    }
    mSize = static_cast<std::uint64_t>(status.st_size);
    return 0;
}

std::size_t FileBytes::Read(std::uint64_t position, char* buffer, std::size_t length) const noexcept
{
    if (position >= mSize) {
        return 0;
    }
    const std::uint64_t wanted = std::min<std::uint64_t>(length, mSize - position);
    std::uint64_t done = 0;
    while (done < wanted) {
        const ssize_t count =
            ::pread(mDescriptor, buffer + done, wanted - done, static_cast<off_t>(position + done));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 && mError == 0) {
            mError = errno;
        }
        if (count <= 0) {
            break; // 0: cut while we read
        }
        done += static_cast<std::uint64_t>(count);
    }
    return done;
}

std::uint64_t FileBytes::SkipHole(std::uint64_t position) const noexcept
{
    if (position >= mSize) {
        return position;
    }
    const off_t data = ::lseek(mDescriptor, static_cast<off_t>(position), SEEK_DATA);
    if (data >= 0) {
        return std::min(static_cast<std::uint64_t>(data), mSize);
    }
    // A file system that knows no holes says EINVAL.
    return errno == ENXIO ? mSize : position;
}

std::uint64_t FileBytes::SkipData(std::uint64_t position) const noexcept
{
    if (position >= mSize) {
        return position;
    }
    const off_t hole = ::lseek(mDescriptor, static_cast<off_t>(position), SEEK_HOLE);
    return hole < 0 ? mSize : std::min(static_cast<std::uint64_t>(hole), mSize);
}

bool FileBytes::IsSameFile(const char* name) const noexcept
{
    struct stat own = {};
    struct stat other = {};
    return ::fstat(mDescriptor, &own) == 0 && ::stat(name, &other) == 0 &&
           own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}
} // namespace simpool
