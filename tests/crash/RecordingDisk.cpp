#include "RecordingDisk.h"

#include <cerrno>

#include <sys/mman.h>

RecordingDisk* RecordingDisk::sActive = nullptr;

RecordingDisk::RecordingDisk(const std::string& folder)
    : mFolder(folder), mOuter(VUKSimUttSystemCalls::Current())
{
    sActive = this;
    VUKSimUttSystemCalls& calls = VUKSimUttSystemCalls::Current();
    calls.open = &Open;
    calls.close = &Close;
    calls.pwrite = &Write;
    calls.ftruncate = &Resize;
    calls.fdatasync = &SyncData;
    calls.fsync = &SyncAll;
    calls.unlink = &Remove;
    calls.mmap = &RefuseMap; // what is written in place would not be seen here
}

RecordingDisk::~RecordingDisk()
{
    VUKSimUttSystemCalls::Current() = mOuter;
    sActive = nullptr;
}

void* RecordingDisk::RefuseMap(void*, std::size_t, int, int, int, off_t)
{
    errno = ENODEV;
    return MAP_FAILED;
}

int RecordingDisk::Open(const char* path, int flags, mode_t mode)
{
    RecordingDisk& disk = *sActive;
    VUKSimUttFileStatus status;
    const bool existed = disk.mOuter.stat(path, &status) == 0;
    const int descriptor = disk.mOuter.open(path, flags, mode);
    const std::string name = path;
    if (descriptor == -1 || !name.starts_with(disk.mFolder)) {
        return descriptor;
    }
    if (name == disk.mFolder) {
        disk.mFolderOpen.insert(descriptor);
        return descriptor;
    }
    disk.mFiles[descriptor] = disk.mLog.File(name.substr(disk.mFolder.size()));
    if (!existed) {
        disk.Record(descriptor, DiskEvent::Kind::Create);
    }
    return descriptor;
}

int RecordingDisk::Close(int descriptor)
{
    sActive->mFiles.erase(descriptor);
    sActive->mFolderOpen.erase(descriptor);
    return sActive->mOuter.close(descriptor);
}

ssize_t RecordingDisk::Write(int descriptor, const void* buffer, std::size_t length, off_t position)
{
    const ssize_t written = sActive->mOuter.pwrite(descriptor, buffer, length, position);
    if (written > 0) {
        sActive->Record(
            descriptor, DiskEvent::Kind::Write, static_cast<unsigned long long>(position),
            std::string(static_cast<const char*>(buffer), static_cast<std::size_t>(written)));
    }
    return written;
}

int RecordingDisk::Resize(int descriptor, off_t size)
{
    const int result = sActive->mOuter.ftruncate(descriptor, size);
    if (result == 0) {
        sActive->Record(descriptor, DiskEvent::Kind::Resize, static_cast<unsigned long long>(size));
    }
    return result;
}

int RecordingDisk::SyncData(int descriptor)
{
    const int result = sActive->mOuter.fdatasync(descriptor);
    if (result == 0) {
        sActive->Record(descriptor, DiskEvent::Kind::Sync);
    }
    return result;
}

int RecordingDisk::SyncAll(int descriptor)
{
    const int result = sActive->mOuter.fsync(descriptor);
    if (result == 0 && sActive->mFolderOpen.contains(descriptor)) {
        sActive->mLog.Add({.kind = DiskEvent::Kind::NameSync, .file = -1});
    } else if (result == 0) {
        sActive->Record(descriptor, DiskEvent::Kind::Sync);
    }
    return result;
}

int RecordingDisk::Remove(const char* path)
{
    RecordingDisk& disk = *sActive;
    const int result = disk.mOuter.unlink(path);
    const std::string name = path;
    if (result == 0 && name.starts_with(disk.mFolder)) {
        disk.mLog.Add({.kind = DiskEvent::Kind::Remove,
                       .file = disk.mLog.File(name.substr(disk.mFolder.size()))});
    }
    return result;
}

void RecordingDisk::Record(int descriptor, DiskEvent::Kind kind, unsigned long long position,
                           const std::string& bytes)
{
    const auto found = mFiles.find(descriptor);
    if (found != mFiles.end()) {
        mLog.Add({.kind = kind, .file = found->second, .position = position, .bytes = bytes});
    }
}
