#include "VUKSimUttOSFile.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "VUKSimUttDescriptor.h"
#include "VUKSimUttOSFileException.h"
#include "VUKSimUttRetry.h"
#include "VUKSimUttSystemCalls.h"
#include "omi_gettimeofday.h"

// The five opens of VUKSimUttOSFile.

namespace {

constexpr char kSource[] = "VUKSim/VUKSimUtt.m/src/VUKSimUttOSFileOpen";

// Failure sites, numbered once and for all as in VUKSimUttOSFile.cpp.
namespace at {
constexpr int kOpenAlready = 41;
constexpr int kOpen = 52;
constexpr int kOpenStatus = 58;
constexpr int kOpenNotRegular = 63;
constexpr int kOpenEmpty = 77;
constexpr int kCreate = 96;
constexpr int kCreateMove = 103;
} // namespace at

using Failure = VUKSimUttOSFileException;

// Names in use that a creation steps over before it gives up.
constexpr int kCreationAttempts = 100;

VUKSimUttSystemCalls& Calls() noexcept
{
    return VUKSimUttSystemCalls::Current();
}

[[noreturn]] void ThrowOpenAlready(const char* operation, const VUKString& name)
{
    Failure({operation}, name, EBUSY, "the object has a file open already")
        .Throw(kSource, at::kOpenAlready);
}

void RefuseUnlessRegular(const VUKSimUttFileStatus& status, const VUKString& name)
{
    if (!S_ISREG(status.st_mode)) {
        Failure({"open"}, name, S_ISDIR(status.st_mode) ? EISDIR : EINVAL, "not a regular file")
            .Throw(kSource, at::kOpenNotRegular);
    }
}

// Looks before an open: opening a FIFO or a device already acts on whoever is at its other end.
// False when nothing can be seen under the name; why, the open that follows will say.
bool RegularFileExists(const VUKString& name)
{
    VUKSimUttFileStatus status;
    if (VUKSimUttRetry([&] { return Calls().stat(name.UTF8(), &status); }) != 0) {
        return false;
    }
    RefuseUnlessRegular(status, name);
    return true;
}

// Does not wait for a FIFO's other end and takes no terminal, should one have come in between the
// look and the open.
int OpenDescriptor(const VUKString& name, int flags, mode_t mode)
{
    constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    return VUKSimUttRetry([&] { return Calls().open(name.UTF8(), flags | kAlways, mode); });
}

// A file in the place of a closed standard stream would receive what the process prints. Takes
// over `descriptor` and returns one above those places, or -1 with errno set.
int AboveStandardStreams(int descriptor) noexcept
{
    if (descriptor == -1 || descriptor > STDERR_FILENO) {
        return descriptor;
    }
    const VUKSimUttDescriptor low(descriptor);
    return VUKSimUttRetry(
        [&] { return Calls().fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1); });
}

struct OpenedFile
{
    VUKSimUttDescriptor descriptor;
    VUKSimUttFileStatus status;
};

OpenedFile OpenRegularFile(const VUKString& name, int flags)
{
    VUKSimUttDescriptor descriptor(AboveStandardStreams(OpenDescriptor(name, flags, 0666)));
    if (descriptor.Get() == -1) {
        Failure({"open"}, name, errno).Throw(kSource, at::kOpen);
    }
    VUKSimUttFileStatus status;
    if (VUKSimUttRetry([&] { return Calls().fstat(descriptor.Get(), &status); }) != 0) {
        Failure({"open"}, name, errno).Throw(kSource, at::kOpenStatus);
    }
    RefuseUnlessRegular(status, name);
    return {std::move(descriptor), status};
}

// The name from the root down; as given where that would be too long for the system.
VUKString AbsoluteName(const VUKString& name)
{
    std::array<char, PATH_MAX> folder;
    if (name.UTF8()[0] == '/' || Calls().getcwd(folder.data(), folder.size()) == nullptr) {
        return name;
    }
    VUKString absolute = VUKString(folder.data()) + "/" + name;
    return absolute.GetLengthInByte() < PATH_MAX ? absolute : name;
}

// Process, second and call, so that no two are alike. It need not be secret: an exclusive creation
// meets no file but its own.
VUKString UniquePart()
{
    static unsigned calls = 0;
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), "-%x-%llx-%x", static_cast<unsigned>(::getpid()),
                  static_cast<unsigned long long>(omi_gettimeofday().seconds), ++calls);
    return text.data();
}

} // namespace

void VUKSimUttOSFile::OpenRead(const VUKString& name)
{
    OpenExisting(name, true);
}

void VUKSimUttOSFile::OpenUpdate(const VUKString& name)
{
    OpenExisting(name, false);
}

void VUKSimUttOSFile::OpenExisting(const VUKString& name, bool readOnly)
{
    if (IsOpen()) {
        ThrowOpenAlready("open", name);
    }
    VUKString ownName = name;
    static_cast<void>(RegularFileExists(name)); // the open itself reports a missing file
    OpenedFile file = OpenRegularFile(name, readOnly ? O_RDONLY : O_RDWR);

    mName = std::move(ownName);
    mReadOnly = readOnly;
    mIdentity = {file.status.st_dev, file.status.st_ino};
    mKnownEnd = static_cast<unsigned long long>(file.status.st_size);
    mDescriptor = file.descriptor.Release();
}

void VUKSimUttOSFile::OpenWrite(const VUKString& name)
{
    if (IsOpen()) {
        ThrowOpenAlready("open", name);
    }
    VUKString ownName = name;
    const bool created = !RegularFileExists(name);
    VUKString absoluteName = created ? AbsoluteName(name) : VUKString();
    OpenedFile file = OpenRegularFile(name, O_RDWR | O_CREAT);
    // Emptied only now, by no flag of the open: until here it may have been anything.
    if (file.status.st_size > 0 &&
        VUKSimUttRetry([&] { return Calls().ftruncate(file.descriptor.Get(), 0); }) != 0) {
        Failure({"open"}, name, errno).Throw(kSource, at::kOpenEmpty);
    }

    mName = std::move(ownName);
    mAbsoluteName = std::move(absoluteName);
    mReadOnly = false;
    mFolderSyncDue = created;
    mIdentity = {file.status.st_dev, file.status.st_ino};
    mDescriptor = file.descriptor.Release();
}

void VUKSimUttOSFile::CreateTemporary(const VUKString& name)
{
    CreateUnique(name, VUKString(), 0600, true);
}

void VUKSimUttOSFile::CreateGenerated(const VUKString& name, const VUKString& second,
                                      bool removeWhenClosed)
{
    CreateUnique(name, second, 0666, removeWhenClosed);
}

void VUKSimUttOSFile::CreateUnique(const VUKString& name, const VUKString& second,
                                   unsigned int mode, bool removeWhenClosed)
{
    if (IsOpen()) {
        ThrowOpenAlready("create", name + second);
    }
    VUKString ownName;
    VUKString absoluteName;
    int descriptor = -1;
    for (int attempt = 1; descriptor == -1; ++attempt) {
        ownName = name + UniquePart() + second;
        absoluteName = AbsoluteName(ownName);
        descriptor = OpenDescriptor(ownName, O_RDWR | O_CREAT | O_EXCL, mode);
        if (descriptor == -1 && (errno != EEXIST || attempt == kCreationAttempts)) {
            Failure({"create"}, ownName, errno).Throw(kSource, at::kCreate);
        }
    }
    descriptor = AboveStandardStreams(descriptor);
    if (descriptor == -1) {
        const Failure failure({"create"}, ownName, errno);
        Calls().unlink(ownName.UTF8());
        Failure(failure).Throw(kSource, at::kCreateMove);
    }

    mName = std::move(ownName);
    mAbsoluteName = std::move(absoluteName);
    mReadOnly = false;
    mRemoveWhenClosed = removeWhenClosed;
    mFolderSyncDue = !removeWhenClosed;
    mDescriptor = descriptor;
}
