#pragma once

#include <cstddef>
#include <cstdint>

namespace simpool {

/// The bytes of one file, for reading only: neither written nor locked, and read at positions
/// alone.
///
/// Nothing here throws. Positions and sizes are in bytes. Not copyable: it owns its descriptor.
class FileBytes
{
public:
    /// What Open returns for a folder, a pipe, a device: anything but a regular file.
    static constexpr int kNotRegular = -1;

    FileBytes() = default;
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;
    ~FileBytes();

    /// Opens `name` in place of what was open. Returns 0, the system's error number or kNotRegular.
    [[nodiscard]] int Open(const char* name) noexcept;

    /// Looks up the size anew, for a file that is being written. Returns 0 or an error number.
    [[nodiscard]] int Refresh() noexcept;

    /// As it was when the file was opened or last refreshed. Reads end there.
    [[nodiscard]] std::uint64_t Size() const noexcept { return mSize; }

    /// Copies up to `length` bytes at `position` and returns how many. A short count means the end
    /// of the file, or a failure that Error tells.
    [[nodiscard]] std::size_t Read(std::uint64_t position, char* buffer,
                                   std::size_t length) const noexcept;

    /// Where the hole ends that `position` lies in, at most Size; `position` itself when it lies in
    /// none or behind the end.
    [[nodiscard]] std::uint64_t SkipHole(std::uint64_t position) const noexcept;
    /// The first position from `position` on at which a hole begins, or the end of the file.
    [[nodiscard]] std::uint64_t SkipData(std::uint64_t position) const noexcept;

    /// The error number of the first read that failed since the file was opened; 0 when none did.
    [[nodiscard]] int Error() const noexcept { return mError; }

    /// Whether `name` leads to this very file.
    [[nodiscard]] bool IsSameFile(const char* name) const noexcept;

private:
    void Close() noexcept;

    int mDescriptor = -1; // owned
    std::uint64_t mSize = 0;
    mutable int mError = 0;
};
} // namespace simpool
