#pragma once

#include "DiskLog.h"
#include "VUKSimUttSystemCalls.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>

/// Stands between the platform and the system for as long as it lives: makes every call, and writes
/// down what succeeded of those that change files directly in one folder or make them durable.
///
/// The files must not be there when it comes to life, and are not removed while it lives. One at a
/// time.
class RecordingDisk
{
public:
    /// Records what happens in `folder`, which ends with a slash.
    explicit RecordingDisk(const std::string& folder);
    RecordingDisk(const RecordingDisk&) = delete;
    RecordingDisk& operator=(const RecordingDisk&) = delete;
    ~RecordingDisk();

    [[nodiscard]] const DiskLog& Log() const noexcept { return mLog; }

    /// The number of events so far: the moment that it is now.
    [[nodiscard]] std::size_t Now() const noexcept { return mLog.Events().size(); }

private:
    static int Open(const char* path, int flags, mode_t mode);
    static int Close(int descriptor);
    static ssize_t Write(int descriptor, const void* buffer, std::size_t length, off_t position);
    static int Resize(int descriptor, off_t size);
    static int SyncData(int descriptor);
    static int SyncAll(int descriptor);
    static int Remove(const char* path);
    static void* RefuseMap(void* address, std::size_t length, int protection, int flags,
                           int descriptor, off_t position);

    void Record(int descriptor, DiskEvent::Kind kind, unsigned long long position = 0,
                const std::string& bytes = {});

    static RecordingDisk* sActive;

    std::string mFolder;
    VUKSimUttSystemCalls mOuter; // the table before, which does the work
    DiskLog mLog;
    std::map<int, int> mFiles; // descriptor to file number
    std::set<int> mFolderOpen; // descriptors of the folder itself
};
