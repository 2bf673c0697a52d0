#pragma once

#include "FileBytes.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace simpool {

/// A file in the making: it has a temporary name in the folder of its true one, which it gets only
/// once it is complete and on the disk.
///
/// Every failure is a CommandFailure. Without Commit the destructor removes what was made, and the
/// true name was never touched. A signal that ends the process leaves the temporary file behind.
class NewFile
{
public:
    enum class Existing
    {
        Refuse, // a file of the true name is a failure, at once and again at Commit
        Replace
    };

    NewFile(const std::string& name, Existing existing);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// For who writes the file by other means, such as the library; it must stay the same file.
    [[nodiscard]] const std::string& TemporaryName() const noexcept { return mTemporaryName; }

    /// Writes behind all that Append and CopyFrom wrote before.
    void Append(std::string_view bytes);
    /// Writes anywhere; Append goes on behind the highest byte written.
    void WriteAt(std::uint64_t position, std::string_view bytes);
    /// Appends `length` bytes of `source` from `position` on; holes stay holes.
    void CopyFrom(const FileBytes& source, std::uint64_t position, std::uint64_t length);
    /// Gives the file this size; zeros where nothing was written.
    void Resize(std::uint64_t size);

    [[nodiscard]] std::uint64_t Size() const noexcept { return mSize; }

    /// Syncs the file, gives it its true name, and syncs the folder. The last call.
    void Commit();

private:
    std::string mName;
    Existing mExisting;
    std::string mTemporaryName = {};
    int mDescriptor = -1; // owned
    std::uint64_t mSize = 0;
    bool mIsCommitted = false;
};
} // namespace simpool
