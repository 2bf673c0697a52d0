#include "ModelFile.h"

#include "ModelCheck.h"
#include "ModelDocument.h"
#include "Rules.h"

#include <algorithm>
#include <array>
#include <limits>

namespace model {
namespace {
constexpr char kSource[] = "VUKSimRpm_FileImpl";
constexpr std::uint64_t kCopiedAtOnce = 262144;
} // namespace

void FileImpl::OpenExisting(const std::string& name, bool readOnly)
{
    mFile.OpenExisting(name, readOnly);
    mEnd = mFile.Size();
    mWritten = mEnd;
    Load();
}

void FileImpl::OpenWrite(const std::string& name, bool ownEntryOnly)
{
    mFile.OpenWrite(name);
    NewPool(ownEntryOnly, nullptr);
}

void FileImpl::Create(const std::string& name, bool temporary, bool ownEntryOnly)
{
    mFile.Create(name, temporary);
    NewPool(ownEntryOnly, nullptr);
}

void FileImpl::Load()
{
    std::uint64_t directoryRoom = mEnd;
    for (std::uint64_t position = 0; position < mEnd;) {
        auto directory = std::make_shared<Directory>(mDocument.Map());
        const auto pool = std::make_shared<PoolImpl>(*this, directory, position);
        pool->Load(mEnd, directoryRoom);
        directoryRoom -= pool->HeaderSize() - 48;
        mCurrent = static_cast<int>(mPools.size());
        mPools.push_back(pool);
        Map().SetPool(directory->OwnSlot(), pool);
        position += pool->length;
    }
    if (!ReadOnly() && HasPool()) {
        Current()->immutable = false;
        Current()->Dump();
    }
}

void FileImpl::NewPool(bool ownEntryOnly, const char* uuid)
{
    if (ReadOnly()) {
        Raise("VUKSimExcNewPoolReadOnly", kSource, 101);
    }
    auto directory = std::make_shared<Directory>(mDocument.Map());
    if (Rules::Current().newPoolIsKnownBeforeTheDiscard) {
        directory->Init(ownEntryOnly, uuid);
        mEnd = DropEmptyPool();
    } else {
        mEnd = DropEmptyPool();
        directory->Init(ownEntryOnly, uuid);
    }
    const auto pool = std::make_shared<PoolImpl>(*this, directory, mEnd);
    pool->Init();
    FreezeCurrentPool();
    MakeCurrent(pool);
}

void FileImpl::AppendPool(PoolImpl& source)
{
    if (ReadOnly()) {
        Raise("VUKSimExcNewPoolReadOnly", kSource, 150);
    }
    if (Map().IsDuplicate(source.Dir()->OwnUuid())) {
        Raise("VUKSimExcPoolAlreadyInDoc", kSource, 153);
    }
    const std::uint64_t destination = DropEmptyPool();
    if (source.length > std::numeric_limits<std::uint64_t>::max() - destination) {
        Raise("VUKSimExcShortPool", kSource, 190);
    }
    mEnd = destination + source.length;
    if (Rules::Current().importCutsTheFile || mFile.Size() < mEnd) {
        mFile.Truncate(mEnd);
        mWritten = mEnd;
    }
    std::string buffer(std::min(source.length, kCopiedAtOnce), '\0');
    for (std::uint64_t done = 0; done < source.length;) {
        const std::uint64_t request = std::min(source.length - done, kCopiedAtOnce);
        const std::uint64_t got =
            source.File().Read(source.position + done, request, buffer.data());
        if (got == 0) {
            Raise("VUKSimExcShortPool", kSource, 190);
        }
        Write(destination + done, got, buffer.data());
        done += got;
    }
    auto directory = std::make_shared<Directory>(mDocument.Map());
    const auto pool = std::make_shared<PoolImpl>(*this, directory, destination);
    pool->Load(mEnd, mEnd);
    FreezeCurrentPool();
    MakeCurrent(pool);
}

std::uint64_t FileImpl::DropEmptyPool()
{
    if (!HasPool() || Current()->length != Current()->HeaderSize()) {
        return mEnd;
    }
    const std::uint64_t position = Current()->position;
    Map().Remove(Current()->Dir()->OwnSlot());
    mPools.resize(static_cast<std::size_t>(mCurrent));
    --mCurrent;
    mEnd = position;
    return position;
}

// The file gets its full length first: a pool with a length on disk has its bytes. That another
// document has made the file shorter meanwhile is not looked for.
void FileImpl::FreezeCurrentPool()
{
    if (!HasPool()) {
        return;
    }
    if (mWritten < mEnd && mFile.Size() < mEnd) {
        mFile.Truncate(mEnd);
        mWritten = mEnd;
    }
    Current()->immutable = true;
    Current()->Dump();
}

void FileImpl::MakeCurrent(const std::shared_ptr<PoolImpl>& pool)
{
    mCurrent = static_cast<int>(mPools.size());
    mPools.push_back(pool);
    Map().SetPool(pool->Dir()->OwnSlot(), pool);
    pool->immutable = false;
    pool->Dump();
}

void FileImpl::Flush()
{
    if (!ReadOnly() && HasPool()) {
        Current()->Dump();
    }
    mFile.Flush();
}

void FileImpl::Close()
{
    Flush();
    for (const auto& pool : mPools) {
        Map().Remove(pool->Dir()->OwnSlot());
    }
    mFile.Close();
}

std::weak_ptr<PoolImpl> FileImpl::PoolAt(unsigned int index) const
{
    Validate(index < mPools.size(), "index < mPools.size()", kSource, 277);
    return mPools[index];
}

std::weak_ptr<PoolImpl> FileImpl::CurrentPool() const
{
    Check(mCurrent >= 0, "mCurrentPoolIndex >= 0", kSource, 270);
    return Current();
}

unsigned int FileImpl::PoolCount() const
{
    return static_cast<unsigned int>(mPools.size());
}

const std::shared_ptr<PoolImpl>& FileImpl::Current() const
{
    return mPools.at(static_cast<std::size_t>(mCurrent));
}

std::uint64_t FileImpl::Read(std::uint64_t position, std::uint64_t length, char* buffer) const
{
    return mFile.Read(position, length, buffer);
}

std::uint64_t FileImpl::Write(std::uint64_t position, std::uint64_t length, const char* buffer)
{
    if (ReadOnly()) {
        Raise("VUKSimExcWriteReadOnly", kSource, 255);
    }
    const std::uint64_t written = mFile.Write(position, length, buffer);
    if (written > 0) {
        mWritten = std::max(mWritten, position + written);
    }
    return written;
}

std::uint64_t FileImpl::WriteAnywhere(std::uint64_t position, std::uint64_t length,
                                      const char* buffer)
{
    return mFile.Write(position, length, buffer);
}

void FileImpl::Extend(std::uint64_t newEnd)
{
    if (newEnd > mEnd) {
        if (ReadOnly()) {
            Raise("VUKSimExcAllocReadOnly", kSource, 231);
        }
        mEnd = newEnd;
    }
}

const std::string& FileImpl::Signature() const
{
    return mDocument.Signature();
}

PoolMap& FileImpl::Map() const
{
    return *mDocument.Map();
}

model::Pool File::Pool(unsigned int index) const
{
    return model::Pool(Live()->PoolAt(index));
}

model::Pool File::Pool() const
{
    return model::Pool(Live()->CurrentPool());
}

Locator File::Start() const
{
    return Live()->CurrentPool().lock()->Start();
}

Locator File::End() const
{
    return Live()->CurrentPool().lock()->End();
}

Locator File::Allocate(std::uint64_t length)
{
    return Live()->CurrentPool().lock()->Allocate(length);
}

void File::AppendPool(const model::Pool& pool)
{
    const auto file = Live();
    const auto source = pool.Impl().lock();
    if (source == nullptr) {
        Raise("VUKSimExcCantDerefLocator", "VUKSimRpm_File", 97);
    }
    file->AppendPool(*source);
}

std::shared_ptr<FileImpl> File::Live() const
{
    auto file = mFile.lock();
    if (file == nullptr) {
        Raise("VUKSimExcCantGetFile", "VUKSimRpm_File", 20);
    }
    return file;
}
} // namespace model
