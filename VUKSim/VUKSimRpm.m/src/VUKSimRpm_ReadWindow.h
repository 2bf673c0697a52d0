#pragma once

#include "VUKSimRpm_Buffer.h"

class VUKSimRpm_FileImpl;

/// Reads the headers and directories of a file's pools, one after the other, with few calls.
///
/// A header comes together with a directory of one entry, and where pools are small the rest of
/// their page comes too: a call of the system for each header would cost more than all else. No
/// page is touched that nobody asked for. The file must outlive the window. What the window holds
/// is as it was when it was read, so that it lives no longer than one load.
class VUKSimRpm_ReadWindow
{
public:
    explicit VUKSimRpm_ReadWindow(VUKSimRpm_FileImpl& file) : mFile(file) {}
    VUKSimRpm_ReadWindow(const VUKSimRpm_ReadWindow&) = delete;
    VUKSimRpm_ReadWindow& operator=(const VUKSimRpm_ReadWindow&) = delete;

    /// The `length` bytes at `position`, valid until the next call; null when the file ends before.
    /// \throws std::bad_alloc, the file's errors.
    [[nodiscard]] const char* Bytes(unsigned long long position, unsigned long length);

private:
    static constexpr unsigned long kPage = 4096; // bytes

    [[nodiscard]] bool Holds(unsigned long long position, unsigned long length) const noexcept
    {
        return position >= mBegin && position - mBegin < mSize &&
               length <= mSize - (position - mBegin);
    }
    void Fill(unsigned long long position, unsigned long length, bool isNear);

    VUKSimRpm_FileImpl& mFile;
    unsigned long long mAsked = 0; // position of the call before
    unsigned long long mBegin = 0; // of what is held, in the file
    unsigned long mSize = 0;       // of what is held
    VUKSimRpm_Buffer mLong;        // for a directory of more than a page
    char mHeld[kPage] = {};
};
