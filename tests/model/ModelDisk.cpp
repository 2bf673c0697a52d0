#include "ModelDisk.h"

#include "ModelCheck.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace model {

Disk::Content Disk::Find(const std::string& name) const
{
    const auto found = mFiles.find(Key(name));
    return found == mFiles.end() ? nullptr : found->second;
}

Disk::Content Disk::Make(const std::string& name)
{
    return mFiles[Key(name)] = std::make_shared<std::string>();
}

bool Disk::Open(const std::string& name) const
{
    const auto found = mFiles.find(Key(name));
    return found != mFiles.end() && found->second.use_count() > 1;
}

std::string Disk::Key(std::string name)
{
    if (const std::size_t detour = name.find("/./"); detour != std::string::npos) {
        name.erase(detour, 2);
    }
    return name;
}

void OpenFile::OpenExisting(const std::string& name, bool readOnly)
{
    mContent = Disk::Current().Find(name);
    if (mContent == nullptr) {
        RaiseFileError("open", name, ENOENT);
    }
    mName = name;
    mReadOnly = readOnly;
}

void OpenFile::OpenWrite(const std::string& name)
{
    mContent = Disk::Current().Find(name);
    if (mContent == nullptr) {
        mContent = Disk::Current().Make(name);
    }
    mContent->clear();
    mName = name;
}

void OpenFile::Create(const std::string& name, bool temporary)
{
    mContent = Disk::Current().Make(name);
    mName = name;
    mTemporary = temporary;
}

std::uint64_t OpenFile::Size() const
{
    if (mContent == nullptr) {
        RaiseFileError("measure", mName, EBADF);
    }
    return mContent->size();
}

std::uint64_t OpenFile::Read(std::uint64_t position, std::uint64_t length, char* buffer) const
{
    if (mContent == nullptr) {
        RaiseFileError("read", mName, EBADF);
    }
    if (position >= mContent->size()) {
        return 0;
    }
    return mContent->copy(buffer, length, position);
}

std::uint64_t OpenFile::Write(std::uint64_t position, std::uint64_t length, const char* buffer)
{
    if (mContent == nullptr) {
        RaiseFileError("write", mName, EBADF);
    }
    if (mReadOnly) {
        RaiseFileError("write", mName, EBADF);
    }
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (position > kLargest || length > kLargest - position) {
        RaiseFileError("write", mName, EFBIG);
    }
    if (length == 0) {
        return 0;
    }
    if (mContent->size() < position + length) {
        mContent->resize(position + length);
    }
    std::copy_n(buffer, length, mContent->begin() + static_cast<std::ptrdiff_t>(position));
    return length;
}

void OpenFile::Truncate(std::uint64_t size)
{
    if (mContent == nullptr) {
        RaiseFileError("truncate", mName, EBADF);
    }
    mContent->resize(size);
}

void OpenFile::Flush() const
{
    if (mContent == nullptr) {
        RaiseFileError("flush", mName, EBADF);
    }
}

void OpenFile::Close()
{
    if (mTemporary && Disk::Current().Find(mName) == mContent) {
        Disk::Current().Remove(mName);
    }
    mTemporary = false;
    mContent.reset();
}
} // namespace model
