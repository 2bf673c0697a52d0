#include "NewFile.h"

#include "CommandFailure.h"
#include "EscapedText.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <vector>

namespace simpool {
namespace {

constexpr std::size_t kChunk = std::size_t{1} << 18; // bytes copied at once

std::string FolderOf(const std::string& name)
{
    const std::string folder = std::filesystem::path(name).parent_path().string();
    return folder.empty() ? "." : folder;
}

CommandFailure ExistsAlready(const std::string& name)
{
    return CommandFailure(Quoted(name) + " is there already and stays as it is");
}

void CheckTarget(const std::string& name, NewFile::Existing existing)
{
    struct stat status = {};
    if (::stat(name.c_str(), &status) != 0) {
        return;
    }
    if (!S_ISREG(status.st_mode)) {
        throw CommandFailure("cannot replace " + Quoted(name) + ": not a regular file");
    }
    if (existing == NewFile::Existing::Refuse) {
        throw ExistsAlready(name);
    }
}

// mkstemp keeps others out; a new file has what the user's mask leaves.
void GiveUsualRights(int descriptor)
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(descriptor, 0666U & ~mask); // a file system without rights has nothing to give
}

// 0 or the number of the failure. File systems without exclusive renames have links.
int RenameToNew(const char* from, const char* to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    if (::link(from, to) != 0) {
        return errno;
    }
    ::unlink(from);
    return 0;
}

void SyncFolder(const std::string& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // Some file systems cannot sync a folder and say EINVAL.
    const bool isSynced =
        descriptor >= 0 && (::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP);
    const int failure = errno;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (!isSynced) {
        throw SystemFailure("cannot sync the folder", folder, failure);
    }
}
} // namespace

NewFile::NewFile(const std::string& name, Existing existing) : mName(name), mExisting(existing)
{
    if (name.empty()) {
        throw CommandFailure("an empty name cannot be written to");
    }
    CheckTarget(name, existing);
    const std::filesystem::path path(name);
    mTemporaryName = (path.parent_path() / ("." + path.filename().string() + ".XXXXXX")).string();
    mDescriptor = ::mkostemp(mTemporaryName.data(), O_CLOEXEC);
    if (mDescriptor < 0) {
        throw SystemFailure("cannot write", name, errno);
    }
    GiveUsualRights(mDescriptor);
}

NewFile::~NewFile()
{
    if (mDescriptor >= 0) {
        ::close(mDescriptor);
    }
    if (!mIsCommitted) {
        ::unlink(mTemporaryName.c_str());
    }
}

void NewFile::Append(std::string_view bytes)
{
    WriteAt(mSize, bytes);
}

void NewFile::WriteAt(std::uint64_t position, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(mDescriptor, bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw SystemFailure("cannot write", mName, errno);
        }
        position += static_cast<std::uint64_t>(count);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    mSize = std::max(mSize, position);
}

void NewFile::CopyFrom(const FileBytes& source, std::uint64_t position, std::uint64_t length)
{
    const std::uint64_t end = position + length;
    const std::uint64_t shift = mSize - position; // modulo 2^64, from there to here
    std::vector<char> chunk(std::min<std::uint64_t>(kChunk, length));
    for (std::uint64_t at = source.SkipHole(position); at < end;) {
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(chunk.size(), end - at));
        const std::size_t count = source.Read(at, chunk.data(), wanted);
        if (count == 0) {
            throw CommandFailure("cannot copy into " + Quoted(mName) +
                                 ": the file that is copied ended or cannot be read");
        }
        WriteAt(at + shift, {chunk.data(), count});
        at = source.SkipHole(at + count);
    }
    if (mSize != end + shift) {
        Resize(end + shift); // ends in a hole
    }
}

void NewFile::Resize(std::uint64_t size)
{
    if (::ftruncate(mDescriptor, static_cast<off_t>(size)) != 0) {
        throw SystemFailure("cannot write", mName, errno);
    }
    mSize = size;
}

void NewFile::Commit()
{
    if (::fsync(mDescriptor) != 0) {
        throw SystemFailure("cannot sync", mName, errno);
    }
    const char* from = mTemporaryName.c_str();
    int failure = 0;
    if (mExisting == Existing::Refuse) {
        failure = RenameToNew(from, mName.c_str());
    } else if (::rename(from, mName.c_str()) != 0) {
        failure = errno;
    }
    if (failure == EEXIST) {
        throw ExistsAlready(mName);
    }
    if (failure != 0) {
        throw SystemFailure("cannot write", mName, failure);
    }
    mIsCommitted = true;
    SyncFolder(FolderOf(mName));
}
} // namespace simpool
