#include "WatchedStore.h"

#include "VUKSimRpm_BStreamAppendToPool.h"
#include "VUKSimRpm_BStreamWriteLocator.h"
#include "VUKSimRpm_MemoryPool.h"
#include "VUKSimRpm_UUID.h"

#include <algorithm>
#include <stdexcept>

#include <fcntl.h>

namespace {

void Require(bool held, const std::string& what)
{
    if (!held) {
        throw std::logic_error("the library and the ledger differ: " + what);
    }
}

// 32 characters: `letters` again and again.
std::string UuidOf(const std::string& letters)
{
    std::string uuid;
    while (uuid.size() < 32) {
        uuid += letters;
    }
    return uuid.substr(0, 32);
}
} // namespace

WatchedStore::WatchedStore() : mDisk(mFolder.Path("")) {}

void WatchedStore::Create(const std::string& name, const std::string& letters)
{
    const std::size_t begin = Now();
    const std::string uuid = UuidOf(letters);
    VUKSimRpm_UUID::TestForceUUID(uuid.c_str());
    Opened(name, mDocument.AddFile(mFolder.File(name), VUKSimRpm_Document::Write), uuid, begin);
}

std::string WatchedStore::CreateGenerated(const std::string& name, const std::string& letters)
{
    const std::size_t begin = Now();
    const std::string uuid = UuidOf(letters);
    VUKSimRpm_UUID::TestForceUUID(uuid.c_str());
    return OpenedAs(mDocument.CreateGenerated(mFolder.File(name), ".sim", true), uuid, begin);
}

std::string WatchedStore::CreateTemporary(const std::string& name, const std::string& letters)
{
    const std::size_t begin = Now();
    const std::string uuid = UuidOf(letters);
    VUKSimRpm_UUID::TestForceUUID(uuid.c_str());
    const std::string made =
        OpenedAs(mDocument.CreateTemporary(mFolder.File(name), true), uuid, begin);
    At(made).temporary = true;
    return made;
}

// A file under a name that the system made up; returns the name.
std::string WatchedStore::OpenedAs(const VUKSimRpm_File& handle, const std::string& uuid,
                                   std::size_t begin)
{
    const std::string full = handle.FileName().UTF8();
    const std::string made = full.substr(mFolder.Path("").size());
    Opened(made, handle, uuid, begin);
    return made;
}

void WatchedStore::CreateEmpty(const std::string& name)
{
    VUKSimUttSystemCalls& calls = VUKSimUttSystemCalls::Current();
    const int file = calls.open(mFolder.Path(name).c_str(), O_RDWR | O_CREAT, 0666);
    const int folder = calls.open(mFolder.Path("").c_str(), O_RDONLY | O_DIRECTORY, 0);
    Require(file != -1 && folder != -1 && calls.fsync(folder) == 0, "no empty file");
    calls.close(folder);
    calls.close(file);
}

// A file that has just been created or emptied by the document, with its first pool.
void WatchedStore::Opened(const std::string& name, const VUKSimRpm_File& handle,
                          const std::string& uuid, std::size_t begin)
{
    int number = -1;
    for (std::size_t i = 0; i < Log().Names().size(); ++i) {
        number = Log().Names()[i] == name ? static_cast<int>(i) : number;
    }
    Require(number >= 0, "the disk did not see " + name);
    mLedger.deeds.push_back({Ledger::Deed::Kind::Forgotten, number, begin, Now()});
    for (const std::size_t pool : mClosed[name]) {
        mLedger.pools[pool].dropped = std::min(mLedger.pools[pool].dropped, begin);
    }
    mFiles.insert_or_assign(name, OpenFile{handle, number, {}, {}, false});
    mLedger.poolCalls.push_back({number, begin, Now()});
    AddPool(At(name), uuid, begin, 0);
}

void WatchedStore::Update(const std::string& name)
{
    OpenFile file{mDocument.AddFile(mFolder.File(name), VUKSimRpm_Document::Update),
                  -1,
                  mClosed[name],
                  {},
                  false};
    for (std::size_t i = 0; i < Log().Names().size(); ++i) {
        file.number = Log().Names()[i] == name ? static_cast<int>(i) : file.number;
    }
    for (std::size_t i = 0; i < file.pools.size(); ++i) {
        const Ledger::Pool& pool = mLedger.pools[file.pools[i]];
        const unsigned long long end = i + 1 < file.pools.size()
                                           ? mLedger.pools[file.pools[i + 1]].position
                                           : mFolder.Size(name);
        file.lengths.push_back(end - pool.position - pool.headerSize);
    }
    if (!file.pools.empty()) {
        mLedger.pools[file.pools.back()].dataEnd = mFolder.Size(name);
    }
    mFiles.insert_or_assign(name, file);
}

void WatchedStore::Flush(const std::string& name)
{
    const std::size_t begin = Now();
    At(name).handle.Flush();
    Flushed(At(name), begin);
}

void WatchedStore::FlushAll()
{
    const std::size_t begin = Now();
    mDocument.Flush();
    for (const auto& [name, file] : mFiles) {
        Flushed(file, begin);
    }
}

void WatchedStore::Close(const std::string& name)
{
    const std::size_t begin = Now();
    mDocument.Close(At(name).handle);
    Closed(name, begin);
    mFiles.erase(name);
}

void WatchedStore::CloseAll()
{
    const std::size_t begin = Now();
    mDocument.Close();
    for (const auto& [name, file] : mFiles) {
        Closed(name, begin);
    }
    mFiles.clear();
}

void WatchedStore::Append(const std::string& name, std::size_t length)
{
    OpenFile& file = At(name);
    const unsigned pool = PoolCount(name) - 1;
    const unsigned long long offset = file.lengths[pool];
    Grow(file, length);
    const auto place = file.handle.Allocate(length);
    const std::string bytes = Bytes(length);
    Write(file, pool, offset, bytes, [&] { place.Write(bytes.size(), bytes.data()); });
}

void WatchedStore::Allocate(const std::string& name, std::size_t length)
{
    Grow(At(name), length);
    At(name).handle.Allocate(length);
}

void WatchedStore::WriteAt(const std::string& name, unsigned pool, unsigned long long offset,
                           std::size_t length)
{
    OpenFile& file = At(name);
    const std::string bytes = Bytes(length);
    const auto place = file.handle.Pool(pool).Start() + offset;
    Write(file, pool, offset, bytes, [&] { place.Write(bytes.size(), bytes.data()); });
}

void WatchedStore::Stream(const std::string& name, unsigned long chunk,
                          const std::vector<unsigned>& lengths)
{
    OpenFile& file = At(name);
    const unsigned pool = PoolCount(name) - 1;
    const unsigned long long offset = file.lengths[pool];
    std::string all;
    std::vector<std::string> records;
    for (const unsigned length : lengths) {
        records.push_back(Bytes(length));
        all += records.back();
    }
    Grow(file, all.size());
    Write(file, pool, offset, all, [&] {
        VUKSimRpm_BStreamAppendToPool stream(file.handle.Pool(), chunk);
        for (const std::string& record : records) {
            stream.Write(record.data(), static_cast<unsigned>(record.size()));
        }
    });
}

void WatchedStore::StreamAt(const std::string& name, unsigned pool, unsigned long long offset,
                            unsigned long chunk, const std::vector<unsigned>& lengths)
{
    OpenFile& file = At(name);
    std::string all;
    std::vector<std::string> records;
    for (const unsigned length : lengths) {
        records.push_back(Bytes(length));
        all += records.back();
    }
    Write(file, pool, offset, all, [&] {
        VUKSimRpm_BStreamWriteLocator stream(file.handle.Pool(pool).Start() + offset, 0, chunk);
        for (const std::string& record : records) {
            stream.Write(record.data(), static_cast<unsigned>(record.size()));
        }
    });
}

void WatchedStore::WriteThroughMemory(const std::string& name, unsigned pool,
                                      unsigned long long offset, std::size_t length)
{
    OpenFile& file = At(name);
    const std::string bytes = Bytes(length);
    const auto start = file.handle.Pool(pool).Start();
    VUKSimRpm_MemoryPool image(start, offset + length, VUKBasAllocator(), nullptr);
    const VUKSimRpm_Locator place(start + offset, image);
    Write(file, pool, offset, bytes, [&] { place.Write(bytes.size(), bytes.data()); });
}

// Twelve bytes: the offset in `target`'s pool, here 7, and the entry that names it in the
// directory.
void WatchedStore::AppendReference(const std::string& name, const std::string& target,
                                   unsigned pool)
{
    OpenFile& file = At(name);
    const unsigned current = PoolCount(name) - 1;
    const unsigned long long offset = file.lengths[current];
    const auto reference = At(target).handle.Pool(pool).Start() + 7;
    Grow(file, 12);
    const std::size_t begin = Now();
    {
        VUKSimRpm_BStreamAppendToPool stream(file.handle.Pool(), 64);
        reference.ExternalizeImpl(stream);
    }
    std::string stored(12, '\0');
    const auto place = file.handle.Pool().Start() + offset;
    Require(place.Read(12, stored.data()) == 12 && stored.starts_with(std::string("\7\0\0\0", 4)),
            "a reference");
    mLedger.deeds.push_back({Ledger::Deed::Kind::Written, file.number, begin, Now(),
                             DataBegin(file, current) + offset, stored});
}

void WatchedStore::NewPool(const std::string& name, const std::string& letters, bool ownEntryOnly)
{
    OpenFile& file = At(name);
    const std::size_t begin = Now();
    const std::string uuid = UuidOf(letters);
    file.handle.NewPool(ownEntryOnly, uuid.c_str());
    mLedger.poolCalls.push_back({file.number, begin, Now()});
    DropEmptyPool(file, begin);
    AddPool(file, uuid, begin, 0);
}

void WatchedStore::Import(const std::string& name, const VUKSimRpm_Pool& source,
                          const std::string& data)
{
    OpenFile& file = At(name);
    const std::size_t begin = Now();
    const std::string uuid = source.GetGUID().UTF8();
    file.handle.AppendPool(source);
    mLedger.poolCalls.push_back({file.number, begin, Now()});
    DropEmptyPool(file, begin);
    AddPool(file, uuid, begin, data.size());
    mLedger.deeds.push_back({Ledger::Deed::Kind::Written, file.number, begin, Now(),
                             DataBegin(file, PoolCount(name) - 1), data});
}

unsigned WatchedStore::PoolCount(const std::string& name) const
{
    return static_cast<unsigned>(mFiles.at(name).pools.size());
}

unsigned long long WatchedStore::DataLength(const std::string& name, unsigned pool) const
{
    return mFiles.at(name).lengths.at(pool);
}

std::string WatchedStore::Bytes(std::size_t length)
{
    std::string bytes;
    for (std::size_t i = 0; i < length; ++i) {
        bytes += static_cast<char>(1 + mByte++ % 251); // never zero, so that what is missing shows
    }
    return bytes;
}

void WatchedStore::DropEmptyPool(OpenFile& file, std::size_t begin)
{
    if (file.pools.empty() || file.lengths.back() > 0) {
        return;
    }
    Ledger::Pool& pool = mLedger.pools[file.pools.back()];
    pool.dropped = begin;
    mLedger.deeds.push_back(
        {Ledger::Deed::Kind::Forgotten, file.number, begin, Now(), pool.position});
    file.pools.pop_back();
    file.lengths.pop_back();
}

// The pool that a call has just made, with its directory as it is on the disk.
void WatchedStore::AddPool(OpenFile& file, const std::string& uuid, std::size_t begin,
                           unsigned long long length)
{
    unsigned long long position = 0;
    if (!file.pools.empty()) {
        position =
            DataBegin(file, static_cast<unsigned>(file.pools.size() - 1)) + file.lengths.back();
    }
    const VUKSimRpm_Pool made = file.handle.Pool();
    const unsigned directory = made.DirectorySizeBytes();
    Require(made.GetGUID() == uuid.c_str() && made.Length() == length, "a new pool");
    const DiskState disk = Log().At(Now());
    const std::string entries =
        disk[static_cast<std::size_t>(file.number)].bytes.substr(position + 48, directory);
    Require(entries.starts_with(uuid), "the place of a pool");

    file.pools.push_back(mLedger.pools.size());
    file.lengths.push_back(length);
    mLedger.pools.push_back({.file = file.number,
                             .uuid = uuid,
                             .position = position,
                             .headerSize = 48 + directory,
                             .begin = begin,
                             .end = Now(),
                             .dataEnd = position + 48 + directory + length});
    mLedger.deeds.push_back(
        {Ledger::Deed::Kind::Written, file.number, begin, Now(), position + 48, entries});
}

void WatchedStore::Grow(OpenFile& file, unsigned long long length)
{
    file.lengths.back() += length;
    mLedger.pools[file.pools.back()].dataEnd += length;
}

void WatchedStore::Write(OpenFile& file, unsigned pool, unsigned long long offset,
                         const std::string& bytes, const std::function<void()>& call)
{
    const std::size_t begin = Now();
    call();
    mLedger.deeds.push_back({Ledger::Deed::Kind::Written, file.number, begin, Now(),
                             DataBegin(file, pool) + offset, bytes});
}

void WatchedStore::Flushed(const OpenFile& file, std::size_t begin)
{
    if (!file.temporary) {
        mLedger.deeds.push_back({Ledger::Deed::Kind::Flushed, file.number, begin, Now()});
    }
}

void WatchedStore::Closed(const std::string& name, std::size_t begin)
{
    const OpenFile& file = At(name);
    Flushed(file, begin);
    mClosed[name] = file.pools;
    if (file.temporary) {
        mLedger.removed.insert({file.number, begin});
    }
}

unsigned long long WatchedStore::DataBegin(const OpenFile& file, unsigned pool) const
{
    const Ledger::Pool& known = mLedger.pools[file.pools.at(pool)];
    return known.position + known.headerSize;
}
