#pragma once

#include "Ledger.h"
#include "RecordingDisk.h"
#include "TemporaryFolder.h"
#include "VUKSimRpm_Document.h"
#include "VUKSimRpm_File.h"
#include "VUKSimRpm_Pool.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

/// A document and its files as an application uses them, on a disk that records, with a ledger of
/// what the application did.
///
/// Where pools lie is worked out here, from the sizes of directories and data; it throws
/// std::logic_error when the library says otherwise. Files are named relative to the store's own
/// folder. The data bytes of each write differ from those of the one before.
class WatchedStore
{
public:
    WatchedStore();

    [[nodiscard]] const DiskLog& Log() const noexcept { return mDisk.Log(); }
    [[nodiscard]] const Ledger& Deeds() const noexcept { return mLedger; }
    [[nodiscard]] const TemporaryFolder& Folder() const noexcept { return mFolder; }

    // Opening and closing. The letters make the UUID of the first pool.
    void Create(const std::string& name, const std::string& letters);
    std::string CreateGenerated(const std::string& name, const std::string& letters);
    std::string CreateTemporary(const std::string& name, const std::string& letters);
    void CreateEmpty(const std::string& name); // durable, and without the library
    void Update(const std::string& name);
    void Flush(const std::string& name);
    void FlushAll();
    void Close(const std::string& name);
    void CloseAll();

    // Data
    void Append(const std::string& name, std::size_t length);
    void Allocate(const std::string& name, std::size_t length); // and write nothing
    void WriteAt(const std::string& name, unsigned pool, unsigned long long offset,
                 std::size_t length);
    void Stream(const std::string& name, unsigned long chunk,
                const std::vector<unsigned>& lengths); // appends
    void StreamAt(const std::string& name, unsigned pool, unsigned long long offset,
                  unsigned long chunk, const std::vector<unsigned>& lengths);
    void WriteThroughMemory(const std::string& name, unsigned pool, unsigned long long offset,
                            std::size_t length);
    void AppendReference(const std::string& name, const std::string& target, unsigned pool);

    // Pools
    void NewPool(const std::string& name, const std::string& letters, bool ownEntryOnly);
    void Import(const std::string& name, const VUKSimRpm_Pool& source, const std::string& data);

    [[nodiscard]] unsigned PoolCount(const std::string& name) const;
    [[nodiscard]] unsigned long long DataLength(const std::string& name, unsigned pool) const;

private:
    struct OpenFile
    {
        VUKSimRpm_File handle;
        int number;
        std::vector<std::size_t> pools;          // indices into the ledger's, in file order
        std::vector<unsigned long long> lengths; // of their data
        bool temporary = false;                  // promised nothing, and removed when it is closed
    };

    OpenFile& At(const std::string& name) { return mFiles.at(name); }
    [[nodiscard]] std::size_t Now() const noexcept { return mDisk.Now(); }
    std::string Bytes(std::size_t length);
    std::string OpenedAs(const VUKSimRpm_File& handle, const std::string& uuid, std::size_t begin);
    void Opened(const std::string& name, const VUKSimRpm_File& handle, const std::string& uuid,
                std::size_t begin);
    void AddPool(OpenFile& file, const std::string& uuid, std::size_t begin,
                 unsigned long long length);
    void DropEmptyPool(OpenFile& file, std::size_t begin);
    void Grow(OpenFile& file, unsigned long long length);
    void Write(OpenFile& file, unsigned pool, unsigned long long offset, const std::string& bytes,
               const std::function<void()>& call);
    void Flushed(const OpenFile& file, std::size_t begin);
    void Closed(const std::string& name, std::size_t begin);
    [[nodiscard]] unsigned long long DataBegin(const OpenFile& file, unsigned pool) const;

    TemporaryFolder mFolder;
    RecordingDisk mDisk;
    Ledger mLedger;
    VUKSimRpm_Document mDocument{"TEST"};
    std::map<std::string, OpenFile> mFiles;                  // those that are open
    std::map<std::string, std::vector<std::size_t>> mClosed; // pools of those that were closed
    unsigned mByte = 0;                                      // counts the data bytes made
};
